#include "store/ServerEngine.h"

#include "store/Database.h"
#include "store/ServerDialect.h"
#include "store/SqlTokens.h"
#include "store/StoreError.h"

#include <libpq-fe.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <unordered_map>

namespace store {

namespace {

// Type ids of the server's built-in types that come back as numbers.
constexpr Oid BoolType = 16;
constexpr Oid Int8Type = 20;
constexpr Oid Int2Type = 21;
constexpr Oid Int4Type = 23;
constexpr Oid Float4Type = 700;
constexpr Oid Float8Type = 701;
constexpr Oid NumericType = 1700;

using Result = std::unique_ptr<PGresult, decltype(&PQclear)>;

Result wrap(PGresult* result) { return Result(result, &PQclear); }

bool succeeded(const PGresult* result) {
    const auto status = PQresultStatus(result);
    return status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK;
}

int codeOf(const PGresult* result) {
    const char* state = result ? PQresultErrorField(result, PG_DIAG_SQLSTATE) : nullptr;
    if (!state)
        return code::IoError;
    const std::string s(state);
    if (s == "55P03" || s == "40P01" || s == "40001")
        return code::Busy;
    if (s == "25006")
        return code::ReadOnly;
    if (s.rfind("23", 0) == 0)
        return code::Constraint;
    if (s.rfind("08", 0) == 0 || s.rfind("57", 0) == 0)
        return code::IoError;
    return code::Error;
}

// FNV-1a: the same number for the same text on every station.
std::int64_t textHash(const std::string& text) {
    std::uint64_t h = 1469598103934665603ull;
    for (unsigned char c : text) {
        h ^= c;
        h *= 1099511628211ull;
    }
    return static_cast<std::int64_t>(h >> 1);
}

std::string literal(const std::string& text) { return sql::quote(text, '\''); }

// The connection itself, shared by the statements so that it outlives the last of them (as the
// embedded engine keeps a closed connection until its statements are finalized).
struct Link {
    PGconn* conn = nullptr;
    std::string shownUri;
    std::string schema;
    int changes = 0;
    int nextName = 0;
    int live = 0;                    // statements not yet finalized
    std::int64_t lockKey = 0;        // the writers' lock of the schema
    std::vector<std::string> unused; // prepared statements to deallocate
    // Column names as the system wrote them, by the server's folded name.
    std::unordered_map<std::string, std::string> names;

    ~Link() { PQfinish(conn); }

    bool inTransaction() const {
        const auto status = PQtransactionStatus(conn);
        return status == PQTRANS_INTRANS || status == PQTRANS_INERROR;
    }

    // The error of a result as the store reports it, naming `shown`.
    StoreError failure(const PGresult* result, const std::string& shown) const {
        if (PQstatus(conn) == CONNECTION_BAD)
            return StoreError("Statement failed: the connection to the database server " +
                                  shownUri + " was lost (" + trimmed(PQerrorMessage(conn)) +
                                  ") in: " + shown,
                              code::IoError);
        const int engineCode = codeOf(result);
        std::string message;
        if (engineCode == code::Busy)
            message = "database is locked: another station is writing (waited " +
                      std::to_string(Database::BusyTimeoutMs / 1000) + " s)";
        else if (const char* primary =
                     result ? PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY) : nullptr)
            message = primary;
        else
            message = trimmed(PQerrorMessage(conn));
        return StoreError("Statement failed: " + message + " in: " + shown, engineCode);
    }

    static std::string trimmed(const char* text) {
        std::string s = text ? text : "";
        while (!s.empty() && (s.back() == '\n' || s.back() == ' '))
            s.pop_back();
        return s;
    }

    // Runs a text of the engine's own, with no rows wanted.
    void exec(const std::string& sql) {
        auto result = wrap(PQexec(conn, sql.c_str()));
        if (!succeeded(result.get()))
            throw failure(result.get(), sql);
    }

    // Deallocates unused statements now and then, never in a failed transaction.
    void deallocateUnused() {
        if (unused.size() < 16 || PQtransactionStatus(conn) == PQTRANS_INERROR)
            return;
        std::string sql;
        for (auto& name : unused)
            sql += "deallocate " + name + ";";
        unused.clear();
        exec(sql);
    }

