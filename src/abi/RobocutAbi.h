/* C ABI of the FANUC Robocut machine module, for hosts written in any language.
 *
 * Loading the library creates the store module; unloading frees it. Strings are UTF-8, passed in
 * as NUL-terminated C strings and returned into caller buffers: a call that returns text writes at
 * most `size` bytes (always NUL-terminated when size > 0) and returns the full length, so a host
 * can call again with a larger buffer. Calls that can fail return a negative number and leave the
 * reason in RcLastError(). No exception ever crosses this boundary. */
#ifndef ROBOCUT_ABI_H
#define ROBOCUT_ABI_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define RC_API __attribute__((visibility("default")))
#else
#define RC_API
#endif

/* A string list with a template id beside each entry (the host's list of template names). */
typedef struct RcStringList RcStringList;

/* The job wizard's record, as C data. */
typedef struct RcJobWizardInfo {
    void* HostModule; /* library offering "GetJobInfo", or NULL */
    int32_t TemplateID;
    int32_t HostTag;
    int32_t JobNumber;
    const char* HostText1;
    const char* HostText2;
    const char* MachineText;
    const char* PalletNumber;
    const char* LocalDirectory;
    const char* InputDirectory;
    const char* OutputDirectory;
    const char* ReservedText1;
    const char* ReservedText2;
    const char* ReservedText3;
    uint8_t HostFlag1;
    uint8_t UseTemplateFixture;
    uint8_t AllowSkip;
    uint8_t AllowSkipDown;
    uint8_t Unattended;
    uint8_t HostFlag2;
    /* The host's check box that gates the notice of a changed template: nonzero = show it. The
     * module reads it and clears it when the user ticks "Don't show this message in the future".
     * Needed whenever a job can meet a changed template; NULL then fails with an error. */
    uint8_t* MessageGate;
} RcJobWizardInfo;

/* The report handed to the host's "GetJobInfo"; valid only during that call. The host's library
 * (HostModule, a dlopen handle) exports it as: void GetJobInfo(const RcAutomationInfo* info); */
typedef struct RcAutomationInfo {
    int32_t HostTag;
    int32_t JobNumber;
    const char* HostText1;
    const char* HostText2;
    const char* MachineText;
    const char* PalletNumber;
    const char* CommandFile;
    const char* AutomationText1;
    const char* CommandText;
    const char* FileList;
    const char* AutomationText2;
    uint8_t AutomationFlag1;
    uint8_t AutomationFlag2;
    uint8_t HostFlag1;
    uint8_t HostFlag2;
} RcAutomationInfo;

/* A further library of the host. Only the kind "Template Enhancement" is taken, as a plug-in of
 * the template editor; any other kind is ignored. The module copies what it keeps. */
typedef struct RcPluginEntry {
    void* ModuleHandle; /* the loaded library (a dlopen handle) */
    const char* Kind;
} RcPluginEntry;

/* A command's object in the template editor, as a plug-in receives it; read and change it with
 * the RcCommandSetup functions below, during the plug-in's call or until the editor's tree is
 * reloaded. */
typedef struct RcCommandSetup RcCommandSetup;

/* Entry points of a plug-in library, exported as plain C functions under these names. All are
 * optional and looked up at each use; libraries are served in the order they were added.
 *   "LoadControls"   at each opening of the editor: place controls on the panel (a QWidget* of
 *                    the host's Qt); call refreshNodeImage after changing the selected object.
 *   "OpenDatabases"  right after LoadControls of the same library: the full path of the shared
 *                    database, the text "Fanuc", and the plug-in database mode (1).
 *   "ItemSelected"   at each change of the selection: the selected command's object, or NULL for
 *                    a section or when nothing is selected.
 *   "UnloadControls" when the editor closes, however it closes: remove the controls.
 *   "CloseDatabases" right after UnloadControls of the same library.
 * A plug-in's changes to an object are saved with the template at OK; they do not count as
 * unsaved changes and are not journalled. */
typedef void (*RcPluginRefreshNodeImage)(void);
typedef void (*RcPluginLoadControls)(void* panel, RcPluginRefreshNodeImage refreshNodeImage);
typedef void (*RcPluginOpenDatabases)(const char* sharedDatabasePath, const char* engine,
                                      int32_t mode);
typedef void (*RcPluginItemSelected)(RcCommandSetup* commandSetup);
typedef void (*RcPluginUnloadControls)(void);
typedef void (*RcPluginCloseDatabases)(void);

/* The whole-number fields of a command's object. Syntax: index from 0 among the command's
 * syntaxes, -1 when none is chosen; Locked: 0 or 1. */
enum RcCommandSetupField { RC_SETUP_SYNTAX = 0, RC_SETUP_LOCKED = 1, RC_SETUP_SPECIAL = 2 };

/* What the module asks of its host. Any member may be NULL: messages then go to standard error
 * with the default answer, a terminate request is only noted (RcTerminateRequested), and pending
 * messages are the host's Qt application's events, when it runs one. */
typedef struct RcHostCallbacks {
    void* context;
    void (*terminate)(void* context);
    void (*processMessages)(void* context);
    /* kind: 0 error, 1 information, 2 warning, 3 confirmation, 4 plain; buttons: 0 OK, 1 OK/Cancel,
     * 2 Yes/No, 3 Yes/No/Cancel. Returns the modal result (1 OK, 2 Cancel, 6 Yes, 7 No). */
    int32_t (*message)(void* context, int32_t kind, const char* text, int32_t buttons);
} RcHostCallbacks;

