// The editor's plug-in hook with real plug-in libraries.
#include "TemplateFixture.h"

#include "common/Services.h"
#include "template/TemplatePlugins.h"

#include <QPushButton>
#include <dlfcn.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

std::vector<std::string> calls;
void record(const char* call) { calls.emplace_back(call); }

using Control = void (*)(void (*log)(const char*), int lock, const char* throwIn);

class PluginTest : public testsupport::TemplateTest {
protected:
    void SetUp() override {
        TemplateTest::SetUp();
        full = dlopen(TEST_PLUGIN_FULL_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        partial = dlopen(TEST_PLUGIN_PARTIAL_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_TRUE(full && partial) << dlerror();
        control(full, false, nullptr);
        control(partial, false, nullptr);
        calls.clear();
    }
    void TearDown() override {
        ClearTemplatePlugins();
        TemplateTest::TearDown();
        dlclose(partial);
        dlclose(full);
    }
    static void control(void* library, bool lock, const char* throwIn) {
        reinterpret_cast<Control>(dlsym(library, "plugin_control"))(record, lock, throwIn);
    }
    void* full = nullptr;
    void* partial = nullptr;
    // Entry points are looked up in the loaded libraries themselves.
    common::RealPlatform realPlatform;
    common::ScopedServices services{{&cell.ui, &realPlatform, &cell.host}};
};

} // namespace

TEST_F(PluginTest, EachOpeningServesThePluginsInOrderAndPassesOverMissingEntryPoints) {
    open();
    selectAt(2); // without plug-ins the object keeps its empty filter
    EXPECT_EQ(tree::NodeObject(tree::Selected(tv()))->FileFilter, "");

    AddTemplatePlugin(full);
    AddTemplatePlugin(partial); // has neither OpenDatabases, ItemSelected nor CloseDatabases
    std::string shared;
    DM().SharedDatabasePath(shared);
    const std::vector<std::string> opening{
        "full:LoadControls(pnlPlugins)",
        "full:OpenDatabases(" + shared + "|Fanuc|1)",
        "partial:LoadControls(pnlPlugins)",
        "full:ItemSelected(none)",
        "full:ItemSelected(G90|2|All Files (*.*)|*.*|Command Files (*.NC)|*.NC)",
        "full:UnloadControls()",
        "full:CloseDatabases()",
        "partial:UnloadControls()",
    };
    const auto pluginButtons = [&] {
        return dlg().pnlPlugins->findChildren<QPushButton*>("pluginButton").size();
    };
    for (QPushButton* end : {dlg().btnCancel, dlg().btnOK}) {
        calls.clear();
        dlg().show();
        EXPECT_EQ(pluginButtons(), 2);
        selectAt(0); // a section
        selectAt(2);
        EXPECT_EQ(buttons(), "11111011"); // updated after the plug-ins
        end->click();
        EXPECT_FALSE(dlg().isVisible());
        EXPECT_EQ(pluginButtons(), 0);
        EXPECT_EQ(calls, opening);
    }
}

TEST_F(PluginTest, PluginChangesRefreshTheNodeUnjournalledAndFailuresReachTheCaller) {
    open();
    AddTemplatePlugin(full);
    control(full, true, nullptr);
    dlg().show(); // the plug-in gets its refresh callback with its controls
    selectAt(3);  // G54, no syntax chosen yet
    EXPECT_EQ(tree::ImageIndex(tree::Selected(tv())), tree::ImageLocked);
    EXPECT_FALSE(dlg().Modified());
    EXPECT_TRUE(journal(1).empty());

    // Not caught by the hook: a direct call throws, a selection is reported by the handler.
    control(full, false, "ItemSelected");
    EXPECT_THROW(dlg().tvwTemplateChange(), std::runtime_error);
    selectAt(2);
    EXPECT_EQ(cell.ui.messages(), std::vector<std::string>{"full failed in ItemSelected"});
    control(full, false, nullptr);
    dlg().btnCancel->click();
}
