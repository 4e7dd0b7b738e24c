#include "store/CellInit.h"

#include "store/CellFile.h"
#include "store/Database.h"
#include "store/EmbeddedData.h"
#include "store/Schema.h"
#include "store/ServerEngine.h"
#include "store/SqliteEngine.h"
#include "store/StoreError.h"

#include <filesystem>
#include <system_error>

namespace store {

namespace {

void removeDatabaseFiles(const std::filesystem::path& file) {
    if (const auto server = serverLocation(file.string())) {
        dropServerSchema(*server);
        return;
    }
    std::error_code ec;
    for (const char* suffix : {"", "-wal", "-shm", "-journal"})
        std::filesystem::remove(file.string() + suffix, ec);
}

// Whether the database of `file` exists, and whether another process has it open.
bool databaseExists(const std::filesystem::path& file) {
    if (const auto server = serverLocation(file.string()))
        return serverSchemaExists(*server);
    std::error_code ec;
    return std::filesystem::exists(file, ec);
}

bool databaseInUse(const std::filesystem::path& file) {
    if (const auto server = serverLocation(file.string()))
        return serverSchemaInUse(*server);
    return sqliteFileInUse(file.string());
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
    const auto alreadyHolds = [&](const fs::path& file) {
        return StoreError("The cell in " + dir + " already holds " + file.filename().string() +
                          "; give --force to replace it");
    };
    // A server cell file in the folder decides where the databases are; `server` writes one.
    if (!options.server.empty()) {
        for (const auto& file : {shared, local, fs::path(dir) / ServerCellFile})
            if (fs::exists(file, ec) && !options.overwrite)
                throw alreadyHolds(file);
        writeServerCell(dir, options.server, options.serverName);
    }
    for (const auto& file : {shared, local}) {
        if (!databaseExists(file))
            continue;
        if (!options.overwrite)
            throw alreadyHolds(file);
        // Deleting a file another process has open would leave it writing to rows that are gone.
        if (databaseInUse(file))
            throw StoreError("The cell in " + dir + " is in use: " + file.filename().string() +
                                 " is open in another process; close every program that uses " +
                                 "the cell, then give --force again",
                             code::Busy);
    }
    build(shared, schema::SharedDatabaseName, "schema_shared.sql", "demo_shared.sql",
          options.demoData);
    build(local, schema::LocalDatabaseName, "schema_local.sql", "demo_local.sql", options.demoData);
}

} // namespace store