    void loadNames() {
        names.clear();
        auto result = wrap(PQexec(conn, "select column_name from quorvel_columns"));
        if (PQresultStatus(result.get()) != PGRES_TUPLES_OK)
            return;
        for (int i = 0; i < PQntuples(result.get()); ++i) {
            const std::string name = PQgetvalue(result.get(), i, 0);
            names.emplace(server::foldName(name), name);
        }
    }
};

class ServerStatement : public EngineStatement {
public:
    ServerStatement(std::shared_ptr<Link> link, const std::string& sql, const std::string& shown)
        : link_(std::move(link)), shown_(shown) {
        int count = 0;
        const std::string text = server::numberParameters(sql, count);
        if (sql::onlyNoise(text))
            throw StoreError("Empty statement: " + shown_, code::Misuse);
        const std::string word = firstWord(text);
        readOnly_ = word == "select" || word == "values" || word == "show" || word == "explain";
        writes_ = word == "insert" || word == "update" || word == "delete" || word == "with" ||
                  word == "create" || word == "drop" || word == "alter" || word == "truncate";
        link_->deallocateUnused();
        name_ = "q" + std::to_string(++link_->nextName);
        // A statement the server refuses must not spoil an open transaction: the embedded engine
        // refuses it alone.
        const bool guarded = PQtransactionStatus(link_->conn) == PQTRANS_INTRANS;
        if (guarded)
            link_->exec("savepoint quorvel_prepare");
        auto prepared = wrap(PQprepare(link_->conn, name_.c_str(), text.c_str(), 0, nullptr));
        if (!succeeded(prepared.get())) {
            auto error = refusal(prepared.get());
            if (guarded)
                link_->exec("rollback to savepoint quorvel_prepare");
            throw error;
        }
        if (guarded)
            link_->exec("release savepoint quorvel_prepare");
        description_ = wrap(PQdescribePrepared(link_->conn, name_.c_str()));
        if (!succeeded(description_.get()))
            throw link_->failure(description_.get(), shown_);
        parameters_.resize(static_cast<std::size_t>(PQnparams(description_.get())));
        ++link_->live;
    }
    ~ServerStatement() override {
        --link_->live;
        link_->unused.push_back(name_);
    }

    void bind(int index, const Value& value, bool) override {
        if (index < 1 || index > static_cast<int>(parameters_.size()))
            throw StoreError("Cannot bind a value: column index out of range in: " + shown_,
                             code::Misuse);
        auto& slot = parameters_[static_cast<std::size_t>(index - 1)];
        if (value.isNull()) {
            slot.reset();
        } else if (value.isInteger()) {
            slot = std::to_string(value.integer());
        } else if (value.isReal()) {
            char buffer[32];
            std::snprintf(buffer, sizeof buffer, "%.17g", value.real());
            slot = buffer;
        } else {
            slot = value.text();
        }
    }

