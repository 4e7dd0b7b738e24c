// The editor's plug-in hook: the module's list of plug-in libraries and the form's handlers that
// serve them.
#include "template/TemplatePlugins.h"

#include "common/Services.h"
#include "store/DataMod.h"
#include "template/Template.h"

#include <string>

namespace {

std::vector<void*>& plugins() {
    static std::vector<void*> list;
    return list;
}

// The callback handed to LoadControls: plug-ins call it without arguments after changing the
// object of the selected node.
void refreshNodeImage() {
    if (DlgTemplateExists())
        dlgTemplate().RefreshNodeImage();
}

} // namespace

void AddTemplatePlugin(void* moduleHandle) { plugins().push_back(moduleHandle); }

void ClearTemplatePlugins() { plugins().clear(); }

const std::vector<void*>& TemplatePlugins() { return plugins(); }

void* PluginEntryPoint(void* moduleHandle, const char* name) {
    return common::platform().librarySymbol(moduleHandle, name);
}

void TdlgTemplate::FormShow() {
    // A copy: a plug-in that adds a library while being served does not disturb this walk.
    const std::vector<void*> libraries = TemplatePlugins();
    for (void* library : libraries) {
        if (auto load =
                reinterpret_cast<TPluginLoadControls>(PluginEntryPoint(library, "LoadControls"))) {
            load(pnlPlugins, refreshNodeImage);
            // A border on and off again: the panel redraws with the new controls.
            pnlPlugins->setFrameShape(QFrame::Box);
            pnlPlugins->setFrameShape(QFrame::NoFrame);
        }
        if (auto open = reinterpret_cast<TPluginOpenDatabases>(
                PluginEntryPoint(library, "OpenDatabases"))) {
            std::string path;
            DM().SharedDatabasePath(path);
            open(path.c_str(), PluginEngineName, DM().PluginDatabaseMode());
        }
    }
}

void TdlgTemplate::FormClose() {
    const std::vector<void*> libraries = TemplatePlugins();
    for (void* library : libraries) {
        if (auto unload = reinterpret_cast<TPluginUnloadControls>(
                PluginEntryPoint(library, "UnloadControls")))
            unload();
        if (auto close = reinterpret_cast<TPluginCloseDatabases>(
                PluginEntryPoint(library, "CloseDatabases")))
            close();
    }
}

void TdlgTemplate::tvwTemplateChange() {
    const std::vector<void*> libraries = TemplatePlugins();
    for (void* library : libraries) {
        TCommandSetup* setup = tree::NodeObject(selectedNode());
        if (setup) {
            setup->FileFilter = PluginFileFilter;
            setup->FilterIndex = PluginFilterIndex;
        }
        if (auto selected =
                reinterpret_cast<TPluginItemSelected>(PluginEntryPoint(library, "ItemSelected")))
            selected(setup);
    }
    UpdateButtons();
}

void TdlgTemplate::RefreshNodeImage() {
    QTreeWidgetItem* node = selectedNode();
    if (const TCommandSetup* setup = tree::NodeObject(node))
        tree::SetImageIndex(node, tree::CommandImage(*setup));
}
