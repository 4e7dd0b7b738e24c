#pragma once
// Plug-in libraries of the kind "Template Enhancement": they put their own controls on the
// editor's plug-in panel, open the databases by themselves and learn which node is selected, and
// so fill in Syntax, the values, Locked and Special of a TCommandSetup.
//
// The list belongs to the module, not to the form: the host may add libraries before any
// QApplication exists, and entries stay until the module is unloaded. The editor reads the list at
// each use. Entry points are looked up by name through the platform seam at each use; every one is
// optional, and a missing one is passed over. Libraries are served in the order they were added.
//
// Calling form of the entry points (plain C functions, exported with C names):
//   void LoadControls(QWidget* panel, void (*refreshNodeImage)(void));
//       at FormShow: place controls on the panel; call refreshNodeImage after changing an object
//   void OpenDatabases(const char* sharedDatabasePath, const char* engine, int32_t mode);
//       right after LoadControls of the same library: the shared database's full path, "Fanuc",
//       and TDM::PluginDatabaseMode()
//   void ItemSelected(void* commandSetup);
//       at each change of the selection: the selected node's TCommandSetup*, null for a section
//       or when nothing is selected
//   void UnloadControls(void);
//   void CloseDatabases(void);
//       at FormClose, in this order
// A plug-in's exception is not caught here: it reaches whoever ran the editor's handler.
#include <cstdint>
#include <vector>

class QWidget;

extern "C" {
typedef void (*TPluginRefreshNodeImage)(void);
typedef void (*TPluginLoadControls)(QWidget* panel, TPluginRefreshNodeImage refreshNodeImage);
typedef void (*TPluginOpenDatabases)(const char* sharedDatabasePath, const char* engine,
                                     std::int32_t mode);
typedef void (*TPluginItemSelected)(void* commandSetup);
typedef void (*TPluginUnloadControls)(void);
typedef void (*TPluginCloseDatabases)(void);
}

// The kind that marks a library as a plug-in of the template editor.
inline constexpr const char* TemplateEnhancementKind = "Template Enhancement";
// The engine named to OpenDatabases.
inline constexpr const char* PluginEngineName = "Fanuc";
// Filter and filter index given to a command's object before a plug-in sees it.
inline constexpr const char* PluginFileFilter = "All Files (*.*)|*.*|Command Files (*.NC)|*.NC";
inline constexpr std::int32_t PluginFilterIndex = 2;

// Appends a library (by its module handle); duplicates are kept.
void AddTemplatePlugin(void* moduleHandle);
// Forgets every library: the module is being unloaded.
void ClearTemplatePlugins();
// The libraries, in the order they were added.
const std::vector<void*>& TemplatePlugins();
// An entry point of a library, or null when it has none of that name.
void* PluginEntryPoint(void* moduleHandle, const char* name);
