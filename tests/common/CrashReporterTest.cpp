// Each kind of crash in a child process: the child ends as it would without the reporter, the
// report in the folder says what happened, and the window shows where there is a display.
#include "common/CrashReporter.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <functional>
#include <regex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

[[noreturn, gnu::noinline]] void throwRuntimeError() {
    throw std::runtime_error("cell folder on fire");
}
void escapeNoexcept() noexcept { throwRuntimeError(); }

void writeThroughNull() {
    volatile int* volatile pointer = nullptr;
    *pointer = 1;
}

// Runs `crash` in a child without core dumps, and waits for it: its id and its status.
std::pair<pid_t, int> runChild(const std::function<void()>& crash) {
    const pid_t child = fork();
    if (child == 0) {
        const rlimit noCore{0, 0};
        setrlimit(RLIMIT_CORE, &noCore);
        crash();
        _exit(99);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return {child, status};
}

// The crash reports in `folder`, by name.
std::vector<std::string> reports(const testsupport::TempDir& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        if (entry.path().filename().string().starts_with("crash-"))
            names.push_back(entry.path().string());
    return names;
}

} // namespace

TEST(CrashReporter, EachKindWritesAReportEndsTheProcessAsBeforeAndShowsAWindowOnADisplay) {
    testsupport::TempDir temp;
    const std::string program = temp.file("window.sh");
    testsupport::writeFile(program, "#!/bin/sh\necho \"$@\" >> " + temp.file("window.txt") + "\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    struct Kind {
        void (*provoke)();
        int signal;
        const char* what;
        const char* display[3]; // DISPLAY, WAYLAND_DISPLAY and QT_QPA_PLATFORM of the child
        bool window;
    };
    const Kind kinds[] = {
        {escapeNoexcept,
         SIGABRT,
         "an exception escaped every handler: std::runtime_error: cell folder on fire",
         {":5"},
         true},
        {[] { std::terminate(); },
         SIGABRT,
         "std::terminate was called with no exception",
         {nullptr, "wayland-0"},
         true},
        {writeThroughNull,
         SIGSEGV,
         "signal SIGSEGV (invalid memory access) at address 0x0",
         {},
         false},
        {[] { std::abort(); },
         SIGABRT,
         "signal SIGABRT (abort), sent by process ",
         {":5", nullptr, "offscreen"},
         false},
        {[] { raise(SIGBUS); },
         SIGBUS,
         "signal SIGBUS (bus error), sent by process ",
         {":5", "wayland-0", "minimal:x"},
         false},
        {[] { raise(SIGFPE); },
         SIGFPE,
         "signal SIGFPE (arithmetic error), sent by process ",
         {":5"},
         true},
    };
    std::string windows; // the window program's expected log
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.what);
        testsupport::TempDir folder;
        // The SIGSEGV child's report folder is missing: its report goes to the temporary folder.
        const bool missing = kind.signal == SIGSEGV;
        const auto [pid, status] = runChild([&] {
            const char* names[] = {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"};
            for (int i = 0; i < 3; ++i)
                kind.display[i] ? setenv(names[i], kind.display[i], 1) : unsetenv(names[i]);
            setenv("TMPDIR", folder.str().c_str(), 1);
            common::installCrashReporter(
                {missing ? folder.file("missing") : folder.str() + "/", "9.8.7-test", program});
            common::noteLastStatement("select Name from TemplateName where ID = 7 -- tail", 42);
            kind.provoke();
        });
        ASSERT_TRUE(WIFSIGNALED(status)) << "status " << status;
        EXPECT_EQ(WTERMSIG(status), kind.signal);
        const auto names = reports(folder);
        ASSERT_EQ(names.size(), 1u);
        EXPECT_TRUE(std::regex_search(
            names[0], std::regex("/crash-20[0-9]{6}-[0-9]{6}-" + std::to_string(pid) + "\\.txt$")))
            << names[0];
        const std::string text = testsupport::readFile(names[0]);
        EXPECT_NE(text.find("\nModule version: 9.8.7-test\n"), std::string::npos) << text;
        EXPECT_NE(text.find("\nWhat happened: " + std::string(kind.what)), std::string::npos)
            << text;
        EXPECT_NE(text.find("\nLast statement: select Name from TemplateName where ID = 7\n"),
                  std::string::npos)
            << text;
        const auto backtrace = text.find("\nBacktrace:\n");
        EXPECT_NE(backtrace, std::string::npos) << text;
        EXPECT_NE(text.find("test_common(", backtrace), std::string::npos) << text;
        EXPECT_EQ(common::crashReportSummary(names[0]).rfind(kind.what, 0), 0u);
        EXPECT_EQ(text.find("\nNote: the report folder " + folder.file("missing") +
                            " could not take it\n") != std::string::npos,
                  missing);
        if (kind.window)
            windows += "crashed " + names[0] + "\n";
    }
    // The window program ran on the report of each child that had a display, and of no other.
    EXPECT_EQ(testsupport::readFile(temp.file("window.txt")), windows);
}
