#include "common/Scripted.h"

#include <filesystem>
#include <system_error>

namespace common {

ModalResult ScriptedUi::message(MessageKind kind, const std::string& text, MessageButtons buttons,
                                const std::string& caption) {
    (void)caption;
    calls.push_back({"message", kind, buttons, text});
    if (!messageAnswers.empty()) {
        auto answer = messageAnswers.front();
        messageAnswers.pop_front();
        return answer;
    }
    return buttons == MessageButtons::Ok ? ModalResult::Ok : ModalResult::Yes;
}

bool ScriptedUi::openFile(const FileDialogRequest& request, std::string& fileName) {
    calls.push_back({"open", MessageKind::Plain, MessageButtons::Ok, request.title});
    fileRequests.push_back(request);
    if (fileAnswers.empty())
        return false;
    fileName = fileAnswers.front();
    fileAnswers.pop_front();
    return !fileName.empty();
}

bool ScriptedUi::saveFile(const FileDialogRequest& request, std::string& fileName) {
    calls.push_back({"save", MessageKind::Plain, MessageButtons::Ok, request.title});
    fileRequests.push_back(request);
    if (fileAnswers.empty())
        return false;
    fileName = fileAnswers.front();
    fileAnswers.pop_front();
    return !fileName.empty();
}

ModalResult ScriptedUi::showModal(QWidget* form) {
    calls.push_back({"modal", MessageKind::Plain, MessageButtons::Ok, {}});
    if (onModal)
        onModal(form);
    if (modalAnswers.empty())
        return ModalResult::Cancel;
    auto answer = modalAnswers.front();
    modalAnswers.pop_front();
    return answer;
}

void ScriptedUi::beep() { calls.push_back({"beep", MessageKind::Plain, MessageButtons::Ok, {}}); }

std::vector<std::string> ScriptedUi::messages() const {
    std::vector<std::string> out;
    for (const auto& c : calls)
        if (c.what == "message")
            out.push_back(c.text);
    return out;
}

int ScriptedUi::beeps() const {
    int n = 0;
    for (const auto& c : calls)
        n += c.what == "beep";
    return n;
}

std::uint32_t ScriptedPlatform::tickCount() {
    const auto now = clock;
    clock += tickStep;
    return now;
}

void ScriptedPlatform::sleep(std::uint32_t milliseconds) {
    sleeps.push_back(milliseconds);
    clock += milliseconds;
}

void* ScriptedPlatform::loadLibrary(const std::string& path) {
    loaded.push_back(path);
    auto it = libraries.find(path);
    return it == libraries.end() ? nullptr : static_cast<void*>(&it->second);
}

void* ScriptedPlatform::librarySymbol(void* library, const std::string& name) {
    if (!library)
        return nullptr;
    auto* symbols = static_cast<std::map<std::string, void*>*>(library);
    auto it = symbols->find(name);
    return it == symbols->end() ? nullptr : it->second;
}

void ScriptedPlatform::freeLibrary(void* library) {
    if (library)
        ++freed;
}

bool ScriptedPlatform::copyFile(const std::string& from, const std::string& to, bool failIfExists) {
    copies.push_back(from + " -> " + to);
    if (failCopies.count(from))
        return false;
    std::error_code ec;
    const auto options = failIfExists ? std::filesystem::copy_options::none
                                      : std::filesystem::copy_options::overwrite_existing;
    return std::filesystem::copy_file(from, to, options, ec) && !ec;
}

bool ScriptedPlatform::deleteFile(const std::string& path) {
    deletes.push_back(path);
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec))
        return false;
    return std::filesystem::remove(path, ec) && !ec;
}

bool ScriptedPlatform::shellExecute(const std::string& verb, const std::string& file,
                                    const std::string& parameters, const std::string& directory) {
    shell.push_back(verb + "|" + file + "|" + parameters + "|" + directory);
    return true;
}

} // namespace common
