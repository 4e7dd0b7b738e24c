#pragma once
// The module's operations as the host calls them, as a C++ API. The C ABI library exports the same
// operations for hosts written in other languages.
#include "boundary/Structs.h"

#include <cstdint>
#include <string>

namespace boundary {

inline constexpr const char* ModuleName = "FANUC Robocut";
inline constexpr const char* ModuleFileExtension = ".NC";

// Loading the library: creates the store module, then the template editor. Unloading frees them in
// the reverse order. Both are idempotent.
void LibraryLoad();
void LibraryUnload();
bool LibraryLoaded();

void PluginName(std::string& name);
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

} // namespace boundary
