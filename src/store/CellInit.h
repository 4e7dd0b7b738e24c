#pragma once
// Creates the two database files of a cell from the embedded schema (and demo data). Used by
// `quorvel init` and by test fixtures only; the module itself never creates a table.
#include <string>

namespace store {

struct CellOptions {
    bool overwrite = false; // replace existing database files
    bool demoData = true;   // fill in the demo vocabulary, template and cell configuration
    // A database server (PostgreSQL connection string) for both databases, and the cell's name
    // there; empty: SQLite files in the folder.
    std::string server;
    std::string serverName = "cell";
};

// Creates `dir` if needed, then ZEL.db and Quorvel.db inside it, or a server cell file and both
// schemas on the server. Raises a StoreError when a database exists and `overwrite` is off, or
// when a script fails (nothing is left half-made).
void createCell(const std::string& dir, const CellOptions& options = {});

} // namespace store
