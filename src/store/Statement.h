#pragma once
// A prepared statement, owned; errors name the statement text.
#include "store/Value.h"

#include <memory>
#include <string>

namespace store {

class Connection;
class EngineStatement;

class Statement {
public:
    // Prepares exactly one statement; text after the first statement is an error.
    // `shownText` is the text named in error messages (the caller's text before translation).
    Statement(Connection& connection, std::string sql, std::string shownText = {});
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    void bind(int index, const Value& value); // index from 1
    // As bind, without copying a text: the value must stay as it is until the statement has run
    // (run clears the bindings).
    void bindBorrowed(int index, const Value& value);
    // Steps once; true when a row is ready.
    bool step();
    // Runs a statement that returns no rows, resetting it afterwards.
    void run();
    void reset();
    int columnCount() const;
    std::string columnName(int index) const; // from 0
    Value column(int index) const;           // from 0
    std::int64_t columnInteger(int index) const;
    const std::string& sql() const { return sql_; }
    // True when the statement writes nothing.
    bool readOnly() const;
    // The engine parameters (`?`, `?1`, `:p`, `@p`, `$p`) the text holds.
    int parameterCount() const;

private:
    std::unique_ptr<EngineStatement> stmt_;
    std::string sql_;
    bool borrowed_ = false; // a text is bound without a copy
};

} // namespace store
