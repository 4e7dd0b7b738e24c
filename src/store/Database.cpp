#include "store/Database.h"

#include "common/Convert.h"

#include "store/CellFile.h"
#include "store/Engine.h"
#include "store/ServerEngine.h"
#include "store/SqliteEngine.h"
#include "store/StoreError.h"

namespace store {

Database::Database(std::string databaseName, std::string sessionName)
    : databaseName_(std::move(databaseName)), sessionName_(std::move(sessionName)) {}

Database::~Database() { close(); }

void Database::setFileName(std::string fileName) {
    if (connection_)
        throw StoreError("Cannot change the file of open database " + databaseName_);
    fileName_ = std::move(fileName);
}

void Database::setOpenForReading(bool reading) {
    if (connection_)
        throw StoreError("Cannot change how open database " + databaseName_ + " is opened");
    openForReading_ = reading;
}

void Database::open(bool create) {
    if (connection_)
        return;
    if (fileName_.empty())
        throw StoreError("No file is set for database " + databaseName_);
    if (Exclusive)
        throw StoreError("Database " + databaseName_ + " cannot be opened exclusively: the host " +
                         "shares its files");
    // Messages of the engines that name the place go on with it ("in file ..."); others are the
    // reason after a colon.
    const auto opening = [this](const StoreError& e) {
        const std::string what = e.what();
        const bool place = what.rfind("in ", 0) == 0 || what.rfind("on ", 0) == 0;
        return StoreError("Cannot open database " + databaseName_ + (place ? " " : ": ") + what,
                          e.engineCode());
    };
    std::string location; // for messages
    try {
        const auto server = serverLocation(fileName_);
        if (server) {
            connection_ = openServer(*server, {.create = create, .forReading = openForReading_});
            location = "in schema " + server->schema + " (for " + server->file + ") on server " +
                       server->shownUri;
        } else {
            connection_ =
                openSqliteFile(fileName_, {.create = create, .forReading = openForReading_});
            location = "in file " + fileName_;
        }
    } catch (const StoreError& e) {
        throw opening(e);
    }
    try {
        checkSchemaVersion();
    } catch (const StoreError& e) {
        close();
        throw opening(StoreError(location + ": " + e.what(), e.engineCode()));
    }
}

void Database::checkSchemaVersion() {
    if (schemaVersion_ < 0)
        return;
    const auto version = connection_->schemaVersion();
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
    connection_.reset();
}

void Database::setReadOnly(bool readOnly) {
    readOnly_ = readOnly;
    if (connection_)
        connection_->setQueryOnly(readOnly);
}

Connection& Database::connection() {
    if (!connection_)
        throw StoreError("Database " + databaseName_ + " is not open");
    return *connection_;
}

bool Database::tableExists(std::string_view tableName) {
    return connection().tableExists(std::string(tableName));
}

std::vector<std::string> Database::indexNames(std::string_view tableName) {
    return connection().indexNames(std::string(tableName));
}

void Database::execute(const std::string& sql) {
    Statement stmt(connection(), sql);
    ++generation_;
    stmt.run();
}

void Database::executeScript(const std::string& sql) {
    auto& c = connection();
    ++generation_;
    try {
        c.executeScript(sql);
    } catch (const StoreError& e) {
        throw StoreError("Script failed on database " + databaseName_ + ": " + e.what(),
                         e.engineCode());
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
    auto stmt = std::make_shared<Statement>(connection(), sql);
    cacheInsert(sql, stmt);
    return stmt;
}

std::shared_ptr<Statement> Database::sharedTranslated(const std::string& text,
                                                      std::string (*translate)(std::string_view)) {
    // A key of its own, so that a text that is also a native statement never meets it.
    const std::string key = std::string("\x01") + text;
    if (auto stmt = cacheLookup(key))
        return stmt;
    auto& c = connection();
    const std::string sql = c.translate(text, translate);
    // Nothing binds values to these texts: a parameter would run as NULL without a word.
    const bool parameter = c.holdsParameter(sql);
    auto stmt = parameter ? nullptr : std::make_shared<Statement>(c, sql, text);
    if (parameter || stmt->parameterCount() > 0)
        throw StoreError("The statement holds an engine parameter (?, :name, @name or $name), " +
                             std::string("which nothing binds; nothing was run of: ") + text,
                         code::Misuse);
    cacheInsert(key, stmt);
    return stmt;
}

std::uint64_t& Database::tableGeneration(const std::string& tableName) {
    return tableGenerations_[common::upperCase(tableName)];
}

int Database::changes() const { return connection_ ? connection_->changes() : 0; }

std::uint64_t Database::transactionSerial() const {
    return connection_ && connection_->inTransaction() ? transactionSerial_ : 0;
}

std::int64_t Database::dataVersion() { return connection().dataVersion(); }

// The outermost transaction takes the write lock at its start, so that a second writer waits the
// busy timeout there instead of failing at its first write; a connection that cannot write
// begins a plain one. Inner ones are savepoints, which nest by name, the innermost first, so one
// name serves every level. The statements stay prepared. Opening and committing change no data;
// a rollback does.
Transaction::Transaction(Database& db) : db_(db) {
    auto& connection = db_.connection();
    savepoint_ = connection.inTransaction();
    if (savepoint_) {
        db_.cached("savepoint quorvel_tx").run();
        return;
    }
    const bool write = !db_.readOnly() && connection.writable();
    const auto statements = connection.beginStatements(write);
    db_.cached(statements.front()).run();
    try {
        for (std::size_t i = 1; i < statements.size(); ++i)
            db_.cached(statements[i]).run();
    } catch (...) {
        db_.cached("rollback").run();
        throw;
    }
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
        } else if (db_.connection().inTransaction()) {
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
