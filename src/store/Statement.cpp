#include "store/Statement.h"

#include "common/CrashReporter.h"
#include "store/StoreError.h"

#include <sqlite3.h>

namespace store {

namespace {

// True when the rest of a statement text holds nothing but blanks, semicolons and comments.
bool onlyTrailingNoise(const char* tail) {
    const char* p = tail;
    while (*p) {
        if (*p == ' ' || *p == '\t' || *p == '\r' || *p == '\n' || *p == ';') {
            ++p;
        } else if (p[0] == '-' && p[1] == '-') {
            while (*p && *p != '\n')
                ++p;
        } else if (p[0] == '/' && p[1] == '*') {
            p += 2;
            while (*p && !(p[0] == '*' && p[1] == '/'))
                ++p;
            if (*p)
                p += 2;
        } else {
            return false;
        }
    }
    return true;
}

} // namespace

Statement::Statement(sqlite3* db, std::string sql, std::string shownText)
    : db_(db), sql_(std::move(sql)), shown_(std::move(shownText)) {
    if (shown_.empty())
        shown_ = sql_;
    const char* tail = nullptr;
    const int rc =
        sqlite3_prepare_v2(db_, sql_.c_str(), static_cast<int>(sql_.size()), &stmt_, &tail);
    if (rc != SQLITE_OK) {
        std::string message = sqlite3_errmsg(db_);
        sqlite3_finalize(stmt_);
        stmt_ = nullptr;
        throw StoreError("Statement failed: " + message + " in: " + shown_, rc);
    }
    if (tail && !onlyTrailingNoise(tail)) {
        sqlite3_finalize(stmt_);
        stmt_ = nullptr;
        throw StoreError("Only one statement may run per call; nothing was run of: " + shown_,
                         SQLITE_MISUSE);
    }
    if (!stmt_)
        throw StoreError("Empty statement: " + shown_, SQLITE_MISUSE);
}

Statement::~Statement() { sqlite3_finalize(stmt_); }

void Statement::bind(int index, const Value& value) { bindValue(index, value, true); }

void Statement::bindBorrowed(int index, const Value& value) { bindValue(index, value, false); }

void Statement::bindValue(int index, const Value& value, bool copy) {
    borrowed_ = borrowed_ || !copy;
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

bool Statement::step() {
    if (!sqlite3_stmt_busy(stmt_))
        common::noteLastStatement(sql_.data(), sql_.size());
    const int rc = sqlite3_step(stmt_);
    if (rc == SQLITE_ROW)
        return true;
    if (rc == SQLITE_DONE)
        return false;
    std::string message = sqlite3_errmsg(db_);
    sqlite3_reset(stmt_);
    throw StoreError("Statement failed: " + message + " in: " + shown_, rc);
}

void Statement::run() {
    try {
        while (step()) {
        }
    } catch (...) {
        sqlite3_reset(stmt_);
        // A borrowed text does not outlive the call that bound it.
        if (borrowed_) {
            sqlite3_clear_bindings(stmt_);
            borrowed_ = false;
        }
        throw;
    }
    reset();
}

void Statement::reset() {
    sqlite3_reset(stmt_);
    sqlite3_clear_bindings(stmt_);
    borrowed_ = false;
}

bool Statement::readOnly() const { return sqlite3_stmt_readonly(stmt_) != 0; }

int Statement::parameterCount() const { return sqlite3_bind_parameter_count(stmt_); }

int Statement::columnCount() const { return sqlite3_column_count(stmt_); }

std::string Statement::columnName(int index) const {
    const char* name = sqlite3_column_name(stmt_, index);
    return name ? name : "";
}

Value Statement::column(int index) const {
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

std::int64_t Statement::columnInteger(int index) const {
    return sqlite3_column_int64(stmt_, index);
}

} // namespace store
