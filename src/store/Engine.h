#pragma once
// The seam between the store and a database engine: one connection and its prepared statements.
// The embedded engine (SQLite files) and the database server (PostgreSQL) stand behind it; nothing
// above the store sees which one serves a database.
#include "store/Value.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace store {

// Engine codes the store reports in StoreError, whatever the engine (SQLite's numbering).
namespace code {
inline constexpr int Error = 1;
inline constexpr int Busy = 5;
inline constexpr int ReadOnly = 8;
inline constexpr int IoError = 10;
inline constexpr int CantOpen = 14;
inline constexpr int Constraint = 19;
inline constexpr int Misuse = 21;
} // namespace code

// One prepared statement of a connection.
class EngineStatement {
public:
    virtual ~EngineStatement() = default;
    // `copy` false: the text stays valid until the statement has run.
    virtual void bind(int index, const Value& value, bool copy) = 0; // from 1
    // Steps once; true when a row is ready. Raises a StoreError with the engine's message (the
    // statement text is added by the caller).
    virtual bool step() = 0;
    // True between the first step and the reset.
    virtual bool running() const = 0;
    // Back to the start; `clear` also drops the bindings.
    virtual void reset(bool clear) = 0;
    virtual int columnCount() const = 0;
    virtual std::string columnName(int index) const = 0; // from 0
    virtual Value column(int index) const = 0;
    virtual std::int64_t columnInteger(int index) const = 0;
    virtual bool readOnly() const = 0;
    virtual int parameterCount() const = 0;
};

// A table's column as the schema declares it.
struct ColumnInfo {
    std::string name;
    std::string declaredType;
    bool primaryKey = false;
};

struct IndexInfo {
    std::vector<std::string> columns;
    bool unique = false;
};

// One open connection.
class Connection {
public:
    virtual ~Connection() = default;
    // Prepares exactly one statement; `shown` is the text errors name.
    virtual std::unique_ptr<EngineStatement> prepare(const std::string& sql,
                                                     const std::string& shown) = 0;
    // Runs several statements, for creating cells and fixtures.
    virtual void executeScript(const std::string& script) = 0;
    // A statement text of the system (as written by its routines) as this engine prepares it;
    // `embedded` is the embedded engine's translation. A server rewrites texts when it prepares
    // them, so it returns the text as it is.
    virtual std::string translate(const std::string& text,
                                  std::string (*embedded)(std::string_view)) = 0;
    // True when a text to prepare (a statement, or a filter condition) holds a parameter that
    // only preparing it would otherwise find (the server refuses some texts before it counts
    // them).
    virtual bool holdsParameter(const std::string& text) = 0;

    virtual bool inTransaction() = 0;
    // The statements that open the outermost transaction: one that writes takes the write lock
    // at once, waiting the busy timeout for another writer.
    virtual std::vector<std::string> beginStatements(bool write) = 0;
    // False when the database refuses writes (a file opened for reading, or not writable).
    virtual bool writable() = 0;
    virtual void setQueryOnly(bool on) = 0;
    // How long a statement waits for another connection's lock.
    virtual void setBusyTimeout(int milliseconds) = 0;
    // Statements prepared on the connection and not yet finalized.
    virtual int liveStatements() = 0;
    // Rows changed by the last statement that changed rows.
    virtual int changes() = 0;
    // Changes whenever another connection may have committed since the last call.
    virtual std::int64_t dataVersion() = 0;
    virtual std::int64_t schemaVersion() = 0;

    // Catalog. Names compare without regard to case.
    virtual bool tableExists(const std::string& table) = 0;
    virtual std::vector<ColumnInfo> columns(const std::string& table) = 0;
    // Index names in order of definition.
    virtual std::vector<std::string> indexNames(const std::string& table) = 0;
    virtual IndexInfo index(const std::string& table, const std::string& index) = 0;

    // Texts the cursors build their statements from.
    virtual std::string quoteName(const std::string& name) = 0;
    // The table the cursors read, with its row ids.
    virtual std::string rowSource(const std::string& table) = 0;
    // "a is b" when both may be null.
    virtual const char* sameValueOperator() = 0;
    virtual std::string ascending(const std::string& quotedName) = 0;
    virtual std::string descending(const std::string& quotedName) = 0;
    // An insert that returns the new row id as its one row, or "" when `lastInsertRowid` tells.
    virtual const char* insertReturningRowid() = 0;
    // True when a single INTEGER primary key column is the row id itself.
    virtual bool integerKeyIsRowid() = 0;
    virtual std::int64_t lastInsertRowid() = 0;
};

} // namespace store
