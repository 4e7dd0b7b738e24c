#include "common/CrashReporter.h"

#include <cxxabi.h>
#include <errno.h>
#include <execinfo.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <typeinfo>

extern char** environ;

namespace common {

namespace {

constexpr std::size_t MaxSetupPath = 1000;
constexpr std::size_t PathSize = MaxSetupPath + 1;
constexpr std::size_t StatementSize = 1000;
constexpr int MaxFrames = 64;
constexpr int FatalSignals[] = {SIGSEGV, SIGABRT, SIGBUS, SIGFPE};

// The setup in fixed buffers, so that a crash reads it without allocating.
char reportFolder[PathSize];
char fallbackFolder[PathSize];
char moduleVersion[128];
char dialogProgram[PathSize];

// The last statement noted; its size is published after its text.
char lastStatement[StatementSize];
std::atomic<std::size_t> lastStatementSize{0};

std::atomic<bool> installed{false};
std::terminate_handler previousTerminate = nullptr;
struct sigaction previousActions[std::size(FatalSignals)];
// The thread writing the report, 0 before the first crash.
std::atomic<long> reportingThread{0};
static_assert(std::atomic<long>::is_always_lock_free);

// The signal handlers run on a stack of their own, so that a stack overflow can still be reported.
// It is mapped rather than static: it stays valid when a library that installed the reporter is
// unloaded.
constexpr std::size_t AlternateStackSize = 64 * 1024;

// Buffers of the report, used by the one reporting thread only.
char whatBuffer[2048];
char pathBuffer[PathSize + 64];
char headBuffer[4096];

// Text in a fixed buffer; what does not fit is cut. Async-signal-safe.
class Text {
public:
    Text(char* buffer, std::size_t size) : buffer_(buffer), size_(size) { buffer_[0] = '\0'; }
    Text& add(const char* s) { return add(s, std::strlen(s)); }
    Text& add(const char* s, std::size_t n) {
        const std::size_t room = size_ - 1 - length_;
        n = n < room ? n : room;
        std::memcpy(buffer_ + length_, s, n);
        length_ += n;
        buffer_[length_] = '\0';
        return *this;
    }
    // A number in `base`, padded with zeros to `width` digits.
    Text& number(unsigned long long value, int width = 1, unsigned base = 10) {
        char digits[32];
        int count = 0;
        do {
            digits[count++] = "0123456789abcdef"[value % base];
            value /= base;
        } while (value && count < 32);
        while (count < width && count < 32)
            digits[count++] = '0';
        char out[32];
        for (int i = 0; i < count; ++i)
            out[i] = digits[count - 1 - i];
        return add(out, static_cast<std::size_t>(count));
    }
    const char* str() const { return buffer_; }
    std::size_t size() const { return length_; }

private:
    char* buffer_;
    std::size_t size_;
    std::size_t length_ = 0;
};

void copyText(char* to, std::size_t size, const std::string& from) {
    Text(to, size).add(from.data(), from.size());
}

// The value of an environment variable, or null; reads `environ` without the locks of getenv.
const char* environment(const char* name) {
    const std::size_t n = std::strlen(name);
    for (char** entry = environ; entry && *entry; ++entry)
        if (std::strncmp(*entry, name, n) == 0 && (*entry)[n] == '=')
            return *entry + n + 1;
    return nullptr;
}

struct UtcTime {
    long long year;
    unsigned month, day, hour, minute, second;
};

// The current time in UTC, from the days since 1970 by the civil calendar (gmtime may lock).
UtcTime utcNow() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    long long days = now.tv_sec / 86400;
    long long rest = now.tv_sec % 86400;
    if (rest < 0) {
        rest += 86400;
        --days;
    }
    days += 719468;
    const long long era = (days >= 0 ? days : days - 146096) / 146097;
    const auto dayOfEra = static_cast<unsigned>(days - era * 146097);
    const unsigned yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const unsigned shiftedMonth = (5 * dayOfYear + 2) / 153;
    const unsigned day = dayOfYear - (153 * shiftedMonth + 2) / 5 + 1;
    const unsigned month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
    const auto seconds = static_cast<unsigned>(rest);
    return {yearOfEra + era * 400 + (month <= 2 ? 1 : 0),
            month,
            day,
            seconds / 3600,
            seconds / 60 % 60,
            seconds % 60};
}

void writeAll(int fd, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t n = write(fd, data, size);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return;
        data += n;
        size -= static_cast<std::size_t>(n);
    }
}

