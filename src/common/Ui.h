#pragma once
// The user-interface seam: every message box, confirmation, file dialog, modal show and beep of the
// module goes through here, so logic never calls a toolkit dialog directly.
#include <string>
#include <vector>

class QWidget;

namespace common {

// Answers of the message boxes, as the classic modal results.
enum class ModalResult {
    None = 0,
    Ok = 1,
    Cancel = 2,
    Abort = 3,
    Retry = 4,
    Ignore = 5,
    Yes = 6,
    No = 7
};

enum class MessageKind { Error, Information, Warning, Confirmation, Plain };

// Which buttons a message box offers.
enum class MessageButtons { Ok, OkCancel, YesNo, YesNoCancel };

struct FileDialogRequest {
    std::string title;
    std::string initialDir;
    std::string fileName;
    std::string filter;  // "Label|*.ext|Label|*.*"
    int filterIndex = 1; // from 1
    std::string defaultExt;
};

class Ui {
public:
    virtual ~Ui() = default;
    // Shows a message; returns the button pressed.
    virtual ModalResult message(MessageKind kind, const std::string& text,
                                MessageButtons buttons = MessageButtons::Ok,
                                const std::string& caption = {}) = 0;
    // File dialogs: return false when the user cancels; on true `fileName` holds the choice.
    virtual bool openFile(const FileDialogRequest& request, std::string& fileName) = 0;
    virtual bool saveFile(const FileDialogRequest& request, std::string& fileName) = 0;
    // Shows a form modally and returns its modal result.
    virtual ModalResult showModal(QWidget* form) = 0;
    virtual void beep() = 0;

    // Shortcuts for the common cases.
    void error(const std::string& text) { message(MessageKind::Error, text); }
    void information(const std::string& text) { message(MessageKind::Information, text); }
    bool confirm(const std::string& text) {
        return message(MessageKind::Confirmation, text, MessageButtons::YesNo) == ModalResult::Yes;
    }
};

} // namespace common
