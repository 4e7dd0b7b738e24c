#include "store/Query.h"

#include "store/Database.h"
#include "store/Dialect.h"
#include "store/Statement.h"

namespace store {

Query::Query(Database& database) : database_(&database) {}

Query::~Query() = default;

void Query::setSql(const std::string& text) {
    close();
    lines_.assign(1, text);
}

void Query::addLine(const std::string& line) {
    close();
    lines_.push_back(line);
}

void Query::clearSql() {
    close();
    lines_.clear();
}

std::string Query::text() const {
    std::string out;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        if (i)
            out += "\n";
        out += lines_[i];
    }
    return out;
}

std::string Query::describe() const { return "query " + text(); }

void Query::open() {
    close();
    const std::string original = text();
    const auto prepared = database_->sharedTranslated(original, &translateStatement);
    Statement& stmt = *prepared;
    // The statement stays prepared for the next query of the same text; it is reset however
    // the reading ends.
    struct ResetAfter {
        Statement& s;
        ~ResetAfter() { s.reset(); }
    } resetAfter{stmt};
    names_.clear();
    columnsReset();
    for (int i = 0; i < stmt.columnCount(); ++i)
        names_.push_back(stmt.columnName(i));
    rows_.clear();
    if (!stmt.readOnly())
        database_->bumpGeneration();
    while (stmt.step()) {
        std::vector<Value> row;
        row.reserve(names_.size());
        for (int i = 0; i < stmt.columnCount(); ++i)
            row.push_back(stmt.column(i));
        rows_.push_back(std::move(row));
    }
    setState(DatasetState::Browse);
    moveTo(0);
    bof_ = true;
    eof_ = rows_.empty();
    notifyDataChanged();
}

void Query::execSQL() {
    close();
    const std::string original = text();
    const auto prepared = database_->sharedTranslated(original, &translateStatement);
    database_->bumpGeneration();
    prepared->run();
    rowsAffected_ = database_->changes();
}

void Query::moveTo(int index) {
    if (index >= 0 && index < static_cast<int>(rows_.size())) {
        index_ = index;
        setRow(rows_[static_cast<std::size_t>(index)]);
    } else {
        index_ = -1;
        clearRow();
    }
}

void Query::first() {
    requireActive();
    moveTo(0);
    bof_ = true;
    eof_ = rows_.empty();
    notifyDataChanged();
}

void Query::last() {
    requireActive();
    moveTo(static_cast<int>(rows_.size()) - 1);
    eof_ = true;
    bof_ = rows_.empty();
    notifyDataChanged();
}

void Query::next() {
    requireActive();
    if (index_ + 1 < static_cast<int>(rows_.size())) {
        moveTo(index_ + 1);
        bof_ = eof_ = false;
        notifyDataChanged();
    } else {
        eof_ = true;
    }
}

void Query::prior() {
    requireActive();
    if (index_ > 0) {
        moveTo(index_ - 1);
        bof_ = eof_ = false;
        notifyDataChanged();
    } else {
        bof_ = true;
    }
}

int Query::recordCount() {
    requireActive();
    return static_cast<int>(rows_.size());
}

int Query::recNo() {
    requireActive();
    return index_ + 1;
}

} // namespace store
