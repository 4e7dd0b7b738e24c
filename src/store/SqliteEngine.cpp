#include "store/SqliteEngine.h"

#include "store/Database.h"
#include "store/SqlTokens.h"
#include "store/StoreError.h"

#include <sqlite3.h>

#include <filesystem>

#include <unistd.h>

namespace store {

namespace {

std::string quoted(const std::string& name) { return sql::quote(name, '"'); }

class SqliteStatement : public EngineStatement {
public:
    SqliteStatement(sqlite3* db, const std::string& sql, std::string shown = {})
        : db_(db), shown_(shown.empty() ? sql : std::move(shown)) {
        const char* tail = nullptr;
        const int rc =
            sqlite3_prepare_v2(db_, sql.c_str(), static_cast<int>(sql.size()), &stmt_, &tail);
        if (rc != SQLITE_OK) {
            std::string message = sqlite3_errmsg(db_);
            sqlite3_finalize(stmt_);
            throw StoreError("Statement failed: " + message + " in: " + shown_, rc);
        }
        if (tail && !sql::onlyNoise(tail)) {
            sqlite3_finalize(stmt_);
            throw StoreError("Only one statement may run per call; nothing was run of: " + shown_,
                             SQLITE_MISUSE);
        }
        if (!stmt_)
            throw StoreError("Empty statement: " + shown_, SQLITE_MISUSE);
    }
    ~SqliteStatement() override { sqlite3_finalize(stmt_); }

    void bind(int index, const Value& value, bool copy) override {
        int rc;
        if (value.isNull())
            rc = sqlite3_bind_null(stmt_, index);
        else if (value.isInteger())
            rc = sqlite3_bind_int64(stmt_, index, value.integer());
        else if (value.isReal())
            rc = sqlite3_bind_double(stmt_, index, value.real());
        else
            rc = sqlite3_bind_text(stmt_, index, value.text().data(),
                                   static_cast<int>(value.text().size()),
                                   copy ? SQLITE_TRANSIENT : SQLITE_STATIC);
        if (rc != SQLITE_OK)
            throw StoreError(
                std::string("Cannot bind a value: ") + sqlite3_errmsg(db_) + " in: " + shown_, rc);
    }
    bool step() override {
        const int rc = sqlite3_step(stmt_);
        if (rc == SQLITE_ROW)
            return true;
        if (rc == SQLITE_DONE)
            return false;
        std::string message = sqlite3_errmsg(db_);
        sqlite3_reset(stmt_);
        throw StoreError("Statement failed: " + message + " in: " + shown_, rc);
    }
    bool running() const override { return sqlite3_stmt_busy(stmt_) != 0; }
    void reset(bool clear) override {
        sqlite3_reset(stmt_);
        if (clear)
            sqlite3_clear_bindings(stmt_);
    }
    int columnCount() const override { return sqlite3_column_count(stmt_); }
    std::string columnName(int index) const override {
        const char* name = sqlite3_column_name(stmt_, index);
        return name ? name : "";
    }
    Value column(int index) const override {
        switch (sqlite3_column_type(stmt_, index)) {
        case SQLITE_INTEGER:
            return Value(static_cast<long long>(sqlite3_column_int64(stmt_, index)));
        case SQLITE_FLOAT:
            return Value(sqlite3_column_double(stmt_, index));
        case SQLITE_NULL:
            return Value();
        default: {
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(stmt_, index));
            const int size = sqlite3_column_bytes(stmt_, index);
            return Value(std::string(text ? text : "", static_cast<std::size_t>(size)));
        }
        }
    }
    std::int64_t columnInteger(int index) const override {
        return sqlite3_column_int64(stmt_, index);
    }
    bool readOnly() const override { return sqlite3_stmt_readonly(stmt_) != 0; }
    int parameterCount() const override { return sqlite3_bind_parameter_count(stmt_); }

private:
    sqlite3* db_;
    sqlite3_stmt* stmt_ = nullptr;
    std::string shown_;
};

class SqliteConnection : public Connection {
public:
    explicit SqliteConnection(sqlite3* db) : db_(db) {}
    ~SqliteConnection() override {
        dataVersion_.reset();
        sqlite3_close_v2(db_);
    }