// Creates FOLDER/crash-YYYYMMDD-HHMMSS-PID.txt; its path is left in pathBuffer.
int createReport(const char* folder, const UtcTime& t) {
    Text path(pathBuffer, sizeof pathBuffer);
    path.add(folder).add("/crash-").number(t.year, 4).number(t.month, 2).number(t.day, 2);
    path.add("-").number(t.hour, 2).number(t.minute, 2).number(t.second, 2);
    path.add("-").number(static_cast<unsigned long long>(getpid())).add(".txt");
    return open(path.str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
}

// Runs the window program on the report and waits for it.
void showWindow(const char* report) {
    char crashed[] = "crashed";
    char* argv[] = {dialogProgram, crashed, const_cast<char*>(report), nullptr};
    // _Fork runs no fork handlers, which may need locks the crashed thread holds.
    const pid_t child = _Fork();
    if (child == 0) {
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        execve(dialogProgram, argv, environ);
        _exit(127);
    }
    if (child > 0) {
        int status = 0;
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
    }
}

// Writes the report of `what` happening, names it on standard error and shows the window.
void report(const char* what) {
    const UtcTime t = utcNow();
    int fd = createReport(reportFolder, t);
    const bool fallback = fd < 0 && fallbackFolder[0];
    if (fallback)
        fd = createReport(fallbackFolder, t);

    Text note(headBuffer, sizeof headBuffer);
    note.add("Crash: ").add(what).add("\n");
    if (fd >= 0)
        note.add("Crash report: ").add(pathBuffer).add("\n");
    else
        note.add("No crash report could be written to ").add(reportFolder).add("; it follows.\n");
    writeAll(STDERR_FILENO, note.str(), note.size());

    const int out = fd >= 0 ? fd : STDERR_FILENO;
    Text head(headBuffer, sizeof headBuffer);
    head.add("Crash report\nTime: ").number(t.year, 4).add("-").number(t.month, 2).add("-");
    head.number(t.day, 2).add(" ").number(t.hour, 2).add(":").number(t.minute, 2).add(":");
    head.number(t.second, 2).add(" UTC\nModule version: ").add(moduleVersion);
    head.add("\nProcess: ").number(static_cast<unsigned long long>(getpid()));
    head.add("\nWhat happened: ").add(what).add("\nLast statement: ");
    const std::size_t statementSize = lastStatementSize.load(std::memory_order_acquire);
    if (statementSize > 0)
        head.add(lastStatement, statementSize);
    else
        head.add("(none)");
    if (fallback)
        head.add("\nNote: the report folder ").add(reportFolder).add(" could not take it");
    head.add("\nBacktrace:\n");
    writeAll(out, head.str(), head.size());
    void* frames[MaxFrames];
    backtrace_symbols_fd(frames, backtrace(frames, MaxFrames), out);
    if (fd < 0)
        return;
    close(fd);
    if (dialogProgram[0] && windowCanBeShown())
        showWindow(pathBuffer);
}

// True for the first crash of the process, which writes the report. A crash of the reporting thread
// itself is not reported again; one of another thread waits until the report ends the process.
bool claimReport() {
    const long self = gettid();
    long expected = 0;
    if (reportingThread.compare_exchange_strong(expected, self))
        return true;
    if (expected == self)
        return false;
    for (;;)
        pause();
}

const char* signalText(int signal) {
    switch (signal) {
    case SIGSEGV:
        return "signal SIGSEGV (invalid memory access)";
    case SIGABRT:
        return "signal SIGABRT (abort)";
    case SIGBUS:
        return "signal SIGBUS (bus error)";
    case SIGFPE:
        return "signal SIGFPE (arithmetic error)";
    default:
        return "a fatal signal";
    }
}

void onSignal(int signal, siginfo_t* info, void*) {
    if (claimReport()) {
        Text what(whatBuffer, sizeof whatBuffer);
        what.add(signalText(signal));
        if (info && info->si_code <= 0)
            what.add(", sent by process ").number(static_cast<unsigned long long>(info->si_pid));
        else if (info && signal != SIGABRT)
            what.add(" at address 0x")
                .number(reinterpret_cast<std::uintptr_t>(info->si_addr), 1, 16);
        report(what.str());
    }
    // The default action, raised again: it takes effect when the handler returns (the signal is
    // blocked until then), and a fault that is not raised recurs at the same instruction.
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
    raise(signal);
}

// Names the exception being handled, its type and message, in `what`.
void describeCurrentException(Text& what) {
    const std::exception_ptr current = std::current_exception();
    if (!current) {
        what.add("std::terminate was called with no exception");
        return;
    }
    what.add("an exception escaped every handler: ");
    if (const std::type_info* type = abi::__cxa_current_exception_type()) {
        int status = 0;
        const std::unique_ptr<char, void (*)(void*)> name(
            abi::__cxa_demangle(type->name(), nullptr, nullptr, &status), std::free);
        what.add(status == 0 && name ? name.get() : type->name());
    }
    try {
        std::rethrow_exception(current);
    } catch (const std::exception& e) {
        what.add(": ").add(e.what());
    } catch (...) {
    }
}

[[noreturn]] void onTerminate() {
    if (claimReport()) {
        Text what(whatBuffer, sizeof whatBuffer);
        describeCurrentException(what);
        report(what.str());
    }
    // The handler set before ends the process as it did (the default one aborts); the abort it
    // raises is not reported again.
    if (previousTerminate)
        previousTerminate();
    std::abort();
}

} // namespace

