#pragma once
// The headless operator of `quorvel job --script`: the wizard form without a window, driven by one
// operator action per line through the handlers that clicks and keys reach. Messages go to
// standard error as "message: TEXT"; each dialog takes the answer the script gave for it, else
// the run's answer, else its default button.
#include "common/Ui.h"

#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

class QWidget;
class TdlgJob;

namespace app {

// A line of the script that cannot run: an unknown action or a bad argument.
class ScriptError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// "ok", "cancel", "yes", "no" as a modal result; nothing for another word.
std::optional<common::ModalResult> parseAnswer(const std::string& word);

class ScriptUi : public common::Ui {
public:
    // `lines`: the script; `answer`: the answer of every dialog the script does not answer.
    ScriptUi(std::vector<std::string> lines, std::optional<common::ModalResult> answer);

    common::ModalResult message(common::MessageKind kind, const std::string& text,
                                common::MessageButtons buttons,
                                const std::string& caption) override;
    bool openFile(const common::FileDialogRequest& request, std::string& fileName) override;
    bool saveFile(const common::FileDialogRequest& request, std::string& fileName) override;
    // The wizard runs the script; any other form takes its answer.
    common::ModalResult showModal(QWidget* form) override;
    void beep() override {}

    // With a window: the wizard itself is shown there for a person, and only the dialogs around
    // it are answered.
    void showWizardIn(common::Ui* windowUi) { windowUi_ = windowUi; }

private:
    using Action = std::function<void(TdlgJob& form, const std::string& argument)>;
    void addActions();
    void addWalkActions();
    void run(TdlgJob& form);
    // The answer for a dialog whose default button gives `fallback`.
    common::ModalResult take(common::ModalResult fallback);

    std::vector<std::string> lines_;
    std::optional<common::ModalResult> runAnswer_;
    std::optional<common::ModalResult> nextAnswer_;
    std::map<std::string, Action> actions_;
    QWidget* addressed_ = nullptr;          // the box or list the last action addressed
    std::optional<std::string> saveAnswer_; // the name that answers the next save dialog
    common::Ui* windowUi_ = nullptr;
};

} // namespace app