    std::unique_ptr<EngineStatement> prepare(const std::string& sql,
                                             const std::string& shown) override {
        return std::make_unique<SqliteStatement>(db_, sql, shown);
    }
    void executeScript(const std::string& script) override {
        char* error = nullptr;
        const int rc = sqlite3_exec(db_, script.c_str(), nullptr, nullptr, &error);
        if (rc != SQLITE_OK) {
            std::string message = error ? error : sqlite3_errstr(rc);
            sqlite3_free(error);
            throw StoreError(message, rc);
        }
    }
    std::string translate(const std::string& text,
                          std::string (*embedded)(std::string_view)) override {
        return embedded(text);
    }
    bool holdsParameter(const std::string&) override { return false; }

    bool inTransaction() override { return !sqlite3_get_autocommit(db_); }
    std::vector<std::string> beginStatements(bool write) override {
        return {write ? "begin immediate" : "begin"};
    }
    bool writable() override { return sqlite3_db_readonly(db_, "main") == 0; }
    void setQueryOnly(bool on) override {
        executeScript(on ? "pragma query_only = 1" : "pragma query_only = 0");
    }
    void setBusyTimeout(int milliseconds) override { sqlite3_busy_timeout(db_, milliseconds); }
    int liveStatements() override {
        int n = 0;
        for (sqlite3_stmt* s = sqlite3_next_stmt(db_, nullptr); s; s = sqlite3_next_stmt(db_, s))
            ++n;
        return n;
    }
    int changes() override { return sqlite3_changes(db_); }
    std::int64_t dataVersion() override {
        if (!dataVersion_)
            dataVersion_ = std::make_unique<SqliteStatement>(db_, "pragma data_version");
        dataVersion_->step();
        const std::int64_t version = dataVersion_->columnInteger(0);
        dataVersion_->reset(false);
        return version;
    }
    std::int64_t schemaVersion() override { return integer("pragma user_version"); }

    bool tableExists(const std::string& table) override {
        SqliteStatement stmt(db_, "select 1 from sqlite_master where type = 'table' and name = ? "
                                  "collate nocase");
        stmt.bind(1, Value(table), true);
        return stmt.step();
    }
    std::vector<ColumnInfo> columns(const std::string& table) override {
        std::vector<ColumnInfo> out;
        SqliteStatement info(db_, "pragma table_info(" + quoted(table) + ")");
        while (info.step()) {
            const Value declared = info.column(2);
            out.push_back({info.column(1).text(), declared.isText() ? declared.text() : "",
                           info.columnInteger(5) > 0});
        }
        return out;
    }
    std::vector<std::string> indexNames(const std::string& table) override {
        SqliteStatement stmt(db_, "select name from sqlite_master where type = 'index' and "
                                  "tbl_name = ? collate nocase and sql is not null order by rowid");
        stmt.bind(1, Value(table), true);
        std::vector<std::string> names;
        while (stmt.step())
            names.push_back(stmt.column(0).text());
        return names;
    }
    IndexInfo index(const std::string& table, const std::string& index) override {
        IndexInfo out;
        SqliteStatement info(db_, "pragma index_info(" + quoted(index) + ")");
        while (info.step())
            out.columns.push_back(info.column(2).text());
        SqliteStatement list(db_, "pragma index_list(" + quoted(table) + ")");
        while (list.step())
            if (list.column(1).text() == index)
                out.unique = list.columnInteger(2) != 0;
        return out;
    }

    std::string quoteName(const std::string& name) override { return quoted(name); }
    std::string rowSource(const std::string& table) override { return quoted(table); }
    const char* sameValueOperator() override { return " is "; }
    std::string ascending(const std::string& name) override { return name; }
    std::string descending(const std::string& name) override { return name + " desc"; }
    const char* insertReturningRowid() override { return ""; }
    bool integerKeyIsRowid() override { return true; }
    std::int64_t lastInsertRowid() override { return sqlite3_last_insert_rowid(db_); }

private:
    std::int64_t integer(const char* sql) {
        SqliteStatement stmt(db_, sql);
        stmt.step();
        return stmt.columnInteger(0);
    }

