#include "store/Database.h"

#include "common/Convert.h"

#include "store/StoreError.h"

#include <sqlite3.h>

#include <filesystem>

namespace store {

Database::Database(std::string databaseName, std::string sessionName)
    : databaseName_(std::move(databaseName)), sessionName_(std::move(sessionName)) {}

Database::~Database() { close(); }

void Database::setFileName(std::string fileName) {
    if (db_)
        throw StoreError("Cannot change the file of open database " + databaseName_);
    fileName_ = std::move(fileName);
}

void Database::open(bool create) {
    if (db_)
        return;
    if (fileName_.empty())
        throw StoreError("No file is set for database " + databaseName_);
    if (Exclusive)
        throw StoreError("Database " + databaseName_ + " cannot be opened exclusively: the host " +
                         "shares its files");
    std::error_code ec;
    if (!create && !std::filesystem::is_regular_file(fileName_, ec))
        throw StoreError("Cannot open database " + databaseName_ + ": file " + fileName_ +
                             " does not exist",
                         SQLITE_CANTOPEN);
    int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX;
    if (create)
        flags |= SQLITE_OPEN_CREATE;
    sqlite3* db = nullptr;
    int rc = sqlite3_open_v2(fileName_.c_str(), &db, flags, nullptr);
    if (rc != SQLITE_OK) {
        std::string message = db ? sqlite3_errmsg(db) : "out of memory";
        sqlite3_close(db);
        throw StoreError(
            "Cannot open database " + databaseName_ + " in file " + fileName_ + ": " + message, rc);
    }
    db_ = db;
    sqlite3_extended_result_codes(db_, 1);
    sqlite3_busy_timeout(db_, 5000);
    try {
        // Reading the schema proves that the file is a database at all.
        execute("select count(*) from sqlite_master");
        // WAL lets the host keep the file open; NORMAL syncs at checkpoints, not at every commit.
        execute("pragma journal_mode = wal");
        execute("pragma synchronous = normal");
        // A page cache large enough that keyed lookups on big job tables stay in memory.
        execute("pragma cache_size = -32768");
        execute("pragma mmap_size = 268435456");
    } catch (const StoreError& e) {
        close();
        throw StoreError("Cannot open database " + databaseName_ + " in file " + fileName_ + ": " +
                             e.what(),
                         e.engineCode());
    }
}

void Database::close() {
    cache_.clear();
    lru_.clear();
    if (db_) {
        sqlite3_close_v2(db_);
        db_ = nullptr;
    }
}

void Database::setReadOnly(bool readOnly) {
    readOnly_ = readOnly;
    if (db_)
        execute(readOnly ? "pragma query_only = 1" : "pragma query_only = 0");
}

sqlite3* Database::handle() {
    if (!db_)
        throw StoreError("Database " + databaseName_ + " is not open");
    return db_;
}

bool Database::tableExists(std::string_view tableName) {
    auto& stmt =
        cached("select 1 from sqlite_master where type = 'table' and name = ? collate nocase");
    stmt.bind(1, Value(tableName));
    const bool found = stmt.step();
    stmt.reset();
    return found;
}

std::vector<std::string> Database::indexNames(std::string_view tableName) {
    auto& stmt = cached("select name from sqlite_master where type = 'index' and tbl_name = ? "
                        "collate nocase and sql is not null order by rowid");
    stmt.bind(1, Value(tableName));
    std::vector<std::string> names;
    while (stmt.step())
        names.push_back(stmt.column(0).text());
    stmt.reset();
    return names;
}

void Database::execute(const std::string& sql) {
    Statement stmt(handle(), sql);
    ++generation_;
    stmt.run();
}

void Database::executeScript(const std::string& sql) {
    char* error = nullptr;
    ++generation_;
    const int rc = sqlite3_exec(handle(), sql.c_str(), nullptr, nullptr, &error);
    if (rc != SQLITE_OK) {
        std::string message = error ? error : sqlite3_errstr(rc);
        sqlite3_free(error);
        throw StoreError("Script failed on database " + databaseName_ + ": " + message, rc);
    }
}

Statement& Database::cached(const std::string& sql) { return *shared(sql); }

std::shared_ptr<Statement> Database::cacheLookup(const std::string& key) {
    const auto it = cache_.find(key);
    if (it == cache_.end())
        return nullptr;
    lru_.splice(lru_.begin(), lru_, it->second);
    return it->second->second;
}

void Database::cacheInsert(const std::string& key, std::shared_ptr<Statement> stmt) {
    if (lru_.size() >= CacheBound) {
        // The least recently used goes; a holder of its shared pointer keeps it alive.
        cache_.erase(lru_.back().first);
        lru_.pop_back();
    }
    lru_.emplace_front(key, std::move(stmt));
    cache_.emplace(lru_.front().first, lru_.begin());
}

std::shared_ptr<Statement> Database::shared(const std::string& sql) {
    if (auto stmt = cacheLookup(sql))
        return stmt;
    auto stmt = std::make_shared<Statement>(handle(), sql);
    cacheInsert(sql, stmt);
    return stmt;
}

std::shared_ptr<Statement> Database::sharedTranslated(const std::string& text,
                                                      std::string (*translate)(std::string_view)) {
    // A key of its own, so that a text that is also a native statement never meets it.
    const std::string key = std::string("\x01") + text;
    if (auto stmt = cacheLookup(key))
        return stmt;
    auto stmt = std::make_shared<Statement>(handle(), translate(text), text);
    cacheInsert(key, stmt);
    return stmt;
}

std::uint64_t& Database::tableGeneration(const std::string& tableName) {
    return tableGenerations_[common::upperCase(tableName)];
}

int Database::changes() const { return db_ ? sqlite3_changes(db_) : 0; }

// Savepoints nest by name, the innermost first, so one name serves every level; the statements
// stay prepared. Opening and releasing change no data; a rollback does.
Transaction::Transaction(Database& db) : db_(db) { db_.cached("savepoint quorvel_tx").run(); }

Transaction::~Transaction() {
    if (done_)
        return;
    try {
        db_.bumpGeneration();
        db_.cached("rollback to quorvel_tx").run();
        db_.cached("release quorvel_tx").run();
    } catch (...) {
        // A destructor never throws; the connection reports the state at its next use.
    }
}

void Transaction::commit() {
    db_.cached("release quorvel_tx").run();
    done_ = true;
}

} // namespace store
