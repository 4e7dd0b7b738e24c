// The C ABI over the boundary's C++ API: C strings in, caller buffers out, errors as codes.
#include "RobocutAbi.h"

#include "boundary/Exports.h"
#include "common/CrashReporter.h"
#include "common/Services.h"
#include "dialogs/QtServices.h"
#include "job/HostReport.h"
#include "template/CommandSetup.h"

#include <QApplication>

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>

struct RcStringList {
    TStringList list;
};

namespace {

// The reason of the last failed call, per thread. A plain array: a thread-local object with a
// destructor would pin the library in the process, so that unloading it never ran its unload.
constexpr std::size_t LastErrorSize = 4096;
thread_local char lastError[LastErrorSize];

void setLastError(const std::string& reason) {
    const std::size_t n = std::min(reason.size(), LastErrorSize - 1);
    std::memcpy(lastError, reason.data(), n);
    lastError[n] = '\0';
}
bool terminateRequested = false;
RcHostCallbacks callbacks{};

std::string text(const char* s) { return s ? s : ""; }

int32_t copyOut(const std::string& value, char* buffer, int32_t size) {
    if (buffer && size > 0) {
        const auto n = std::min<std::size_t>(value.size(), static_cast<std::size_t>(size - 1));
        std::memcpy(buffer, value.data(), n);
        buffer[n] = '\0';
    }
    return static_cast<int32_t>(value.size());
}

// Runs `f`, turning any exception into -1 and the last error.
template <typename F> int32_t guarded(F&& f) {
    try {
        lastError[0] = '\0';
        return f();
    } catch (const std::exception& e) {
        setLastError(e.what());
    } catch (...) {
        setLastError("unknown error");
    }
    return -1;
}

// The editor's object behind a plug-in's handle.
TCommandSetup& commandSetup(const RcCommandSetup* setup) {
    if (!setup)
        throw std::invalid_argument("No command object given");
    return *reinterpret_cast<TCommandSetup*>(const_cast<RcCommandSetup*>(setup));
}

std::int32_t& integerField(TCommandSetup& setup, int32_t field) {
    switch (field) {
    case RC_SETUP_SYNTAX:
        return setup.Syntax;
    case RC_SETUP_SPECIAL:
        return setup.Special;
    default:
        throw std::out_of_range("Field " + std::to_string(field) + " of a command does not exist");
    }
}

// Whether the host runs a Qt widget application, so that the module's windows can show.
bool hostHasWindows() {
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

// The user interface as the host offers it: messages through the host's callback when it gives
// one; otherwise the module's own message boxes and forms when the host runs a Qt application;
// otherwise messages on standard error with the default answer, and no forms.
class CallbackUi : public common::Ui {
public:
    common::ModalResult message(common::MessageKind kind, const std::string& message,
                                common::MessageButtons buttons,
                                const std::string& caption) override {
        if (callbacks.message)
            return static_cast<common::ModalResult>(
                callbacks.message(callbacks.context, static_cast<int32_t>(kind), message.c_str(),
                                  static_cast<int32_t>(buttons)));
        if (hostHasWindows())
            return qt_.message(kind, message, buttons, caption);
        std::fprintf(stderr, "%s\n", message.c_str());
        return buttons == common::MessageButtons::Ok ? common::ModalResult::Ok
                                                     : common::ModalResult::Yes;
    }
    bool openFile(const common::FileDialogRequest& request, std::string& fileName) override {
        return hostHasWindows() && qt_.openFile(request, fileName);
    }
    bool saveFile(const common::FileDialogRequest& request, std::string& fileName) override {
        return hostHasWindows() && qt_.saveFile(request, fileName);
    }
    common::ModalResult showModal(QWidget* form) override {
        return hostHasWindows() ? qt_.showModal(form) : common::ModalResult::Cancel;
    }
    void beep() override {
        if (hostHasWindows())
            qt_.beep();
    }

private:
    dialogs::QtUi qt_;
};

class CallbackHost : public common::HostApplication {
public:
    void terminate() override {
        terminateRequested = true;
        if (callbacks.terminate)
            callbacks.terminate(callbacks.context);
    }
    // The host's own pump when it gives one; otherwise the Qt application's events, so that the
    // module's windows (a copy's Cancel button) stay live.
    void processMessages() override {
        if (callbacks.processMessages)
            callbacks.processMessages(callbacks.context);
        else if (hostHasWindows())
            QCoreApplication::processEvents();
    }
};

CallbackUi callbackUi;
CallbackHost callbackHost;

// The host's boolean as the gate of a message.
class PointerGate : public common::MessageGate {
public:
    explicit PointerGate(uint8_t* value) : value_(value) {}
    bool checked() const override { return *value_ != 0; }
    void setChecked(bool value) override { *value_ = value ? 1 : 0; }

private:
    uint8_t* value_;
};

// Hands the host's "GetJobInfo" the report as C data.
void callGetJobInfo(void* entry, TAutomationInfo& info) {
    const RcAutomationInfo record{info.HostTag,
                                  info.JobNumber,
                                  info.HostText1.c_str(),
                                  info.HostText2.c_str(),
                                  info.MachineText.c_str(),
                                  info.PalletNumber.c_str(),
                                  info.CommandFile.c_str(),
                                  info.AutomationText1.c_str(),
                                  info.CommandText.c_str(),
                                  info.FileList.c_str(),
                                  info.AutomationText2.c_str(),
                                  static_cast<uint8_t>(info.AutomationFlag1 ? 1 : 0),
                                  static_cast<uint8_t>(info.AutomationFlag2 ? 1 : 0),
                                  info.HostFlag1,
                                  info.HostFlag2};
    reinterpret_cast<void (*)(const RcAutomationInfo*)>(entry)(&record);
}

// Loading the library creates the store module; unloading frees it. A static object rather than
// load and unload hooks, so that it is destroyed before the statics it created.
struct LibraryLifetime {
    LibraryLifetime() {
        auto& s = common::services();
        if (!s.ui)
            s.ui = &callbackUi;
        if (!s.host)
            s.host = &callbackHost;
        boundary::LibraryLoad();
        job::SetHostReportCall(callGetJobInfo);
    }
    ~LibraryLifetime() {
        common::uninstallCrashReporter();
        job::SetHostReportCall({});
        boundary::LibraryUnload();
        auto& s = common::services();
        if (s.ui == &callbackUi)
            s.ui = nullptr;
        if (s.host == &callbackHost)
            s.host = nullptr;
    }
    LibraryLifetime(const LibraryLifetime&) = delete;
    LibraryLifetime& operator=(const LibraryLifetime&) = delete;
};

LibraryLifetime lifetime;

} // namespace

extern "C" {

void RcSetHostCallbacks(const RcHostCallbacks* value) {
    callbacks = value ? *value : RcHostCallbacks{};
}

int32_t RcTerminateRequested(void) { return terminateRequested ? 1 : 0; }

const char* RcLastError(void) { return lastError; }

RcStringList* RcStringListNew(void) {
    try {
        return std::make_unique<RcStringList>().release();
    } catch (...) {
        return nullptr;
    }
}

void RcStringListFree(RcStringList* list) { std::unique_ptr<RcStringList> owned(list); }

int32_t RcStringListCount(const RcStringList* list) { return list ? list->list.Count() : 0; }

const char* RcStringListString(const RcStringList* list, int32_t index) {
    if (!list || index < 0 || index >= list->list.Count())
        return nullptr;
    return list->list.Strings(index).c_str();
}

int32_t RcStringListTemplateId(const RcStringList* list, int32_t index) {
    if (!list || index < 0 || index >= list->list.Count() || !list->list.Objects(index))
        return -1;
    return list->list.Objects(index)->TemplateId;
}

int32_t RcInstallCrashReporter(const char* reportFolder) {
    return guarded([&] {
        const std::string folder = text(reportFolder);
        struct stat info {};
        if (folder.empty() || stat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode) ||
            access(folder.c_str(), W_OK | X_OK) != 0)
            throw std::invalid_argument("The crash report folder \"" + folder +
                                        "\" is not a writable folder");
        // The window comes from quorvel when it is installed beside the library.
        std::string program;
        Dl_info library{};
        if (dladdr(reinterpret_cast<void*>(&RcInstallCrashReporter), &library) &&
            library.dli_fname) {
            const std::string path = library.dli_fname;
            program = path.substr(0, path.find_last_of('/') + 1) + "quorvel";
            if (access(program.c_str(), X_OK) != 0)
                program.clear();
        }
        common::installCrashReporter({folder, QUORVEL_VERSION, program});
        return 0;
    });
}

int32_t PluginName(char* buffer, int32_t size) {
    std::string name;
    boundary::PluginName(name);
    return copyOut(name, buffer, size);
}

int32_t FileExtensions(char* buffer, int32_t size) {
    std::string extensions;
    boundary::FileExtensions(extensions);
    return copyOut(extensions, buffer, size);
}

int32_t AddPlugin(const RcPluginEntry* entry) {
    return guarded([&] {
        if (!entry)
            throw std::invalid_argument("AddPlugin needs an entry");
        boundary::AddPlugin(TPluginEntry{entry->ModuleHandle, text(entry->Kind)});
        return 0;
    });
}

int32_t Initialize(const char* localDirectory, const char* sharedDirectory, int32_t reserved1,
                   int32_t reserved2) {
    return guarded([&] {
        // A good initialisation ends an earlier request to terminate.
        terminateRequested = false;
        boundary::Initialize(text(localDirectory), text(sharedDirectory), reserved1, reserved2);
        return 0;
    });
}

int32_t LoadTemplateNames(const char* fixture, RcStringList* list, int32_t byFixture) {
    return guarded([&] {
        if (!list)
            throw std::invalid_argument("LoadTemplateNames needs a list");
        boundary::LoadTemplateNames(text(fixture), list->list, byFixture != 0);
        return 0;
    });
}

void FreeTemplateNames(RcStringList* list) {
    boundary::FreeTemplateNames(list ? &list->list : nullptr);
}

int32_t GetTemplateName(int32_t templateId, char* buffer, int32_t size) {
    return guarded([&] {
        std::string name;
        boundary::GetTemplateName(templateId, name);
        return copyOut(name, buffer, size);
    });
}

int32_t JobFileExists(const char* directory) {
    return guarded([&] { return boundary::JobFileExists(text(directory)) ? 1 : 0; });
}

int32_t DeleteJob(const char* palletNumber, const char* jobNumber) {
    return guarded([&] {
        boundary::DeleteJob(text(palletNumber), text(jobNumber));
        return 0;
    });
}

int32_t NewTemplate(const char* fixture, int32_t workpieces, char* name, int32_t size) {
    return guarded([&] {
        std::string typed;
        boundary::NewTemplate(text(fixture), workpieces, typed);
        return copyOut(typed, name, size);
    });
}

int32_t ModifyTemplate(int32_t reserved, int32_t workpieces, int32_t templateId) {
    return guarded([&] {
        boundary::ModifyTemplate(reserved, workpieces, templateId);
        return 0;
    });
}

int32_t DeleteTemplate(void) {
    return guarded([&] {
        boundary::DeleteTemplate();
        return 0;
    });
}

int32_t JobWizard(const RcJobWizardInfo* info) {
    return guarded([&] {
        if (!info)
            throw std::invalid_argument("JobWizard needs a job wizard record");
        if (!hostHasWindows())
            throw std::logic_error("JobWizard needs the host's Qt application");
        std::unique_ptr<PointerGate> gate;
        if (info->MessageGate)
            gate = std::make_unique<PointerGate>(info->MessageGate);
        TJobWizardInfo record;
        record.HostModule = info->HostModule;
        record.TemplateID = info->TemplateID;
        record.HostTag = info->HostTag;
        record.JobNumber = info->JobNumber;
        record.HostText1 = text(info->HostText1);
        record.HostText2 = text(info->HostText2);
        record.MachineText = text(info->MachineText);
        record.PalletNumber = text(info->PalletNumber);
        record.LocalDirectory = text(info->LocalDirectory);
        record.InputDirectory = text(info->InputDirectory);
        record.OutputDirectory = text(info->OutputDirectory);
        record.ReservedText1 = text(info->ReservedText1);
        record.ReservedText2 = text(info->ReservedText2);
        record.ReservedText3 = text(info->ReservedText3);
        record.HostFlag1 = info->HostFlag1;
        record.UseTemplateFixture = info->UseTemplateFixture != 0;
        record.AllowSkip = info->AllowSkip != 0;
        record.AllowSkipDown = info->AllowSkipDown != 0;
        record.Unattended = info->Unattended != 0;
        record.HostFlag2 = info->HostFlag2;
        record.MessageGate = gate.get();
        boundary::JobWizard(record);
        return 0;
    });
}

int32_t CopyFiles(const char* source, const char* destination) {
    return guarded([&] {
        if (!hostHasWindows())
            throw std::logic_error("CopyFiles needs the host's Qt application");
        boundary::CopyFiles(text(source), text(destination));
        return 0;
    });
}

int32_t RcCommandSetupCode(const RcCommandSetup* setup, char* buffer, int32_t size) {
    return guarded([&] { return copyOut(commandSetup(setup).Code, buffer, size); });
}

int32_t RcCommandSetupValue(const RcCommandSetup* setup, int32_t slot, char* buffer, int32_t size) {
    return guarded([&] { return copyOut(commandSetup(setup).Value(slot), buffer, size); });
}

int32_t RcCommandSetupSetValue(RcCommandSetup* setup, int32_t slot, const char* value) {
    return guarded([&] {
        commandSetup(setup).Value(slot) = text(value);
        return 0;
    });
}

int32_t RcCommandSetupInteger(const RcCommandSetup* setup, int32_t field, int32_t* value) {
    return guarded([&] {
        TCommandSetup& object = commandSetup(setup);
        if (!value)
            throw std::invalid_argument("No place for the value given");
        *value = field == RC_SETUP_LOCKED ? (object.Locked ? 1 : 0) : integerField(object, field);
        return 0;
    });
}

int32_t RcCommandSetupSetInteger(RcCommandSetup* setup, int32_t field, int32_t value) {
    return guarded([&] {
        TCommandSetup& object = commandSetup(setup);
        if (field == RC_SETUP_LOCKED)
            object.Locked = value != 0;
        else
            integerField(object, field) = value;
        return 0;
    });
}

} // extern "C"
