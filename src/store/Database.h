#pragma once
// One connection to one database file, named as the schema names it ("ZEL", "Local").
#include "store/Statement.h"

#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace store {

class Connection;

class Database {
public:
    Database(std::string databaseName, std::string sessionName);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // Connection settings as the store module gives them. The engine always shares its files (with
    // a busy timeout) and shows no dialogs, so these are carried, not acted on; an exclusive
    // database is refused at open because the host must be able to hold the file too.
    bool Exclusive = false;
    bool MultiUser = true;
    int MaxConnections = 500;
    bool SilentMode = true;

    const std::string& databaseName() const { return databaseName_; }
    const std::string& sessionName() const { return sessionName_; }

    // Settable before opening.
    void setFileName(std::string fileName);
    const std::string& fileName() const { return fileName_; }
    // Carried as the file's protection key; plain SQLite checks it against nothing.
    void setPassword(std::string password) { password_ = std::move(password); }
    const std::string& password() const { return password_; }

    // Settable before opening: the file is opened for reading only and its journal mode is left as
    // its owner made it (the host's database). Otherwise the file is switched to WAL.
    void setOpenForReading(bool reading);
    bool openForReading() const { return openForReading_; }
    // Settable before opening: the schema version (`user_version`) the file must have; a file of
    // another version is refused at open with a message saying what to do. Unset: not checked.
    void setSchemaVersion(int version) { schemaVersion_ = version; }
    // The busy timeout of every connection: how long a statement waits for another's lock.
    static constexpr int BusyTimeoutMs = 5000;

    // Opens an existing database file; raises a StoreError naming the file when it is missing, is
    // empty, is a folder or is not a database. `create` is for `quorvel init` and test fixtures.
    void open(bool create = false);
    void close();
    bool connected() const { return connection_ != nullptr; }
    // Settable after opening; a read-only database refuses every write.
    void setReadOnly(bool readOnly);
    bool readOnly() const { return readOnly_; }

    bool tableExists(std::string_view tableName);
    // The table's indexes in the order they were defined (automatic ones excluded).
    std::vector<std::string> indexNames(std::string_view tableName);

    // Runs one statement text as given (no translation); raises on error.
    void execute(const std::string& sql);
    // Runs a script of several statements; for creating cells and fixtures only.
    void executeScript(const std::string& sql);
    // A prepared statement kept for reuse. The cache keeps the CacheBound most recently used
    // texts, so the reference is valid until that many other texts have gone through the cache
    // (or the database closes); hold `shared` to keep a statement across other work.
    Statement& cached(const std::string& sql);
    std::shared_ptr<Statement> shared(const std::string& sql);
    // The same cache for the system's own statement texts: prepared once from `translate(text)`,
    // errors naming `text`. A text that holds an engine parameter is refused: nothing binds one.
    std::shared_ptr<Statement> sharedTranslated(const std::string& text,
                                                std::string (*translate)(std::string_view));
    static constexpr std::size_t CacheBound = 256;
    // The open connection; raises when the database is closed.
    Connection& connection();
    // Rows changed by the last statement.
    int changes() const;
    // Increments whenever any statement on this connection may have changed data.
    std::uint64_t generation() const { return generation_; }
    void bumpGeneration() { ++generation_; }
    // The transaction this module opened and is still in, by number; 0 outside one.
    std::uint64_t transactionSerial() const;
    // Changes when another connection commits to the database file.
    std::int64_t dataVersion();
    void nextTransactionSerial() { ++transactionSerial_; }
    // Increments whenever a table object writes the table (any case of its name); the counter
    // stays at its address while the database lives.
    std::uint64_t& tableGeneration(const std::string& tableName);

private:
    std::string databaseName_;
    std::string sessionName_;
    std::string fileName_;
    std::string password_;
    bool readOnly_ = false;
    bool openForReading_ = false;
    int schemaVersion_ = -1; // -1: not checked
    std::unique_ptr<Connection> connection_;
    void checkSchemaVersion();
    // Most recently used first; the map finds a text's place in the list.
    using CacheList = std::list<std::pair<std::string, std::shared_ptr<Statement>>>;
    std::shared_ptr<Statement> cacheLookup(const std::string& key);
    void cacheInsert(const std::string& key, std::shared_ptr<Statement> stmt);
    CacheList lru_;
    std::unordered_map<std::string_view, CacheList::iterator> cache_;
    std::uint64_t generation_ = 0;
    std::uint64_t transactionSerial_ = 0;
    std::unordered_map<std::string, std::uint64_t> tableGenerations_;
};

// A transaction on one database that rolls back unless committed. The outermost one takes the
// write lock at its start (waiting the busy timeout for another writer); inner ones are
// savepoints.
class Transaction {
public:
    explicit Transaction(Database& db);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void commit();

private:
    Database& db_;
    bool savepoint_ = false;
    bool done_ = false;
};

} // namespace store
