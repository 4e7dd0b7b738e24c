#pragma once
// The real seams over Qt: message boxes, file dialogs, modal forms, the beep; and the host's
// application object when the host is a Qt application.
#include "common/HostApplication.h"
#include "common/Ui.h"

namespace dialogs {

class QtUi : public common::Ui {
public:
    common::ModalResult message(common::MessageKind kind, const std::string& text,
                                common::MessageButtons buttons,
                                const std::string& caption) override;
    bool openFile(const common::FileDialogRequest& request, std::string& fileName) override;
    bool saveFile(const common::FileDialogRequest& request, std::string& fileName) override;
    common::ModalResult showModal(QWidget* form) override;
    void beep() override;
};

class QtHostApplication : public common::HostApplication {
public:
    void terminate() override;
    void processMessages() override;
};

} // namespace dialogs
