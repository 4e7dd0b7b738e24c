#pragma once
// Scripted implementations of the seams for tests and unattended runs: every call is recorded, and
// answers come from queues (with a default when a queue is empty).
#include "common/HostApplication.h"
#include "common/Platform.h"
#include "common/Ui.h"

#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace common {

class ScriptedUi : public Ui {
public:
    struct Call {
        std::string what; // "message", "open", "save", "modal", "beep"
        MessageKind kind = MessageKind::Plain;
        MessageButtons buttons = MessageButtons::Ok;
        std::string text; // message text, or the dialog's title, or the form's object name
    };

    ModalResult message(MessageKind kind, const std::string& text, MessageButtons buttons,
                        const std::string& caption) override;
    bool openFile(const FileDialogRequest& request, std::string& fileName) override;
    bool saveFile(const FileDialogRequest& request, std::string& fileName) override;
    ModalResult showModal(QWidget* form) override;
    void beep() override;

    // Queued answers. An empty message queue answers Ok for an Ok box, Yes for the others.
    std::deque<ModalResult> messageAnswers;
    // An empty file queue answers "cancelled".
    std::deque<std::string> fileAnswers;
    // A modal show runs the hook (if any) on the form, then answers from the queue or Cancel.
    std::function<void(QWidget*)> onModal;
    std::deque<ModalResult> modalAnswers;

    std::vector<Call> calls;
    std::vector<FileDialogRequest> fileRequests;

    // The texts of all messages shown, in order.
    std::vector<std::string> messages() const;
    int beeps() const;
};

class ScriptedHostApplication : public HostApplication {
public:
    void terminate() override { ++terminateCalls; }
    void processMessages() override {
        ++processMessagesCalls;
        if (onProcessMessages)
            onProcessMessages();
    }
    int terminateCalls = 0;
    int processMessagesCalls = 0;
    // Runs on every processMessages, as a pending message would (a click on Cancel, say).
    std::function<void()> onProcessMessages;
};

// A platform with a fake clock: sleep advances the clock, nothing waits. Files are real (tests
// give temporary directories), libraries resolve from a table of fake symbols.
class ScriptedPlatform : public Platform {
public:
    std::uint32_t tickCount() override;
    void sleep(std::uint32_t milliseconds) override;
    void* loadLibrary(const std::string& path) override;
    void* librarySymbol(void* library, const std::string& name) override;
    void freeLibrary(void* library) override;
    bool copyFile(const std::string& from, const std::string& to, bool failIfExists) override;
    bool deleteFile(const std::string& path) override;
    bool shellExecute(const std::string& verb, const std::string& file,
                      const std::string& parameters, const std::string& directory) override;
    std::string executableDirectory() override { return exeDir; }

    std::uint32_t clock = 0;
    std::uint32_t tickStep = 0; // added on every tickCount() read
    std::vector<std::uint32_t> sleeps;
    // Library name -> symbol name -> address. A name not listed fails to load.
    std::map<std::string, std::map<std::string, void*>> libraries;
    std::vector<std::string> loaded;
    int freed = 0;
    std::vector<std::string> copies; // "from -> to"
    std::vector<std::string> deletes;
    std::vector<std::string> shell;   // "verb|file|parameters|directory"
    std::set<std::string> failCopies; // source paths whose copy fails
    std::string exeDir = "./";
};

} // namespace common