    sqlite3* db_;
    std::unique_ptr<SqliteStatement> dataVersion_;
};

// The reason a file cannot be opened as a database before the engine sees it, or "".
std::string fileProblem(const std::string& fileName) {
    namespace fs = std::filesystem;
    std::error_code ec;
    const auto status = fs::status(fileName, ec);
    if (!fs::exists(status))
        return "file " + fileName + " does not exist";
    if (fs::is_directory(status))
        return fileName + " is a folder, not a database file";
    if (!fs::is_regular_file(status))
        return fileName + " is not a regular file";
    // The engine would take an empty file for a new database; only `quorvel init` makes one.
    if (fs::file_size(fileName, ec) == 0 && !ec)
        return "file " + fileName + " is empty (0 bytes), not a database; run quorvel init " +
               "to make the cell";
    return {};
}

void run(sqlite3* db, const char* sql) {
    char* error = nullptr;
    const int rc = sqlite3_exec(db, sql, nullptr, nullptr, &error);
    if (rc != SQLITE_OK) {
        std::string message = error ? error : sqlite3_errstr(rc);
        sqlite3_free(error);
        throw StoreError("Statement failed: " + message + " in: " + sql, rc);
    }
}

} // namespace

std::unique_ptr<Connection> openSqliteFile(const std::string& fileName,
                                           const FileOpenOptions& options) {
    if (!options.create) {
        if (const auto problem = fileProblem(fileName); !problem.empty())
            throw StoreError(problem, SQLITE_CANTOPEN);
    }
    int flags =
        (options.forReading ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) | SQLITE_OPEN_NOMUTEX;
    if (options.create && !options.forReading)
        flags |= SQLITE_OPEN_CREATE;
    sqlite3* db = nullptr;
    const int rc = sqlite3_open_v2(fileName.c_str(), &db, flags, nullptr);
    if (rc != SQLITE_OK) {
        std::string message = db ? sqlite3_errmsg(db) : "out of memory";
        sqlite3_close(db);
        throw StoreError("in file " + fileName + ": " + message, rc);
    }
    auto connection = std::make_unique<SqliteConnection>(db);
    sqlite3_extended_result_codes(db, 1);
    sqlite3_busy_timeout(db, Database::BusyTimeoutMs);
    try {
        // Reading the schema proves that the file is a database at all.
        try {
            run(db, "select count(*) from sqlite_master");
        } catch (const StoreError&) {
            // A WAL file needs its shared-memory file beside it; in a folder nobody may write to
            // it cannot be read at all, and that is what the message has to say.
            const auto folder = std::filesystem::absolute(fileName).parent_path();
            if (::access(folder.c_str(), W_OK) != 0)
                throw StoreError("it cannot be read while the folder " + folder.string() +
                                 " is read-only (a database in WAL mode needs to make its " +
                                 "shared-memory file there); give write access to the folder");
            throw;
        }
        // The module's own files run in WAL, so that the host can keep them open; a file the
        // module only reads, or may not write, keeps the mode its owner gave it.
        if (!options.forReading && !sqlite3_db_readonly(db, "main"))
            run(db, "pragma journal_mode = wal");
        // NORMAL syncs at checkpoints, not at every commit.
        run(db, "pragma synchronous = normal");
        // A page cache large enough that keyed lookups on big job tables stay in memory.
        run(db, "pragma cache_size = -32768");
        run(db, "pragma mmap_size = 268435456");
    } catch (const StoreError& e) {
        throw StoreError("in file " + fileName + ": " + e.what(), e.engineCode());
    }
    return connection;
}

// A lock that a zero wait cannot take shows another connection. In WAL mode a connection that
// has read the file keeps it from leaving WAL, which finds idle readers as well; the mode is put
// back at once.
bool sqliteFileInUse(const std::string& fileName) {
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(fileName.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
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

} // namespace store
