// Each kind of crash in a child process: the child ends as it would without the reporter, and the
// report in the folder says what happened.
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
#include <sstream>
#include <stdexcept>
#include <string>
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

struct Child {
    pid_t pid;
    int status;
};

// Runs `crash` in a child without core dumps, and waits for it.
Child runChild(const std::function<void()>& crash) {
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

TEST(CrashReporter, EachKindWritesAReportAndEndsTheProcessAsBefore) {
    struct Kind {
        void (*provoke)();
        int signal;
        const char* what;
    };
    const Kind kinds[] = {
        {escapeNoexcept, SIGABRT,
         "an exception escaped every handler: std::runtime_error: cell folder on fire"},
        {[] { std::terminate(); }, SIGABRT, "std::terminate was called with no exception"},
        {writeThroughNull, SIGSEGV, "signal SIGSEGV (invalid memory access) at address 0x0"},
        {[] { std::abort(); }, SIGABRT, "signal SIGABRT (abort), sent by process "},
        {[] { raise(SIGBUS); }, SIGBUS, "signal SIGBUS (bus error), sent by process "},
        {[] { raise(SIGFPE); }, SIGFPE, "signal SIGFPE (arithmetic error), sent by process "},
    };
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.what);
        testsupport::TempDir folder;
        const auto [pid, status] = runChild([&] {
            common::installCrashReporter({folder.str() + "/", "9.8.7-test", ""});
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
    }
}

TEST(CrashReporter, ShowsItsWindowOnlyWithADisplayAndFallsBackToTheTemporaryFolder) {
    testsupport::TempDir temp;
    const std::string program = temp.file("window.sh");
    testsupport::writeFile(program, "#!/bin/sh\necho \"$@\" >> " + temp.file("window.txt") + "\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    struct Case {
        const char* x11;
        const char* wayland;
        const char* platform;
        bool window;
    };
    const Case cases[] = {{":5", nullptr, nullptr, true},
                          {nullptr, "wayland-0", nullptr, true},
                          {nullptr, nullptr, nullptr, false},
                          {":5", nullptr, "offscreen", false},
                          {":5", "wayland-0", "minimal:x", false}};
    std::vector<pid_t> withWindow;
    for (const Case& c : cases) {
        const auto set = [](const char* name, const char* value) {
            value ? setenv(name, value, 1) : unsetenv(name);
        };
        const auto [pid, status] = runChild([&] {
            set("DISPLAY", c.x11);
            set("WAYLAND_DISPLAY", c.wayland);
            set("QT_QPA_PLATFORM", c.platform);
            setenv("TMPDIR", temp.str().c_str(), 1);
            common::installCrashReporter({temp.file("missing"), "1", program});
            raise(SIGSEGV);
        });
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGSEGV) << status;
        if (c.window)
            withWindow.push_back(pid);
    }
    const auto names = reports(temp);
    ASSERT_EQ(names.size(), std::size(cases));
    EXPECT_NE(testsupport::readFile(names[0]).find("\nNote: the report folder " +
                                                   temp.file("missing") + " could not take it\n"),
              std::string::npos);
    // The window program ran on the report of each child that had a display, and of no other.
    std::istringstream lines(testsupport::readFile(temp.file("window.txt")));
    std::string line;
    for (const pid_t pid : withWindow) {
        ASSERT_TRUE(std::getline(lines, line));
        EXPECT_TRUE(line.starts_with("crashed " + temp.str() + "/crash-") &&
                    line.ends_with("-" + std::to_string(pid) + ".txt"))
            << line;
    }
    EXPECT_FALSE(std::getline(lines, line)) << line;
}