RC_API void RcSetHostCallbacks(const RcHostCallbacks* callbacks);
RC_API int32_t RcTerminateRequested(void);
/* The reason of the last failed call on this thread, or "". */
RC_API const char* RcLastError(void);

RC_API RcStringList* RcStringListNew(void);
/* Frees the list and every object beside its names. */
RC_API void RcStringListFree(RcStringList* list);
RC_API int32_t RcStringListCount(const RcStringList* list);
/* NULL when the index is out of range. The pointer stays valid until the list changes. */
RC_API const char* RcStringListString(const RcStringList* list, int32_t index);
/* The template id beside an entry; -1 when there is no object or the index is out of range. */
RC_API int32_t RcStringListTemplateId(const RcStringList* list, int32_t index);

/* Installs the module's crash reporter for the whole process; the module never installs it by
 * itself, and a host that keeps its own handlers simply does not call this. From then on an
 * exception that escapes every handler, std::terminate, and the signals SIGSEGV, SIGABRT, SIGBUS
 * and SIGFPE write reportFolder/crash-YYYYMMDD-HHMMSS-PID.txt (time, module version, what
 * happened, a backtrace, the last statement the store ran), name it on standard error, and end the
 * process as before: the default action of the signal, or the terminate handler set before. It
 * replaces the host's handlers of those signals and of terminate. When a program "quorvel" sits
 * beside the library and a display is set, it shows a window naming the report. Calling again
 * changes the folder; unloading the library puts the host's handlers back. 0, or -1 when the
 * folder is not a writable folder, with the reason in RcLastError(). */
RC_API int32_t RcInstallCrashReporter(const char* reportFolder);

/* The exports. */
RC_API int32_t PluginName(char* buffer, int32_t size);
RC_API int32_t FileExtensions(char* buffer, int32_t size);
/* Adds a plug-in library for the template editor; allowed at any time, also before Initialize
 * and before the host runs a Qt application. Entries stay until the module is unloaded; duplicates
 * are kept. 0, or -1 for a NULL entry. */
RC_API int32_t AddPlugin(const RcPluginEntry* entry);
RC_API int32_t Initialize(const char* localDirectory, const char* sharedDirectory,
                          int32_t reserved1, int32_t reserved2);
RC_API int32_t LoadTemplateNames(const char* fixture, RcStringList* list, int32_t byFixture);
RC_API void FreeTemplateNames(RcStringList* list);
RC_API int32_t GetTemplateName(int32_t templateId, char* buffer, int32_t size);
/* 1 when the directory holds a *.NC file, 0 when not. */
RC_API int32_t JobFileExists(const char* directory);
RC_API int32_t DeleteJob(const char* palletNumber, const char* jobNumber);
/* The template editor. Both need a running QApplication in the host's process; without one they
 * return -1 and write nothing. NewTemplate writes the name typed into the buffer and returns its
 * length, 0 when the editor was cancelled (the new template is removed again then). */
RC_API int32_t NewTemplate(const char* fixture, int32_t workpieces, char* name, int32_t size);
RC_API int32_t ModifyTemplate(int32_t reserved, int32_t workpieces, int32_t templateId);
/* The "Delete Template" dialog, shown until it is closed: 0, or -1 (no QApplication, or a store
 * error) with the reason in RcLastError(). */
RC_API int32_t DeleteTemplate(void);
/* The "Master Program Wizard" on the job of the record, shown until it is closed; with Unattended
 * set, or when the job cannot be opened, the host's "GetJobInfo" gets the report at once. Needs a
 * running QApplication in the host's process. 0, or -1 with the reason in RcLastError(). */
RC_API int32_t JobWizard(const RcJobWizardInfo* info);
/* Copies a job's files (not its programs, JOB.DAT, JOB.IDX or subdirectories) from the source
 * directory to the destination in a progress window, which stays up one more second after the
 * last file. Files that cannot be copied are passed over in silence. Needs a running QApplication
 * in the host's process. 0, or -1 (nothing copied) with the reason in RcLastError(). */
RC_API int32_t CopyFiles(const char* source, const char* destination);

/* A command's object, for plug-ins. Texts are returned into buffers as the exports do; the value
 * slots are numbered 1 to 6. Each call returns -1 for a NULL object, a slot or field out of range,
 * or a NULL out pointer, with the reason in RcLastError(). */
RC_API int32_t RcCommandSetupCode(const RcCommandSetup* setup, char* buffer, int32_t size);
RC_API int32_t RcCommandSetupValue(const RcCommandSetup* setup, int32_t slot, char* buffer,
                                   int32_t size);
/* 0 on success; NULL stores an empty text. */
RC_API int32_t RcCommandSetupSetValue(RcCommandSetup* setup, int32_t slot, const char* value);
/* 0 on success, the field's value in *value. */
RC_API int32_t RcCommandSetupInteger(const RcCommandSetup* setup, int32_t field, int32_t* value);
/* 0 on success; for RC_SETUP_LOCKED any nonzero value means locked. */
RC_API int32_t RcCommandSetupSetInteger(RcCommandSetup* setup, int32_t field, int32_t value);

#ifdef __cplusplus
}
#endif

#endif
