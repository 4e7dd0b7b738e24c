#pragma once
// The module's operations as the host calls them, as a C++ API. The C ABI library exports the same
// operations for hosts written in other languages.
#include "boundary/Structs.h"

#include <cstdint>
#include <string>
#include <vector>

class TdlgExport;

namespace boundary {

inline constexpr const char* ModuleName = "FANUC Robocut";
inline constexpr const char* ModuleFileExtension = ".NC";

// Loading the library: creates the store module, then the template editor. Unloading frees them in
// the reverse order. Both are idempotent. The editor is a widget and needs a QApplication: without
// one at load it is created at its first use.
void LibraryLoad();
void LibraryUnload();
bool LibraryLoaded();

void PluginName(std::string& name);
// Adds a plug-in library of the template editor when the entry's kind is exactly
// "Template Enhancement"; any other kind is ignored, and duplicates are kept. Works before
// Initialize and before a QApplication exists; the entries stay until LibraryUnload. Each library
// may export, as plain C functions (all optional, looked up by name at each use):
//   void LoadControls(QWidget* panel, void (*refreshNodeImage)(void));
//   void OpenDatabases(const char* sharedDatabasePath, const char* engine, int32_t mode);
//   void ItemSelected(void* commandSetup); // TCommandSetup*, or null for a section
//   void UnloadControls(void);
//   void CloseDatabases(void);
// An exception thrown by a plug-in reaches the editor's handler that called it.
void AddPlugin(const TPluginEntry& entry);
void FileExtensions(std::string& extensions);
// Opens both databases (local first). A missing table is reported and ends the host; a database
// file that cannot be opened raises a StoreError to the caller.
void Initialize(const std::string& localDirectory, const std::string& sharedDirectory,
                std::int32_t reserved1 = 0, std::int32_t reserved2 = 0);
// "(New)" first, then the templates (of the fixture when `byFixture`), with their ids.
void LoadTemplateNames(const std::string& fixture, TStringList& list, bool byFixture);
void FreeTemplateNames(TStringList* list);
void GetTemplateName(std::int32_t templateId, std::string& name);
// Whether the directory holds a file matching "*.NC" (any case), plain or read-only.
bool JobFileExists(const std::string& directory);
// Deletes a job's rows; both texts go into the statement as given.
void DeleteJob(const std::string& palletNumber, const std::string& jobNumber);

// Copies a job's files (no subdirectories, no programs, no JOB.DAT or JOB.IDX) from `source` to
// `destination` in a progress window that stays up one more second after the last file. Copies
// that fail are passed over in silence. Needs a QApplication (std::logic_error without one).
void CopyFiles(const std::string& source, const std::string& destination);
// The copy loop behind CopyFiles: shows each name in `form`, lets pending messages run after each
// file and returns at once when form.FDone has been set (Cancel). form.FDone is true afterwards.
void CopyJobFiles(TdlgExport& form, const std::string& source, const std::string& destination,
                  bool filter);
// The names of `source` that the copy loop tries, in name order: every entry except plain
// directories and, with `filter`, program files, JOB.DAT and JOB.IDX.
std::vector<std::string> JobFilesToCopy(const std::string& source, bool filter);
// Copies one entry of `source` to `destination` with overwriting; false when the copy failed.
bool CopyJobFile(const std::string& source, const std::string& destination,
                 const std::string& name);
// Whether the name's extension is ".NC" in any case of letters.
bool IsProgramFile(const std::string& fileName);
// Lets pending messages run for `milliseconds` on the platform's tick counter (a busy wait). The
// first reading counts as signed: with the counter at 2^31 or beyond it ends after one round.
void PumpMessages(std::uint32_t milliseconds);

// A new template under the lowest free id, edited in the template editor. On OK `name` is the
// name typed; otherwise the template's row is removed again and `name` is empty. Needs a
// QApplication (std::logic_error without one, before anything is written).
void NewTemplate(const std::string& fixture, std::int32_t workpieces, std::string& name);
// Opens the template editor on a template; the first value is ignored and the id is not checked.
void ModifyTemplate(std::int32_t reserved, std::int32_t workpieces, std::int32_t templateId);
// Shows the "Delete Template" dialog until its Done button; templates in use by a job of the cell
// cannot be deleted there. Needs a QApplication (std::logic_error without one).
void DeleteTemplate();

// Opens the job of the record in the "Master Program Wizard" and shows it; with Unattended set, or
// when the job cannot be opened, reports to the host's "GetJobInfo" at once instead (when
// HostModule is given). Needs a QApplication (std::logic_error without one).
void JobWizard(TJobWizardInfo Info);

} // namespace boundary
