#pragma once
// The embedded engine: a database in one SQLite file.
#include "store/Engine.h"

namespace store {

struct FileOpenOptions {
    bool create = false;     // make the file when it is missing (quorvel init, fixtures)
    bool forReading = false; // read only, journal mode left as the owner made it
};

// Opens the file; raises a StoreError naming the file when it is missing, empty, a folder or not
// a database (the caller adds the database's name).
std::unique_ptr<Connection> openSqliteFile(const std::string& fileName,
                                           const FileOpenOptions& options);

// True when another connection has the database file open.
bool sqliteFileInUse(const std::string& fileName);

} // namespace store
