// A plug-in library of the kind "Template Enhancement" for the tests of the editor's plug-in hook.
// Every call goes to the log the test connects, as "name:Entry(arguments)". LoadControls puts a
// button named "pluginButton" on the panel and UnloadControls frees it. When told, ItemSelected
// gives the object it receives syntax 0, locks it, sets its first value to "7.5" and has the node
// refreshed; and the entry named by the test throws.
//
// Built three times: with all five entry points ("full"); with LoadControls and UnloadControls
// only ("partial"); and as a C plug-in that reaches the object through the C ABI's accessors ("c").
#include <QLayout>
#include <QPointer>
#include <QPushButton>
#include <QWidget>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

#ifdef TEST_PLUGIN_C_ABI
#include "RobocutAbi.h"
using Setup = RcCommandSetup;
#else
#include "template/CommandSetup.h"
using Setup = void;
#endif

#define PLUGIN_API extern "C" __attribute__((visibility("default")))

namespace {

void (*logSink)(const char*) = nullptr;
bool lockSelected = false;
std::string failIn;
void (*refresh)() = nullptr;
QPointer<QPushButton> control;

void called(const std::string& entry, const std::string& arguments = {}) {
    if (logSink)
        logSink((std::string(TEST_PLUGIN_NAME) + ":" + entry + "(" + arguments + ")").c_str());
    if (entry == failIn)
        throw std::runtime_error(std::string(TEST_PLUGIN_NAME) + " failed in " + entry);
}

#ifdef TEST_PLUGIN_PARTIAL
#elif defined(TEST_PLUGIN_C_ABI)
// "code", and after a change "code syntax S locked L value V" as read back.
std::string takeSetup(RcCommandSetup* setup) {
    char code[32] = "";
    RcCommandSetupCode(setup, code, sizeof code);
    if (!lockSelected)
        return code;
    RcCommandSetupSetInteger(setup, RC_SETUP_SYNTAX, 0);
    RcCommandSetupSetInteger(setup, RC_SETUP_LOCKED, 1);
    RcCommandSetupSetValue(setup, 1, "7.5");
    int32_t syntax = -9, locked = -9;
    char value[32] = "";
    RcCommandSetupInteger(setup, RC_SETUP_SYNTAX, &syntax);
    RcCommandSetupInteger(setup, RC_SETUP_LOCKED, &locked);
    RcCommandSetupValue(setup, 1, value, sizeof value);
    return std::string(code) + " syntax " + std::to_string(syntax) + " locked " +
           std::to_string(locked) + " value " + value;
}
#else
// "code|filter index|file filter" as received.
std::string takeSetup(void* object) {
    auto* setup = static_cast<TCommandSetup*>(object);
    const std::string seen =
        setup->Code + "|" + std::to_string(setup->FilterIndex) + "|" + setup->FileFilter;
    if (lockSelected) {
        setup->Syntax = 0;
        setup->Locked = true;
        setup->Value_1 = "7.5";
    }
    return seen;
}
#endif

} // namespace

// Connects the test: its log, whether ItemSelected changes the object, and the entry that throws
// (none when empty or null).
PLUGIN_API void plugin_control(void (*log)(const char*), int lock, const char* throwIn) {
    logSink = log;
    lockSelected = lock != 0;
    failIn = throwIn ? throwIn : "";
}

PLUGIN_API void LoadControls(void* panel, void (*refreshNodeImage)(void)) {
    auto* widget = static_cast<QWidget*>(panel);
    called("LoadControls", widget->objectName().toStdString());
    refresh = refreshNodeImage;
    control = new QPushButton("Plug-in", widget);
    control->setObjectName("pluginButton");
    if (widget->layout())
        widget->layout()->addWidget(control);
}

PLUGIN_API void UnloadControls(void) {
    called("UnloadControls");
    const std::unique_ptr<QPushButton> owned(control.data()); // freeing it takes it off the panel
}

#ifndef TEST_PLUGIN_PARTIAL
PLUGIN_API void OpenDatabases(const char* sharedDatabasePath, const char* engine, int32_t mode) {
    called("OpenDatabases",
           std::string(sharedDatabasePath) + "|" + engine + "|" + std::to_string(mode));
}

PLUGIN_API void ItemSelected(Setup* setup) {
    const std::string seen = setup ? takeSetup(setup) : "none";
    called("ItemSelected", seen);
    if (setup && lockSelected && refresh)
        refresh();
}

PLUGIN_API void CloseDatabases(void) { called("CloseDatabases"); }
#endif
