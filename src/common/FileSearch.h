#pragma once
// A directory listing with the classic attribute words, so that routines which pass over "exactly
// the directory bit" decide as they would on the original file system.
#include <string>
#include <vector>

namespace common {

// Attribute bits of a found entry.
inline constexpr int faReadOnly = 1;
inline constexpr int faHidden = 2;
inline constexpr int faDirectory = 16;
inline constexpr int faArchive = 32;

struct FoundFile {
    std::string name; // the bare name
    int attributes = 0;
};

// The entries of a directory, by name, without descending. A directory is faDirectory, a file
// faArchive; a name starting with '.' adds faHidden, an entry its owner cannot write faReadOnly.
// A directory that is missing or cannot be read gives no entries.
std::vector<FoundFile> FindFiles(const std::string& directory);

} // namespace common
