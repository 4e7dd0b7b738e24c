#include "store/CellInit.h"

#include "store/Database.h"
#include "store/EmbeddedData.h"
#include "store/Schema.h"
#include "store/StoreError.h"

#include <sqlite3.h>

#include <filesystem>
#include <system_error>

namespace store {

namespace {

void removeDatabaseFiles(const std::filesystem::path& file) {
    std::error_code ec;
    for (const char* suffix : {"", "-wal", "-shm", "-journal"})
        std::filesystem::remove(file.string() + suffix, ec);
}

// True when another connection has the database file open: it holds a lock that a zero wait
// cannot take. In WAL mode a connection that has read the file keeps it from leaving WAL, which
// finds idle readers as well; the mode is put back at once.
bool inUse(const std::filesystem::path& file) {
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
        sqlite3_close(db);
        return false;
    }
    sqlite3_busy_timeout(db, 0);
    const auto busy = [](int rc) {
        return (rc & 0xff) == SQLITE_BUSY || (rc & 0xff) == SQLITE_LOCKED;
    };
    bool used = false;
    int rc = sqlite3_exec(db, "begin exclusive", nullptr, nullptr, nullptr);
    if (busy(rc)) {
        used = true;
    } else if (rc == SQLITE_OK) {
        sqlite3_exec(db, "rollback", nullptr, nullptr, nullptr);
        std::string mode;
        const auto read = [](void* out, int, char** values, char**) {
            *static_cast<std::string*>(out) = values[0] ? values[0] : "";
            return 0;
        };
        sqlite3_exec(db, "pragma journal_mode", read, &mode, nullptr);
        if (mode == "wal") {
            rc = sqlite3_exec(db, "pragma journal_mode = delete", read, &mode, nullptr);
            if (busy(rc) || mode == "wal")
                used = true;
            else
                sqlite3_exec(db, "pragma journal_mode = wal", nullptr, nullptr, nullptr);
        }
    }
    sqlite3_close(db);
    return used;
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
    for (const auto& file : {shared, local}) {
        if (!fs::exists(file, ec))
            continue;
        if (!options.overwrite)
            throw StoreError("The cell in " + dir + " already holds " + file.filename().string() +
                             "; give --force to replace it");
        // Deleting a file another process has open would leave it writing to rows that are gone.
        if (inUse(file))
            throw StoreError("The cell in " + dir + " is in use: " + file.filename().string() +
                                 " is open in another process; close every program that uses " +
                                 "the cell, then give --force again",
                             SQLITE_BUSY);
    }
    build(shared, schema::SharedDatabaseName, "schema_shared.sql", "demo_shared.sql",
          options.demoData);
    build(local, schema::LocalDatabaseName, "schema_local.sql", "demo_local.sql", options.demoData);
}

} // namespace store
