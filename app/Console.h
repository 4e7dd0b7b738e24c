#pragma once
// The seams for a run without windows: messages go to standard error with the default answer, and
// a terminate request is remembered so the command can end with a failure.
#include "common/HostApplication.h"
#include "common/Platform.h"
#include "common/Ui.h"

#include <string>

namespace app {

// Gives Qt a private runtime directory when the session has none, so that windows and offscreen
// widgets start without a warning on standard error.
void prepareQtEnvironment();
// Raises an error when a window is to be shown but the session has no display (and no Qt
// platform is chosen), instead of letting the toolkit abort the process.
void requireDisplay();

class ConsoleUi : public common::Ui {
public:
    common::ModalResult message(common::MessageKind kind, const std::string& text,
                                common::MessageButtons buttons,
                                const std::string& caption) override;
    bool openFile(const common::FileDialogRequest& request, std::string& fileName) override;
    bool saveFile(const common::FileDialogRequest& request, std::string& fileName) override;
    common::ModalResult showModal(QWidget* form) override;
    void beep() override {}
};

class ConsoleHost : public common::HostApplication {
public:
    void terminate() override { terminated = true; }
    void processMessages() override;
    bool terminated = false;
};

// The operating system as quorvel offers it to the module: quorvel acts as the host, and the
// host's directory is the cell directory.
class CellPlatform : public common::RealPlatform {
public:
    explicit CellPlatform(const std::string& cellDir);
    std::string executableDirectory() override { return cellDir_; }

private:
    std::string cellDir_; // with a trailing separator
};

} // namespace app
