#pragma once
// A process-wide crash reporter. Once installed, an exception that escapes every handler, a call of
// std::terminate, and the fatal signals SIGSEGV, SIGABRT, SIGBUS and SIGFPE write a report (time,
// module version, what happened, a backtrace, the last statement the store ran) to
// FOLDER/crash-YYYYMMDD-HHMMSS-PID.txt, name it on standard error, show a window about it when one
// can be shown, and then end the process as it would have ended without the reporter (the same
// signal; terminate still goes through the handler set before).
//
// Only the owner of the process installs it: quorvel does, and a host may ask for it through the
// C ABI. The signal path allocates nothing and calls only async-signal-safe functions.
#include <cstddef>
#include <string>

namespace common {

struct CrashReporterSetup {
    // Where reports go. When a report cannot be created there at the time of the crash (the folder
    // is missing or read-only), it goes to the temporary folder ($TMPDIR, or /tmp) instead.
    std::string folder;
    // The module version named in reports.
    std::string version;
    // A program run as `PROGRAM crashed REPORT` to show a window about the crash, when a window
    // can be shown (see windowCanBeShown); empty for none. The crashing process waits for it.
    std::string dialogProgram;
};

// Installs the reporter, or replaces the setup of an installed one. Throws when the setup does not
// fit the reporter's fixed buffers (a path of more than 1,000 bytes).
void installCrashReporter(const CrashReporterSetup& setup);

// Puts back the handlers the reporter replaced, where they are still the reporter's own. A library
// that installed it calls this before it is unloaded.
void uninstallCrashReporter();

// Notes the text of a statement the store runs, cut to 1,000 bytes, for the next report. Allocates
// nothing; any thread may call it (the last caller wins).
void noteLastStatement(const char* text, std::size_t size) noexcept;

// Whether a window can be shown: DISPLAY or WAYLAND_DISPLAY is set and QT_QPA_PLATFORM does not
// name a platform without windows (offscreen, minimal). Async-signal-safe.
bool windowCanBeShown() noexcept;

// The "What happened" line of a report file, or "" when the file has none.
std::string crashReportSummary(const std::string& reportPath);

} // namespace common