    bool step() override {
        if (!result_ && writes_ && PQtransactionStatus(link_->conn) == PQTRANS_IDLE) {
            // A write outside a transaction waits for the writers' lock too, as every write of
            // the embedded engine does.
            try {
                link_->exec("begin; select pg_advisory_xact_lock(" +
                            std::to_string(link_->lockKey) + ")");
                const bool row = step();
                link_->exec("commit");
                return row;
            } catch (...) {
                if (PQtransactionStatus(link_->conn) != PQTRANS_IDLE)
                    PQclear(PQexec(link_->conn, "rollback"));
                throw;
            }
        }
        if (!result_) {
            std::vector<const char*> values;
            values.reserve(parameters_.size());
            for (auto& p : parameters_)
                values.push_back(p ? p->c_str() : nullptr);
            result_ =
                wrap(PQexecPrepared(link_->conn, name_.c_str(), static_cast<int>(values.size()),
                                    values.data(), nullptr, nullptr, 0));
            if (!succeeded(result_.get())) {
                auto error = link_->failure(result_.get(), shown_);
                result_.reset();
                throw error;
            }
            const std::string status = PQcmdStatus(result_.get());
            if (status.rfind("INSERT", 0) == 0 || status.rfind("UPDATE", 0) == 0 ||
                status.rfind("DELETE", 0) == 0)
                link_->changes = std::atoi(PQcmdTuples(result_.get()));
            row_ = -1;
        }
        if (row_ + 1 >= PQntuples(result_.get())) {
            row_ = PQntuples(result_.get());
            return false;
        }
        ++row_;
        return true;
    }
    bool running() const override { return result_ != nullptr; }
    void reset(bool clear) override {
        result_.reset();
        row_ = -1;
        if (clear)
            for (auto& p : parameters_)
                p.reset();
    }
    int columnCount() const override { return PQnfields(description_.get()); }
    std::string columnName(int index) const override {
        const char* name = PQfname(description_.get(), index);
        if (!name)
            return "";
        const auto known = link_->names.find(name);
        return known == link_->names.end() ? name : known->second;
    }
    Value column(int index) const override {
        if (!result_ || row_ < 0 || row_ >= PQntuples(result_.get()) ||
            PQgetisnull(result_.get(), row_, index))
            return Value();
        const char* text = PQgetvalue(result_.get(), row_, index);
        switch (PQftype(result_.get(), index)) {
        case Int2Type:
        case Int4Type:
        case Int8Type:
            return Value(static_cast<long long>(std::strtoll(text, nullptr, 10)));
        case Float4Type:
        case Float8Type:
            return Value(std::strtod(text, nullptr));
        case BoolType:
            return Value(text[0] == 't' ? 1 : 0);
        case NumericType: {
            const std::string s(text);
            if (s.find_first_of(".eE") == std::string::npos && s.size() < 19)
                return Value(static_cast<long long>(std::strtoll(text, nullptr, 10)));
            return Value(std::strtod(text, nullptr));
        }
        default:
            return Value(std::string(
                text, static_cast<std::size_t>(PQgetlength(result_.get(), row_, index))));
        }
    }
    std::int64_t columnInteger(int index) const override {
        const Value v = column(index);
        if (v.isInteger())
            return v.integer();
        if (v.isReal())
            return static_cast<std::int64_t>(v.real());
        return v.isText() ? std::strtoll(v.text().c_str(), nullptr, 10) : 0;
    }
    bool readOnly() const override { return readOnly_; }
    int parameterCount() const override { return static_cast<int>(parameters_.size()); }

private:
    static std::string firstWord(const std::string& text) {
        std::size_t i = text.find_first_not_of(" \t\r\n(");
        std::string word;
        while (i < text.size() && std::isalpha(static_cast<unsigned char>(text[i])))
            word += static_cast<char>(std::tolower(static_cast<unsigned char>(text[i++])));
        return word;
    }
    StoreError refusal(const PGresult* result) const {
        const char* primary = PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY);
        if (primary && std::string(primary).find("multiple commands") != std::string::npos)
            return StoreError("Only one statement may run per call; nothing was run of: " + shown_,
                              code::Misuse);
        return link_->failure(result, shown_);
    }

    std::shared_ptr<Link> link_;
    std::string shown_;
    std::string name_;
    bool readOnly_ = false;
    bool writes_ = false; // changes rows or the schema
    Result description_{nullptr, &PQclear};
    Result result_{nullptr, &PQclear};
    int row_ = -1;
    std::vector<std::optional<std::string>> parameters_;
};

class ServerConnection : public Connection {
public:
    ServerConnection(std::shared_ptr<Link> link, bool forReading)
        : link_(std::move(link)), forReading_(forReading) {}

    // Every text is read as the system writes them for the embedded engine, the store's own
    // included (its rowid lookups, `?` marks), and is rewritten here, once.
    std::unique_ptr<EngineStatement> prepare(const std::string& sql,
                                             const std::string& shown) override {
        return std::make_unique<ServerStatement>(link_, server::translateStatement(sql), shown);
    }
    void executeScript(const std::string& script) override {
        for (const auto& statement : server::translateScript(script))
            link_->exec(statement);
        link_->loadNames();
    }
    // The embedded engine's rewrite is part of the server's, which `prepare` makes.
    std::string translate(const std::string& text, std::string (*)(std::string_view)) override {
        return text;
    }
    bool holdsParameter(const std::string& text) override {
        int count = 0;
        server::numberParameters(server::translateStatement(text), count);
        return count > 0;
    }

