// The template editor through the C ABI, each case in a child process with its own application.
#include "AbiHost.h"
#include "RobocutAbi.h"

#include <QApplication>
#include <QDialog>
#include <QTimer>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

int templateRows(const testsupport::TempDir& dir) {
    return std::stoi(abitest::sql(dir.file("Quorvel.db"), "select count(*) from TemplateName"));
}

// Runs the exports in this (child) process and ends it with 0 when every check held.
[[noreturn]] void runEditorCase(bool withApplication) {
    testsupport::TempDir dir;
    abitest::makeCell(dir, false);
    const std::string cell = dir.str();
    void* lib = dlopen(QUORVEL_ABI_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (!lib)
        std::_Exit(10);
    auto initialize = reinterpret_cast<int32_t (*)(const char*, const char*, int32_t, int32_t)>(
        dlsym(lib, "Initialize"));
    auto newTemplate = reinterpret_cast<int32_t (*)(const char*, int32_t, char*, int32_t)>(
        dlsym(lib, "NewTemplate"));
    auto lastError = reinterpret_cast<const char* (*)()>(dlsym(lib, "RcLastError"));
    auto deleteTemplate = reinterpret_cast<int32_t (*)()>(dlsym(lib, "DeleteTemplate"));
    if (initialize(cell.c_str(), cell.c_str(), 0, 0) != 0)
        std::_Exit(11);
    char name[64] = "stale";
    if (!withApplication) {
        const bool refused = newTemplate("FX", 2, name, sizeof name) == -1 && *lastError() != 0 &&
                             deleteTemplate() == -1;
        std::_Exit(refused && templateRows(dir) == 0 ? 0 : 12);
    }
    const abitest::HostApplication host;
    // The operator closes each window as soon as it shows.
    int shown = 0;
    const auto closeWhenShown = [&] {
        QTimer::singleShot(0, [&] {
            if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                ++shown;
                dialog->reject();
            }
        });
    };
    closeWhenShown();
    const int length = newTemplate("FX", 2, name, sizeof name);
    closeWhenShown();
    const int deleted = deleteTemplate();
    std::_Exit(shown == 2 && length == 0 && name[0] == 0 && deleted == 0 && templateRows(dir) == 0
                   ? 0
                   : 13);
}

} // namespace

TEST(CAbiTemplateEditor, RefusedWithoutTheHostsApplication) {
    EXPECT_EXIT(runEditorCase(false), ::testing::ExitedWithCode(0), "");
}

TEST(CAbiTemplateEditor, WindowsShowInTheHostsApplicationAndCancelLeavesNothing) {
    EXPECT_EXIT(runEditorCase(true), ::testing::ExitedWithCode(0), "");
}
