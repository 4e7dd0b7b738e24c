#include "store/Statement.h"

#include "common/CrashReporter.h"
#include "store/Engine.h"

namespace store {

Statement::Statement(Connection& connection, std::string sql, std::string shownText)
    : sql_(std::move(sql)) {
    stmt_ = connection.prepare(sql_, shownText.empty() ? sql_ : shownText);
}

Statement::~Statement() = default;

void Statement::bind(int index, const Value& value) { stmt_->bind(index, value, true); }

void Statement::bindBorrowed(int index, const Value& value) {
    borrowed_ = true;
    stmt_->bind(index, value, false);
}

bool Statement::step() {
    if (!stmt_->running())
        common::noteLastStatement(sql_.data(), sql_.size());
    return stmt_->step();
}

void Statement::run() {
    try {
        while (step()) {
        }
    } catch (...) {
        // A borrowed text does not outlive the call that bound it.
        stmt_->reset(borrowed_);
        borrowed_ = false;
        throw;
    }
    reset();
}

void Statement::reset() {
    stmt_->reset(true);
    borrowed_ = false;
}

bool Statement::readOnly() const { return stmt_->readOnly(); }

int Statement::parameterCount() const { return stmt_->parameterCount(); }

int Statement::columnCount() const { return stmt_->columnCount(); }

std::string Statement::columnName(int index) const { return stmt_->columnName(index); }

Value Statement::column(int index) const { return stmt_->column(index); }

std::int64_t Statement::columnInteger(int index) const { return stmt_->columnInteger(index); }

} // namespace store
