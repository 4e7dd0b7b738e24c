// The job file copy through the C ABI: refused without the host's Qt application, done with it.
#include "AbiHost.h"
#include "RobocutAbi.h"

#include <QApplication>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

using CopyFilesFn = int32_t (*)(const char*, const char*);

[[noreturn]] void copyWithApplication(CopyFilesFn copyFiles, const testsupport::TempDir& from,
                                      const testsupport::TempDir& to) {
    const abitest::HostApplication host;
    const bool copied = copyFiles(from.str().c_str(), to.str().c_str()) == 0 &&
                        std::filesystem::exists(to.file("notes.txt")) &&
                        QApplication::topLevelWidgets().isEmpty();
    std::_Exit(copied ? 0 : 1);
}

} // namespace

TEST(CAbiCopyFiles, NeedsTheHostsApplication) {
    testsupport::TempDir from, to;
    testsupport::writeFile(from.file("notes.txt"), "n");
    void* lib = dlopen(QUORVEL_ABI_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(lib, nullptr) << dlerror();
    auto copyFiles = reinterpret_cast<CopyFilesFn>(dlsym(lib, "CopyFiles"));
    auto lastError = reinterpret_cast<const char* (*)()>(dlsym(lib, "RcLastError"));
    ASSERT_NE(copyFiles, nullptr);
    EXPECT_EQ(copyFiles(from.str().c_str(), to.str().c_str()), -1);
    EXPECT_NE(std::string(lastError()).find("Qt application"), std::string::npos) << lastError();
    EXPECT_FALSE(std::filesystem::exists(to.file("notes.txt")));

    EXPECT_EXIT(copyWithApplication(copyFiles, from, to), ::testing::ExitedWithCode(0), "");
    dlclose(lib);
}
