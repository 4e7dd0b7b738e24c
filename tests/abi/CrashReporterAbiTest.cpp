// The crash reporter as a host asks for it: in a child process, which loads the module, runs a
// statement through it and then crashes.
#include "AbiHost.h"
#include "RobocutAbi.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>

namespace {

// The child's steps; its exit code names the first that failed.
[[noreturn]] void crashThroughTheModule(const std::string& folder, const std::string& cell) {
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    setenv("QT_QPA_PLATFORM", "offscreen", 1); // no window from a test
    void* lib = dlopen(QUORVEL_ABI_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (!lib)
        _exit(2);
    auto install = RC(RcInstallCrashReporter);
    auto lastError = RC(RcLastError);
    const std::string missing = folder + "/missing";
    if (install(missing.c_str()) == 0 || install(nullptr) == 0 ||
        std::string(lastError()) != "The crash report folder \"\" is not a writable folder")
        _exit(3);
    if (install(folder.c_str()) != 0)
        _exit(4);
    if (RC(Initialize)(cell.c_str(), cell.c_str(), 0, 0) != 0 || RC(DeleteJob)("1", "2") != 0)
        _exit(5);
    raise(SIGSEGV);
    _exit(6);
}

} // namespace

TEST(CAbi, CrashReporterTakesOnlyAWritableFolderAndReportsTheModulesLastStatement) {
    testsupport::TempDir folder;
    testsupport::TempDir cell;
    abitest::makeCell(cell, false);
    const pid_t child = fork();
    if (child == 0)
        crashThroughTheModule(folder.str(), cell.str());
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status)) << "failed at step " << WEXITSTATUS(status);
    EXPECT_EQ(WTERMSIG(status), SIGSEGV);

    std::string text;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        text += testsupport::readFile(entry.path().string());
    EXPECT_NE(text.find("\nModule version: " QUORVEL_VERSION "\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\nLast statement: delete from Jobs where Pallet_Number = 1 and "
                        "Job_Number = 2\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("libfanucrobocut.so("), std::string::npos) << text;
}