    bool inTransaction() override { return link_->inTransaction(); }
    // Writers of one schema take turns as on the embedded engine: the lock is held to the end of
    // the transaction and waited for within the lock timeout. A reader sees one snapshot.
    std::vector<std::string> beginStatements(bool write) override {
        if (!write)
            return {"begin isolation level repeatable read, read only"};
        return {"begin", "select pg_advisory_xact_lock(" + std::to_string(link_->lockKey) + ")"};
    }
    bool writable() override { return !forReading_ && !queryOnly_; }
    void setQueryOnly(bool on) override {
        queryOnly_ = on;
        link_->exec(on || forReading_ ? "set default_transaction_read_only = on"
                                      : "set default_transaction_read_only = off");
    }
    void setBusyTimeout(int milliseconds) override {
        // 0 would wait for ever on the server; the embedded engine's 0 is "do not wait".
        link_->exec("set lock_timeout = " + std::to_string(std::max(milliseconds, 1)));
    }
    int liveStatements() override { return link_->live; }
    int changes() override { return link_->changes; }
    // Any transaction begun or ended on the server changes the snapshot: more often than another
    // station's commit, never less.
    std::int64_t dataVersion() override {
        return textHash(single("select pg_current_snapshot()::text"));
    }
    std::int64_t schemaVersion() override {
        return std::strtoll(single("select user_version from quorvel_meta").c_str(), nullptr, 10);
    }

    bool tableExists(const std::string& table) override {
        return !rows("select 1 from quorvel_columns where lower(table_name) = lower(" +
                     literal(table) + ") limit 1")
                    .empty();
    }
    std::vector<ColumnInfo> columns(const std::string& table) override {
        std::vector<ColumnInfo> out;
        for (auto& row : rows("select column_name, declared_type, primary_key from "
                              "quorvel_columns where lower(table_name) = lower(" +
                              literal(table) + ") order by position"))
            out.push_back({row[0], row[1], row[2] != "0"});
        return out;
    }
    std::vector<std::string> indexNames(const std::string& table) override {
        std::vector<std::string> out;
        for (auto& row : rows("select index_name from quorvel_indexes where lower(table_name) = "
                              "lower(" +
                              literal(table) + ") order by position"))
            out.push_back(row[0]);
        return out;
    }
    IndexInfo index(const std::string&, const std::string& index) override {
        IndexInfo out;
        for (auto& row : rows("select columns, is_unique from quorvel_indexes where index_name = " +
                              literal(index))) {
            std::size_t from = 0;
            while (from <= row[0].size()) {
                const auto comma = row[0].find(',', from);
                const auto end = comma == std::string::npos ? row[0].size() : comma;
                if (end > from)
                    out.columns.push_back(row[0].substr(from, end - from));
                from = end + 1;
            }
            out.unique = row[1] != "0";
        }
        return out;
    }

    std::string quoteName(const std::string& name) override { return server::quoteName(name); }
    std::string rowSource(const std::string& table) override { return server::rowsTable(table); }
    const char* sameValueOperator() override { return " is not distinct from "; }
    // The embedded engine sorts null first; the server's indexes are built to match.
    std::string ascending(const std::string& name) override { return name + " nulls first"; }
    std::string descending(const std::string& name) override { return name + " desc nulls last"; }
    const char* insertReturningRowid() override { return " returning _rowid_"; }
    bool integerKeyIsRowid() override { return false; }
    std::int64_t lastInsertRowid() override { return 0; }

private:
    std::vector<std::vector<std::string>> rows(const std::string& sql) {
        auto result = wrap(PQexec(link_->conn, sql.c_str()));
        if (PQresultStatus(result.get()) != PGRES_TUPLES_OK)
            throw link_->failure(result.get(), sql);
        std::vector<std::vector<std::string>> out;
        for (int r = 0; r < PQntuples(result.get()); ++r) {
            std::vector<std::string> row;
            for (int c = 0; c < PQnfields(result.get()); ++c)
                row.push_back(PQgetvalue(result.get(), r, c));
            out.push_back(std::move(row));
        }
        return out;
    }
    std::string single(const std::string& sql) {
        auto found = rows(sql);
        return found.empty() || found[0].empty() ? std::string() : found[0][0];
    }

