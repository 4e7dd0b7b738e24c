#include "store/Database.h"

#include "common/Convert.h"

#include "store/StoreError.h"

#include <sqlite3.h>

#include <filesystem>

#include <unistd.h>

namespace store {

Database::Database(std::string databaseName, std::string sessionName)
    : databaseName_(std::move(databaseName)), sessionName_(std::move(sessionName)) {}

Database::~Database() { close(); }

void Database::setFileName(std::string fileName) {
    if (db_)
        throw StoreError("Cannot change the file of open database " + databaseName_);
    fileName_ = std::move(fileName);
}

void Database::setOpenForReading(bool reading) {
    if (db_)
        throw StoreError("Cannot change how open database " + databaseName_ + " is opened");
    openForReading_ = reading;
}

std::string Database::fileProblem() const {
    namespace fs = std::filesystem;
    std::error_code ec;
    const auto status = fs::status(fileName_, ec);
    if (!fs::exists(status))
        return "file " + fileName_ + " does not exist";
    if (fs::is_directory(status))
        return fileName_ + " is a folder, not a database file";
    if (!fs::is_regular_file(status))
        return fileName_ + " is not a regular file";
    // The engine would take an empty file for a new database; only `quorvel init` makes one.
    if (fs::file_size(fileName_, ec) == 0 && !ec)
        return "file " + fileName_ + " is empty (0 bytes), not a database; run quorvel init " +
               "to make the cell";
    return {};
}

void Database::open(bool create) {
    if (db_)
        return;
    if (fileName_.empty())
        throw StoreError("No file is set for database " + databaseName_);
    if (Exclusive)
        throw StoreError("Database " + databaseName_ + " cannot be opened exclusively: the host " +
                         "shares its files");
    if (!create) {
        if (const auto problem = fileProblem(); !problem.empty())
            throw StoreError("Cannot open database " + databaseName_ + ": " + problem,
                             SQLITE_CANTOPEN);
    }
    int flags =
        (openForReading_ ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) | SQLITE_OPEN_NOMUTEX;
    if (create && !openForReading_)
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
    sqlite3_busy_timeout(db_, BusyTimeoutMs);
    try {
        // Reading the schema proves that the file is a database at all.
        try {
            execute("select count(*) from sqlite_master");
        } catch (const StoreError&) {
            // A WAL file needs its shared-memory file beside it; in a folder nobody may write to
            // it cannot be read at all, and that is what the message has to say.
            const auto folder = std::filesystem::absolute(fileName_).parent_path();
            if (::access(folder.c_str(), W_OK) != 0)
                throw StoreError("it cannot be read while the folder " + folder.string() +
                                 " is read-only (a database in WAL mode needs to make its " +
                                 "shared-memory file there); give write access to the folder");
            throw;
        }
        // The module's own files run in WAL, so that the host can keep them open; a file the
        // module only reads, or may not write, keeps the mode its owner gave it.
        if (!openForReading_ && !sqlite3_db_readonly(db_, "main"))
            execute("pragma journal_mode = wal");
        // NORMAL syncs at checkpoints, not at every commit.
        execute("pragma synchronous = normal");
        // A page cache large enough that keyed lookups on big job tables stay in memory.
        execute("pragma cache_size = -32768");
        execute("pragma mmap_size = 268435456");
        checkSchemaVersion();
    } catch (const StoreError& e) {
        close();
        throw StoreError("Cannot open database " + databaseName_ + " in file " + fileName_ + ": " +
                             e.what(),
                         e.engineCode());
    }
}

void Database::checkSchemaVersion() {
    if (schemaVersion_ < 0)
        return;
    Statement stmt(handle(), "pragma user_version");
    stmt.step();
    const auto version = stmt.columnInteger(0);
    if (version == schemaVersion_)
        return;
    const std::string versions = "its schema version is " + std::to_string(version) +
                                 ", this module knows version " + std::to_string(schemaVersion_);
    if (version > schemaVersion_)
        throw StoreError(versions + ": it was made by a newer version of quorvel; use that " +
                         "version");
    throw StoreError(versions + ": it was made by an older version; back up the cell and run " +
                     "quorvel init --force to make it anew");
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
    // Nothing binds values to these texts: a parameter would run as NULL without a word.
    if (stmt->parameterCount() > 0)
        throw StoreError("The statement holds an engine parameter (?, :name, @name or $name), " +
                             std::string("which nothing binds; nothing was run of: ") + text,
                         SQLITE_MISUSE);
    cacheInsert(key, stmt);
    return stmt;
}

std::uint64_t& Database::tableGeneration(const std::string& tableName) {
    return tableGenerations_[common::upperCase(tableName)];
}

int Database::changes() const { return db_ ? sqlite3_changes(db_) : 0; }

// The outermost transaction begins immediate, so that a second writer waits the busy timeout at
// the start instead of failing at its first write; a connection that cannot write begins a plain
// one. Inner ones are savepoints, which nest by name, the innermost first, so one name serves
// every level. The statements stay prepared. Opening and committing change no data; a rollback
// does.
std::uint64_t Database::transactionSerial() const {
    return db_ && !sqlite3_get_autocommit(db_) ? transactionSerial_ : 0;
}

std::int64_t Database::dataVersion() {
    auto& stmt = cached("pragma data_version");
    stmt.step();
    const std::int64_t version = stmt.columnInteger(0);
    stmt.reset();
    return version;
}

Transaction::Transaction(Database& db) : db_(db) {
    sqlite3* handle = db_.handle();
    savepoint_ = !sqlite3_get_autocommit(handle);
    if (savepoint_)
        db_.cached("savepoint quorvel_tx").run();
    else if (db_.readOnly() || sqlite3_db_readonly(handle, "main") == 1)
        db_.cached("begin").run();
    else
        db_.cached("begin immediate").run();
    if (!savepoint_)
        db_.nextTransactionSerial();
}

Transaction::~Transaction() {
    if (done_)
        return;
    try {
        db_.bumpGeneration();
        if (savepoint_) {
            db_.cached("rollback to quorvel_tx").run();
            db_.cached("release quorvel_tx").run();
        } else if (!sqlite3_get_autocommit(db_.handle())) {
            db_.cached("rollback").run();
        }
    } catch (...) {
        // A destructor never throws; the connection reports the state at its next use.
    }
}

void Transaction::commit() {
    db_.cached(savepoint_ ? "release quorvel_tx" : "commit").run();
    if (!savepoint_)
        db_.nextTransactionSerial();
    done_ = true;
}

} // namespace store
