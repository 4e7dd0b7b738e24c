// A C plug-in of the template editor through the C ABI, in a child process.
#include "AbiHost.h"
#include "RobocutAbi.h"

#include <QApplication>
#include <QDialog>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> calls;
void record(const char* call) { calls.emplace_back(call); }

using abitest::check;

[[noreturn]] void runPluginCase() {
    testsupport::TempDir dir;
    abitest::makeCell(dir, true);
    void* lib = dlopen(QUORVEL_ABI_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    void* plugin = dlopen(TEST_PLUGIN_C_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (!lib || !plugin) {
        std::cerr << dlerror() << '\n';
        std::_Exit(2);
    }
    reinterpret_cast<void (*)(void (*)(const char*), int, const char*)>(
        dlsym(plugin, "plugin_control"))(record, 1, nullptr);

    // Before Initialize and before any QApplication; another kind is ignored.
    std::string kind = "Template Enhancement";
    RcPluginEntry entry{plugin, kind.c_str()};
    check(RC(AddPlugin)(&entry) == 0, "AddPlugin before the application");
    entry.Kind = "Other";
    check(RC(AddPlugin)(&entry) == 0, "AddPlugin of another kind");
    check(RC(AddPlugin)(nullptr) == -1, "AddPlugin without an entry");
    check(RC(RcCommandSetupCode)(nullptr, nullptr, 0) == -1, "accessor without an object");
    check(RC(Initialize)(dir.str().c_str(), dir.str().c_str(), 0, 0) == 0, "Initialize");

    const abitest::HostApplication host;
    // The operator selects G54, the third command of the Header, and closes the editor.
    QTimer::singleShot(0, [] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        check(dialog && dialog->findChild<QPushButton*>("pluginButton"), "the plug-in's control");
        if (!dialog)
            return;
        auto* tree = dialog->findChild<QTreeWidget*>("tvwTemplate");
        tree->setCurrentItem(tree->topLevelItem(0)->child(2));
        dialog->reject();
    });
    check(RC(ModifyTemplate)(0, 3, 1) == 0, "ModifyTemplate");
    const std::vector<std::string> expected{
        "c:LoadControls(pnlPlugins)",
        "c:OpenDatabases(" + dir.file("ZEL.db") + "|Fanuc|1)",
        "c:ItemSelected(G54 syntax 0 locked 1 value 7.5)",
        "c:UnloadControls()",
        "c:CloseDatabases()",
    };
    check(calls == expected, "the plug-in's calls");
    if (calls != expected)
        for (const auto& call : calls)
            std::cerr << call << '\n';
    std::_Exit(abitest::failures == 0 ? 0 : 1);
}

} // namespace

TEST(CAbiPlugin, AddedBeforeTheApplicationAndServedAtAnOpening) {
    EXPECT_EXIT(runPluginCase(), ::testing::ExitedWithCode(0), "");
}