    std::shared_ptr<Link> link_;
    bool forReading_;
    bool queryOnly_ = false;
};

bool schemaExists(Link& link, const std::string& schema) {
    auto found = wrap(PQexec(
        link.conn, ("select 1 from pg_namespace where nspname = " + literal(schema)).c_str()));
    return PQntuples(found.get()) > 0;
}

// The name a connection of the cell shows the server, by which `serverSchemaInUse` finds it.
std::string applicationName(const ServerLocation& location) { return "quorvel:" + location.schema; }

std::shared_ptr<Link> connect(const ServerLocation& location) {
    auto link = std::make_shared<Link>();
    link->shownUri = location.shownUri;
    link->schema = location.schema;
    const std::string application = applicationName(location);
    link->lockKey = textHash(application);
    const char* keywords[] = {"dbname", "application_name", "connect_timeout", nullptr};
    const char* values[] = {location.uri.c_str(), application.c_str(), "10", nullptr};
    link->conn = PQconnectdbParams(keywords, values, 1);
    if (!link->conn || PQstatus(link->conn) != CONNECTION_OK)
        throw StoreError(
            "on server " + location.shownUri + ": the database server cannot be " +
                "reached: " + Link::trimmed(link->conn ? PQerrorMessage(link->conn) : "no memory"),
            code::CantOpen);
    link->exec("set client_encoding = 'UTF8'; set lock_timeout = " +
               std::to_string(Database::BusyTimeoutMs) +
               "; set client_min_messages = warning; set plan_cache_mode = force_generic_plan");
    return link;
}

} // namespace

std::unique_ptr<Connection> openServer(const ServerLocation& location,
                                       const FileOpenOptions& options) {
    auto link = connect(location);
    const std::string schema = server::quoteName(location.schema);
    const std::string where = "in schema " + location.schema + " (for " + location.file +
                              ") on server " + location.shownUri;
    try {
        if (options.create && !options.forReading) {
            link->exec("create schema if not exists " + schema);
            link->exec("set search_path to " + schema);
            for (const auto& statement : server::catalogStatements())
                link->exec(statement);
        } else {
            if (!schemaExists(*link, location.schema))
                throw StoreError("the schema does not exist; run quorvel init --server to make "
                                 "the cell",
                                 code::CantOpen);
            link->exec("set search_path to " + schema);
            auto catalog = wrap(PQexec(link->conn, "select 1 from quorvel_meta"));
            if (PQresultStatus(catalog.get()) != PGRES_TUPLES_OK)
                throw StoreError("the schema was not made by quorvel (it has no quorvel_meta "
                                 "table)",
                                 code::CantOpen);
        }
        if (options.forReading)
            link->exec("set default_transaction_read_only = on");
        link->loadNames();
    } catch (const StoreError& e) {
        throw StoreError(where + ": " + e.what(), e.engineCode());
    }
    return std::make_unique<ServerConnection>(std::move(link), options.forReading);
}

bool serverSchemaExists(const ServerLocation& location) {
    return schemaExists(*connect(location), location.schema);
}

bool serverSchemaInUse(const ServerLocation& location) {
    auto link = connect(location);
    auto found = wrap(
        PQexec(link->conn, ("select 1 from pg_stat_activity where "
                            "application_name = " +
                            literal(applicationName(location)) + " and pid <> pg_backend_pid()")
                               .c_str()));
    return PQntuples(found.get()) > 0;
}

void dropServerSchema(const ServerLocation& location) {
    auto link = connect(location);
    link->exec("drop schema if exists " + server::quoteName(location.schema) + " cascade");
}

} // namespace store
