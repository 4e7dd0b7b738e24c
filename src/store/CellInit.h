#pragma once
// Creates the two database files of a cell from the embedded schema (and demo data). Used by
// `quorvel init` and by test fixtures only; the module itself never creates a table.
#include <string>

namespace store {

struct CellOptions {
    bool overwrite = false; // replace existing database files
    bool demoData = true;   // fill in the demo vocabulary, template and cell configuration
};

// Creates `dir` if needed, then ZEL.db and Quorvel.db inside it. Raises a StoreError when a file
// exists and `overwrite` is off, or when a script fails (nothing is left half-made).
void createCell(const std::string& dir, const CellOptions& options = {});

} // namespace store