void installCrashReporter(const CrashReporterSetup& setup) {
    if (setup.folder.size() > MaxSetupPath || setup.dialogProgram.size() > MaxSetupPath)
        throw std::invalid_argument("The crash report folder or window program has a path of more "
                                    "than 1000 bytes: " +
                                    setup.folder + ", " + setup.dialogProgram);
    std::string folder = setup.folder;
    while (folder.size() > 1 && folder.back() == '/')
        folder.pop_back();
    copyText(reportFolder, sizeof reportFolder, folder);
    const char* tmp = environment("TMPDIR");
    copyText(fallbackFolder, sizeof fallbackFolder,
             tmp && *tmp && std::strlen(tmp) <= MaxSetupPath ? tmp : "/tmp");
    copyText(moduleVersion, sizeof moduleVersion, setup.version);
    copyText(dialogProgram, sizeof dialogProgram, setup.dialogProgram);
    if (installed.exchange(true))
        return;

    // The first backtrace loads the unwinder; at the time of a crash it must be there already.
    void* frame[1];
    backtrace(frame, 1);

    stack_t current{};
    if (sigaltstack(nullptr, &current) == 0 && (current.ss_flags & SS_DISABLE)) {
        void* memory = mmap(nullptr, AlternateStackSize, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory != MAP_FAILED) {
            stack_t stack{};
            stack.ss_sp = memory;
            stack.ss_size = AlternateStackSize;
            sigaltstack(&stack, nullptr);
        }
    }
    struct sigaction action {};
    action.sa_sigaction = onSignal;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (const int signal : FatalSignals)
        sigaddset(&action.sa_mask, signal);
    for (std::size_t i = 0; i < std::size(FatalSignals); ++i)
        sigaction(FatalSignals[i], &action, &previousActions[i]);
    previousTerminate = std::set_terminate(onTerminate);
}

void uninstallCrashReporter() {
    if (!installed.exchange(false))
        return;
    for (std::size_t i = 0; i < std::size(FatalSignals); ++i) {
        struct sigaction current {};
        if (sigaction(FatalSignals[i], nullptr, &current) == 0 && (current.sa_flags & SA_SIGINFO) &&
            current.sa_sigaction == onSignal)
            sigaction(FatalSignals[i], &previousActions[i], nullptr);
    }
    if (std::get_terminate() == onTerminate)
        std::set_terminate(previousTerminate);
}

void noteLastStatement(const char* text, std::size_t size) noexcept {
    const std::size_t n = size < StatementSize ? size : StatementSize;
    lastStatementSize.store(0, std::memory_order_relaxed);
    std::memcpy(lastStatement, text, n);
    lastStatementSize.store(n, std::memory_order_release);
}

bool windowCanBeShown() noexcept {
    const char* platform = environment("QT_QPA_PLATFORM");
    if (platform &&
        (std::strncmp(platform, "offscreen", 9) == 0 || std::strncmp(platform, "minimal", 7) == 0))
        return false;
    const char* x11 = environment("DISPLAY");
    const char* wayland = environment("WAYLAND_DISPLAY");
    return (x11 && *x11) || (wayland && *wayland);
}

std::string crashReportSummary(const std::string& reportPath) {
    static const std::string prefix = "What happened: ";
    std::ifstream in(reportPath);
    std::string line;
    while (std::getline(in, line))
        if (line.compare(0, prefix.size(), prefix) == 0)
            return line.substr(prefix.size());
    return "";
}

} // namespace common
