// The template editor through the C ABI, in a child process that makes its own application.
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

// Runs the exports in this (child) process, first without the host's application and then in it,
// and ends it with 0 when every check held.
[[noreturn]] void runEditorCase() {
    testsupport::TempDir dir;
    abitest::makeCell(dir, false);
    const std::string cell = dir.str();
    void* lib = dlopen(QUORVEL_ABI_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (!lib)
        std::_Exit(10);
    auto newTemplate = RC(NewTemplate);
    auto lastError = RC(RcLastError);
    auto deleteTemplate = RC(DeleteTemplate);
    if (RC(Initialize)(cell.c_str(), cell.c_str(), 0, 0) != 0)
        std::_Exit(11);
    char name[64] = "stale";
    if (newTemplate("FX", 2, name, sizeof name) != -1 || *lastError() == 0 ||
        deleteTemplate() != -1 || templateRows(dir) != 0)
        std::_Exit(12);
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
    if (shown != 2 || length != 0 || name[0] != 0 || deleted != 0 || templateRows(dir) != 0)
        std::_Exit(13);
    // Unloading the module frees its windows.
    dlclose(lib);
    std::_Exit(QApplication::topLevelWidgets().isEmpty() ? 0 : 14);
}

} // namespace

TEST(CAbiTemplateEditor, RefusedWithoutTheHostsApplicationShownAndFreedInIt) {
    EXPECT_EXIT(runEditorCase(), ::testing::ExitedWithCode(0), "");
}
