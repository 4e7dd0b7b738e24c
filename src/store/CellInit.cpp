#include "store/CellInit.h"

#include "store/Database.h"
#include "store/EmbeddedData.h"
#include "store/Schema.h"
#include "store/StoreError.h"

#include <filesystem>
#include <system_error>

namespace store {

namespace {

void removeDatabaseFiles(const std::filesystem::path& file) {
    std::error_code ec;
    for (const char* suffix : {"", "-wal", "-shm", "-journal"})
        std::filesystem::remove(file.string() + suffix, ec);
}

std::string script(const char* name) {
    auto text = embeddedData(name);
    if (text.empty())
        throw StoreError(std::string("The embedded data file ") + name + " is missing");
    return std::string(text);
}

void build(const std::filesystem::path& file, const char* databaseName, const char* schemaFile,
           const char* demoFile, bool demo) {
    removeDatabaseFiles(file);
    try {
        Database db(databaseName, databaseName);
        db.setFileName(file.string());
        db.open(true);
        Transaction tx(db);
        db.executeScript(script(schemaFile));
        if (demo)
            db.executeScript(script(demoFile));
        tx.commit();
    } catch (...) {
        removeDatabaseFiles(file);
        throw;
    }
}

} // namespace

void createCell(const std::string& dir, const CellOptions& options) {
    namespace fs = std::filesystem;
    std::error_code ec;
    fs::create_directories(dir, ec);
    if (ec)
        throw StoreError("Cannot create the cell directory " + dir + ": " + ec.message());
    const fs::path shared = fs::path(dir) / schema::SharedFile;
    const fs::path local = fs::path(dir) / schema::LocalFile;
    if (!options.overwrite) {
        for (const auto& file : {shared, local})
            if (fs::exists(file, ec))
                throw StoreError("The cell in " + dir + " already holds " +
                                 file.filename().string() + "; give --force to replace it");
    }
    build(shared, schema::SharedDatabaseName, "schema_shared.sql", "demo_shared.sql",
          options.demoData);
    build(local, schema::LocalDatabaseName, "schema_local.sql", "demo_local.sql", options.demoData);
}

} // namespace store
