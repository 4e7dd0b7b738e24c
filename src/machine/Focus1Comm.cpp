#include "machine/Focus1Comm.h"

#include "common/Convert.h"
#include "common/Format.h"
#include "common/Services.h"

#include <QListWidget>

#include <algorithm>
#include <filesystem>
#include <vector>

namespace {

#ifdef _WIN32
#define FOCAS_CALL __stdcall
#else
#define FOCAS_CALL
#endif

using TAllcLibHndl3 = short(FOCAS_CALL*)(const char* host, unsigned short port, long timeout,
                                         unsigned short* handle);
using TRdProgDir2 = short(FOCAS_CALL*)(unsigned short handle, short type, short* top, short* num,
                                       void* buffer);
using TFreeLibHndl = short(FOCAS_CALL*)(unsigned short handle);
using TStartupProcess = short(FOCAS_CALL*)(long level, const char* logFile);
using TExitProcess = short(FOCAS_CALL*)();

constexpr long ConnectTimeout = 5; // seconds
constexpr short DirectoryType = 1;
// The directory buffer: 1000 records of 60 bytes, the comment at 8 and a last byte at 59.
constexpr int RecordCount = 1000;
constexpr std::size_t RecordSize = 60;
constexpr std::size_t CommentOffset = 8;
constexpr std::size_t LastByte = 59;

// The library as the process started it, held loaded until the process state ends.
struct FocasProcess {
    bool started = false;
    common::Platform* platform = nullptr;
    void* library = nullptr;
};

FocasProcess& focasProcess() {
    static FocasProcess process;
    return process;
}

// Calls cnc_startupprocess once, before any other call into the library, when it exports it.
void startFocasProcess(void* library, const std::string& libraryName) {
    FocasProcess& process = focasProcess();
    if (process.started)
        return;
    common::Platform& platform = common::platform();
    void* startup = platform.librarySymbol(library, "cnc_startupprocess");
    if (!startup)
        return;
    process.started = true;
    process.platform = &platform;
    process.library = platform.loadLibrary(libraryName);
    static const std::string logFile =
        (std::filesystem::temp_directory_path() / "focas.log").string();
    reinterpret_cast<TStartupProcess>(startup)(0, logFile.c_str());
}

void eraseFirst(std::string& text, const std::string& part) {
    const auto at = text.find(part);
    if (at != std::string::npos)
        text.erase(at, part.size());
}

// The list line of one directory record; the record's last byte is forced to zero first, so the
// comment ends within the record.
std::string programLine(unsigned char* record) {
    record[LastByte] = 0;
    const auto number = static_cast<std::int16_t>(record[0] | (record[1] << 8));
    std::string comment(reinterpret_cast<const char*>(record + CommentOffset));
    // Only the first of each goes: nested parentheses stay.
    eraseFirst(comment, "(");
    eraseFirst(comment, ")");
    std::string line = common::format("%04.4d    (%s)", {number, comment});
    eraseFirst(line, "()");
    return line;
}

} // namespace

TFocus1Comm::TFocus1Comm(std::string LibraryName) : FLibraryName(std::move(LibraryName)) {}

TFocus1Comm::~TFocus1Comm() {
    if (FHandle != 0) {
        if (void* release = Entry("cnc_freelibhndl"))
            reinterpret_cast<TFreeLibHndl>(release)(FHandle);
    }
    if (FLibrary)
        common::platform().freeLibrary(FLibrary);
}

void* TFocus1Comm::Entry(const char* Name) const {
    return FLibrary ? common::platform().librarySymbol(FLibrary, Name) : nullptr;
}

bool TFocus1Comm::Connect(const std::string& Host, std::uint16_t Port) {
    bool result = true;
    if (!FLibrary) {
        FLibrary = common::platform().loadLibrary(FLibraryName);
        if (!FLibrary) {
            common::ui().error("Unable to open FwLib32.dll");
            return false;
        }
        startFocasProcess(FLibrary, FLibraryName);
    }
    // All three are looked at, so each missing one has its box.
    void* connect = nullptr;
    for (const char* name : {"cnc_allclibhndl3", "cnc_freelibhndl", "cnc_rdprogdir2"}) {
        void* entry = Entry(name);
        if (!entry) {
            common::ui().message(common::MessageKind::Plain,
                                 std::string(name) + " is not exported");
            result = false;
        } else if (name == std::string("cnc_allclibhndl3")) {
            connect = entry;
        }
    }
    if (FHandle == 0 && connect) {
        const short code =
            reinterpret_cast<TAllcLibHndl3>(connect)(Host.c_str(), Port, ConnectTimeout, &FHandle);
        if (code != 0) {
            common::ui().error("Error:" + std::to_string(code));
            result = false;
        }
    }
    return result;
}

void TFocus1Comm::ReadPrograms(QListWidget* List) {
    void* read = Entry("cnc_rdprogdir2");
    if (!read)
        return;
    std::vector<unsigned char> buffer(RecordCount * RecordSize, 0);
    short top = 0;
    short count = RecordCount;
    const short code =
        reinterpret_cast<TRdProgDir2>(read)(FHandle, DirectoryType, &top, &count, buffer.data());
    if (code != 0) {
        common::ui().error("Error:" + std::to_string(code));
        return;
    }
    // A count the buffer cannot hold is taken as far as the buffer goes.
    const int records = std::clamp<int>(count, 0, RecordCount);
    for (std::size_t i = 0; i < static_cast<std::size_t>(records); ++i)
        List->addItem(QString::fromLatin1(programLine(&buffer[i * RecordSize]).c_str()));
}

std::uint16_t FocasPort(const std::string& Port) {
    const auto value = common::tryStrToInt(Port);
    if (!value || *value < 0 || *value > 65535)
        return 0;
    return static_cast<std::uint16_t>(*value);
}

void ExitFocasProcess() {
    FocasProcess& process = focasProcess();
    if (!process.started)
        return;
    if (process.library) {
        if (void* exit = process.platform->librarySymbol(process.library, "cnc_exitprocess"))
            reinterpret_cast<TExitProcess>(exit)();
        process.platform->freeLibrary(process.library);
    }
    process = FocasProcess{};
}
