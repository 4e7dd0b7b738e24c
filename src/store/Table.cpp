#include "store/Table.h"

#include "common/Convert.h"
#include "store/Database.h"
#include "store/Engine.h"
#include "store/FilterTerms.h"

#include <optional>

namespace store {

namespace {

FieldType typeFromDeclaration(const std::string& declared) {
    const std::string t = common::upperCase(declared);
    if (t.find("BOOL") != std::string::npos)
        return FieldType::Boolean;
    if (t.find("INT") != std::string::npos)
        return FieldType::Integer;
    if (t.find("REAL") != std::string::npos || t.find("FLOA") != std::string::npos ||
        t.find("DOUB") != std::string::npos)
        return FieldType::Float;
    return FieldType::String;
}

} // namespace

// The statements of the current order and filter, shared with the database's cache so that they
// outlive an eviction from it; the plan is rebuilt when the filter or the index changes.
struct Table::Plan {
    using Held = std::shared_ptr<Statement>;
    std::string source;     // the table with its row ids: "T"
    std::string selectFrom; // select _rowid_, "c1", ... from "T"
    std::string where;      // "(filter)" or empty
    std::string order;      // "k1, k2, _rowid_"
    std::string orderDesc;
    std::string tuple; // "(k1, k2, _rowid_)"
    int tupleSize = 0;
    Held first;
    Held last;
    Held next;
    Held prior;
    Held byRowid;
    // When the filter fixes the leading key columns to constants, moves compare only the rest of
    // the key, so that the index serves both the filter and the step.
    std::vector<Value> pinned;
    Held nextPinned;
    Held priorPinned;
    std::string pinnedTuple;
    std::string pinnedMarks;
    // Texts of the step statements, prepared at their first use: a filter change needs only
    // `first`, and routines change filters far more often than they step.
    std::string lastSql, nextSql, priorSql, byRowidSql, nextPinnedSql, priorPinnedSql;
    // The next rows of a scan, read ahead in one step.
    Held nextMany;
    Held nextManyPinned;
    std::string nextManySql, nextManyPinnedSql;
    // The whole set when it is small; a set once found too big is not read whole again.
    Held whole;
    std::string wholeSql;
    Table::WholeSet set;
    bool tooBig = false;
    int wholeAsked = 0;                  // moves that found no set to serve them
    std::vector<Held> findKey;           // by number of key values
    std::vector<Held> findNearest;       // by number of key values
    std::vector<Held> findNearestPinned; // by number of key values past the pinned ones
    // Made at first use: the count under the filter, the position counts, the writes.
    std::vector<std::string> quoted; // column names, quoted
    Held count;
    Held recNo;
    Held recNoPinned;
    std::vector<Held> insert; // by number of values
    Held deleteRow;
    std::vector<bool> updateColumns; // the columns that `update` sets
    Held update;
};

namespace {
// The write count of a table not yet opened, which writes nothing.
std::uint64_t unopenedWrites = 0;
} // namespace

Table::Table(Database& database, std::string tableName)
    : database_(&database), tableName_(std::move(tableName)), written_(&unopenedWrites) {}

Table::~Table() = default;

std::string Table::describe() const { return "table " + tableName_; }

FieldType Table::fieldType(int index) const {
    const auto i = static_cast<std::size_t>(index);
    return i < types_.size() ? types_[i] : FieldType::String;
}

std::shared_ptr<Statement> Table::held(const std::string& sql) { return database_->shared(sql); }

void Table::open() {
    if (active())
        return;
    if (!database_->connected() || !database_->tableExists(tableName_))
        throw StoreError("Table " + tableName_ + " does not exist in database " +
                         database_->databaseName());
    names_.clear();
    columnsReset();
    types_.clear();
    rowidAlias_ = -1;
    int pkCount = 0;
    int pkColumn = -1;
    for (auto& column : database_->connection().columns(tableName_)) {
        names_.push_back(column.name);
        types_.push_back(typeFromDeclaration(column.declaredType));
        if (column.primaryKey) {
            ++pkCount;
            if (common::upperCase(column.declaredType) == "INTEGER")
                pkColumn = static_cast<int>(names_.size()) - 1;
        }
    }
    if (pkCount == 1 && database_->connection().integerKeyIsRowid())
        rowidAlias_ = pkColumn;
    written_ = &database_->tableGeneration(tableName_);
    forgetPlans();
    indexName_.clear();
    keyNames_.clear();
    keyColumns_.clear();
    keyUnique_ = false;
    setState(DatasetState::Browse);
    buildPlan();
    first();
}

void Table::close() {
    Dataset::close();
    forgetPlans();
}

void Table::forgetPlans() {
    plan_.reset();
    plans_.clear();
}

std::vector<std::string> Table::indexDefs() {
    // Index names are global to a database file, so a table's index "Primary" is stored as
    // "<table>.Primary"; the prefix is not part of the name the table shows.
    std::vector<std::string> names;
    const std::string prefix = tableName_ + ".";
    for (auto& name : database_->indexNames(tableName_)) {
        if (name.size() > prefix.size() && common::sameText(name.substr(0, prefix.size()), prefix))
            names.push_back(name.substr(prefix.size()));
        else
            names.push_back(name);
    }
    return names;
}

void Table::setIndexName(const std::string& name) {
    settlePendingEdit();
    keyNames_.clear();
    keyColumns_.clear();
    keyUnique_ = false;
    indexName_.clear();
    if (!name.empty()) {
        std::string stored;
        const std::string prefix = tableName_ + ".";
        for (auto& candidate : database_->indexNames(tableName_)) {
            if (common::sameText(candidate, prefix + name) || common::sameText(candidate, name)) {
                stored = candidate;
                break;
            }
        }
        if (stored.empty())
            throw StoreError("Index " + name + " not found on table " + tableName_);
        const auto index = database_->connection().index(tableName_, stored);
        for (auto& column : index.columns) {
            keyNames_.push_back(column);
            keyColumns_.push_back(fieldIndex(column));
        }
        keyUnique_ = index.unique;
        indexName_ = name;
    }
    forgetPlans();
    if (active()) {
        buildPlan();
        first();
    }
}

std::string Table::quoteName(const std::string& name) const {
    return database_->connection().quoteName(name);
}

std::string Table::whereFilter(const std::string& extra) const {
    std::string where;
    if (!plan_->where.empty())
        where = plan_->where;
    if (!extra.empty())
        where = where.empty() ? extra : where + " and " + extra;
    return where.empty() ? std::string() : " where " + where;
}

void Table::buildPlan() {
    const bool filtering = filtered_ && !common::trim(filter_).empty();
    const std::string key = filtering ? "f" + filter_ : std::string();
    for (auto it = plans_.begin(); it != plans_.end(); ++it) {
        if (it->first == key) {
            plans_.splice(plans_.begin(), plans_, it);
            plan_ = it->second;
            return;
        }
    }
    // The plan is kept only once its first statement is prepared: a broken filter leaves the
    // table on its previous plan.
    auto previous = std::move(plan_);
    plan_ = std::make_shared<Plan>();
    auto& p = *plan_;
    auto& engine = database_->connection();
    p.source = engine.rowSource(tableName_);
    p.quoted.reserve(names_.size());
    for (auto& name : names_)
        p.quoted.push_back(quoteName(name));
    p.selectFrom = "select _rowid_";
    for (auto& name : p.quoted)
        p.selectFrom += ", " + name;
    p.selectFrom += " from " + p.source;
    if (filtered_ && !common::trim(filter_).empty())
        p.where = "(" + filter_ + ")";
    std::vector<std::string> order;
    for (auto& k : keyNames_)
        order.push_back(quoteName(k));
    if (!keyUnique_ || order.empty())
        order.push_back("_rowid_");
    p.tupleSize = static_cast<int>(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        const std::string sep = i ? ", " : "";
        p.order += sep + engine.ascending(order[i]);
        p.orderDesc += sep + engine.descending(order[i]);
        p.tuple += sep + order[i];
    }
    p.tuple = "(" + p.tuple + ")";
    std::string marks;
    for (int i = 0; i < p.tupleSize; ++i)
        marks += i ? ", ?" : "?";
    marks = "(" + marks + ")";
    try {
        // Nothing binds values to a filter text: a parameter in it would filter on NULL.
        const bool parameter = engine.holdsParameter(p.where);
        if (!parameter)
            p.first = held(p.selectFrom + whereFilter("") + " order by " + p.order + " limit 1");
        if (parameter || p.first->parameterCount() > 0)
            throw StoreError("The filter of table " + tableName_ + " holds an engine parameter " +
                                 "(?, :name, @name or $name), which nothing binds: " + filter_,
                             code::Misuse);
    } catch (...) {
        plan_ = std::move(previous);
        throw;
    }
    if (plans_.size() >= PlanBound)
        plans_.pop_back();
    plans_.emplace_front(key, plan_);
    p.lastSql = p.selectFrom + whereFilter("") + " order by " + p.orderDesc + " limit 1";
    p.nextSql =
        p.selectFrom + whereFilter(p.tuple + " > " + marks) + " order by " + p.order + " limit 1";
    p.priorSql = p.selectFrom + whereFilter(p.tuple + " < " + marks) + " order by " + p.orderDesc +
                 " limit 1";
    p.nextManySql = p.selectFrom + whereFilter(p.tuple + " > " + marks) + " order by " + p.order +
                    " limit " + std::to_string(ReadAhead);
    p.byRowidSql = p.selectFrom + " where _rowid_ = ?";
    p.wholeSql = p.selectFrom + whereFilter("") + " order by " + p.order + " limit " +
                 std::to_string(WholeSetBound + 1);
    if (!p.where.empty() && !keyNames_.empty()) {
        if (auto terms = equalityTerms(filter_)) {
            for (std::size_t k = 0; k < keyNames_.size(); ++k) {
                const Value* fixed = nullptr;
                for (auto& [name, value] : *terms)
                    if (common::sameText(name, keyNames_[k]))
                        fixed = &value;
                if (!fixed)
                    break;
                p.pinned.push_back(coerce(keyColumns_[k], *fixed));
            }
        }
    }
    const auto pinnedCount = static_cast<int>(p.pinned.size());
    if (pinnedCount > 0 && pinnedCount < p.tupleSize) {
        for (int i = pinnedCount; i < p.tupleSize; ++i) {
            p.pinnedTuple += (i > pinnedCount ? ", " : "") + order[static_cast<std::size_t>(i)];
            p.pinnedMarks += i > pinnedCount ? ", ?" : "?";
        }
        p.pinnedTuple = "(" + p.pinnedTuple + ")";
        p.pinnedMarks = "(" + p.pinnedMarks + ")";
        p.nextPinnedSql = p.selectFrom + whereFilter(p.pinnedTuple + " > " + p.pinnedMarks) +
                          " order by " + p.order + " limit 1";
        p.priorPinnedSql = p.selectFrom + whereFilter(p.pinnedTuple + " < " + p.pinnedMarks) +
                           " order by " + p.orderDesc + " limit 1";
        p.nextManyPinnedSql = p.selectFrom + whereFilter(p.pinnedTuple + " > " + p.pinnedMarks) +
                              " order by " + p.order + " limit " + std::to_string(ReadAhead);
    } else {
        p.pinned.clear();
    }
    p.findKey.assign(keyNames_.size() + 1, nullptr);
    p.findNearest.assign(keyNames_.size() + 1, nullptr);
    p.insert.assign(names_.size() + 1, nullptr);
}

Statement& Table::planned(std::shared_ptr<Statement>& slot, const std::string& sql) {
    if (!slot)
        slot = held(sql);
    return *slot;
}

bool Table::loadRow(Statement& stmt) {
    if (!stmt.step()) {
        stmt.reset();
        return false;
    }
    rowid_ = stmt.columnInteger(0);
    std::vector<Value> row;
    row.reserve(names_.size());
    for (std::size_t i = 0; i < names_.size(); ++i)
        row.push_back(stmt.column(static_cast<int>(i) + 1));
    stmt.reset();
    setRow(std::move(row));
    noteRowRead(generation(), database_->transactionSerial());
    return true;
}

void Table::noteRowRead(Stamp stamp, std::uint64_t transaction) {
    rowStamp_ = stamp;
    rowTransaction_ = transaction;
}

bool Table::rowUnchangedSinceRead() const {
    return rowTransaction_ != 0 && rowTransaction_ == database_->transactionSerial() &&
           rowStamp_ == generation();
}

namespace {

// Orders two values as the engine does where that is plain: integers by number, texts by their
// bytes. Anything else is left to the engine.
std::optional<int> plainCompare(const Value& a, const Value& b) {
    if (a.isInteger() && b.isInteger())
        return a.integer() < b.integer() ? -1 : (a.integer() > b.integer() ? 1 : 0);
    if (a.isText() && b.isText()) {
        const int c = a.text().compare(b.text());
        return c < 0 ? -1 : (c > 0 ? 1 : 0);
    }
    return std::nullopt;
}

} // namespace

bool Table::wholeSetValid() {
    auto& set = plan_->set;
    const std::uint64_t transaction = database_->transactionSerial();
    if (transaction == 0 || !set.loaded || set.stamp != generation())
        return false;
    if (set.checked == transaction)
        return true;
    // A new transaction: the set holds while no other connection has committed since.
    if (database_->dataVersion() != set.dataVersion)
        return false;
    set.checked = transaction;
    return true;
}

bool Table::useWholeSet() {
    if (plan_->tooBig)
        return false;
    if (wholeSetValid())
        return true;
    const std::uint64_t transaction = database_->transactionSerial();
    if (transaction == 0)
        return false;
    // A plan used once or twice (a filter set for one lookup) is not worth reading whole.
    if (++plan_->wholeAsked < 3)
        return false;
    auto& set = plan_->set;
    set = {};
    auto& stmt = planned(plan_->whole, plan_->wholeSql);
    while (set.rows.size() <= WholeSetBound && stmt.step()) {
        std::vector<Value> row;
        row.reserve(names_.size());
        for (std::size_t i = 0; i < names_.size(); ++i)
            row.push_back(stmt.column(static_cast<int>(i) + 1));
        set.rows.emplace_back(stmt.columnInteger(0), std::move(row));
    }
    stmt.reset();
    if (set.rows.size() > WholeSetBound) {
        set = {};
        plan_->tooBig = true;
        return false;
    }
    set.loaded = true;
    set.stamp = generation();
    set.dataVersion = database_->dataVersion();
    set.checked = transaction;
    return true;
}

void Table::standOnWholeSetRow(std::size_t at) {
    auto& set = plan_->set;
    set.at = at;
    rowid_ = set.rows[at].first;
    setRow(set.rows[at].second);
    noteRowRead(set.stamp, set.checked);
    bof_ = eof_ = false;
}

bool Table::stepInWholeSet(bool forward) {
    if (!useWholeSet())
        return false;
    auto& set = plan_->set;
    auto& rows = set.rows;
    if (set.at >= rows.size() || rows[set.at].first != rowid_) {
        set.at = rows.size();
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (rows[i].first == rowid_)
                set.at = i;
        // A row that is not in the set (kept from before a filter change) steps by the engine.
        if (set.at == rows.size() || rows[set.at].second != row_)
            return false;
    }
    if (forward ? set.at + 1 >= rows.size() : set.at == 0) {
        (forward ? eof_ : bof_) = true;
        noteScanPosition();
        return true;
    }
    standOnWholeSetRow(forward ? set.at + 1 : set.at - 1);
    noteScanPosition();
    notifyDataChanged();
    return true;
}

bool Table::standAtEndOfWholeSet(bool last) {
    if (!useWholeSet())
        return false;
    const auto& rows = plan_->set.rows;
    if (rows.empty()) {
        clearRow();
        bof_ = eof_ = true;
    } else {
        standOnWholeSetRow(last ? rows.size() - 1 : 0);
        (last ? eof_ : bof_) = true;
    }
    scanRun_ = 0;
    notifyDataChanged();
    return true;
}

bool Table::findNearestInWholeSet(const std::vector<Value>& key) {
    if (!useWholeSet())
        return false;
    const auto& set = plan_->set;
    std::vector<Value> wanted;
    for (std::size_t i = 0; i < key.size(); ++i)
        wanted.push_back(coerce(keyColumns_[i], key[i]));
    // The first row whose leading key columns are not before the key, found by halving.
    std::size_t low = 0;
    std::size_t high = set.rows.size();
    while (low < high) {
        const std::size_t mid = (low + high) / 2;
        const auto& row = set.rows[mid].second;
        std::optional<int> order = 0;
        for (std::size_t i = 0; i < wanted.size() && order && *order == 0; ++i)
            order = plainCompare(row[static_cast<std::size_t>(keyColumns_[i])], wanted[i]);
        if (!order)
            return false; // values the engine orders by rules of its own
        if (*order < 0)
            low = mid + 1;
        else
            high = mid;
    }
    if (set.rows.empty()) {
        clearRow();
        bof_ = eof_ = true;
    } else {
        // Past the last key: stand on the last row, with the end flag clear.
        standOnWholeSetRow(std::min(low, set.rows.size() - 1));
    }
    notifyDataChanged();
    return true;
}

bool Table::readByRowid(std::int64_t rowid) {
    auto& stmt = planned(plan_->byRowid, plan_->byRowidSql);
    stmt.bind(1, Value(static_cast<long long>(rowid)));
    return loadRow(stmt);
}

Value Table::coerce(int column, const Value& value) const {
    if (column < 0 || value.isNull())
        return value;
    switch (fieldType(column)) {
    case FieldType::Integer:
    case FieldType::Boolean:
        if (value.isText()) {
            if (auto v = common::tryStrToInt(value.text()))
                return Value(*v);
        } else if (value.isReal()) {
            return value;
        }
        return value;
    case FieldType::Float:
        if (value.isText()) {
            if (auto v = common::tryStrToFloat(value.text()))
                return Value(*v);
        }
        return value;
    case FieldType::String:
        if (value.isInteger())
            return Value(std::to_string(value.integer()));
        return value;
    }
    return value;
}

void Table::bindKey(Statement& stmt, int from, const std::vector<Value>& key, bool withRowid) {
    int index = from;
    for (std::size_t i = 0; i < key.size(); ++i)
        stmt.bind(index++, coerce(keyColumns_[i], key[i]));
    if (withRowid)
        stmt.bind(index, Value(static_cast<long long>(rowid_)));
}

bool Table::withinPinned(const std::vector<Value>& row) const {
    const auto& pinned = plan_->pinned;
    if (pinned.empty())
        return false;
    for (std::size_t i = 0; i < pinned.size(); ++i)
        if (!(row[static_cast<std::size_t>(keyColumns_[i])] == pinned[i]))
            return false;
    return true;
}

void Table::bindPosition(Statement& stmt, int from, const std::vector<Value>& row,
                         std::int64_t rowid) {
    int index = 1;
    for (std::size_t i = static_cast<std::size_t>(from); i < keyColumns_.size(); ++i)
        stmt.bind(index++, row[static_cast<std::size_t>(keyColumns_[i])]);
    if (!keyUnique_ || keyColumns_.empty())
        stmt.bind(index, Value(static_cast<long long>(rowid)));
}

Statement& Table::stepStatement(bool forward, const std::vector<Value>& row, std::int64_t rowid) {
    const bool pinned = withinPinned(row);
    auto& p = *plan_;
    Statement& stmt = pinned
                          ? (forward ? planned(p.nextPinned, p.nextPinnedSql)
                                     : planned(p.priorPinned, p.priorPinnedSql))
                          : (forward ? planned(p.next, p.nextSql) : planned(p.prior, p.priorSql));
    bindPosition(stmt, pinned ? static_cast<int>(plan_->pinned.size()) : 0, row, rowid);
    return stmt;
}

void Table::first() {
    requireActive();
    settlePendingEdit();
    if (standAtEndOfWholeSet(false))
        return;
    // A scan from the first row again, with the rows of the last one still good: from memory.
    if (aheadFromFirst_ && aheadPlan_ == plan_.get() && aheadGeneration_ == generation() &&
        !ahead_.empty() && fresh()) {
        rowid_ = ahead_[0].first;
        setRow(ahead_[0].second);
        noteRowRead(aheadGeneration_, aheadTransaction_);
        aheadAt_ = 1;
    } else if (!loadRow(*plan_->first)) {
        clearRow();
        bof_ = eof_ = true;
        scanRun_ = 0;
        notifyDataChanged();
        return;
    }
    bof_ = true;
    eof_ = false;
    // A first row is where scans start: the next move reads ahead.
    scanRun_ = 1;
    noteScanPosition();
    firstRowid_ = rowid_;
    firstPlan_ = plan_.get();
    firstStamp_ = generation();
    notifyDataChanged();
}

bool Table::fresh() const {
    // Inside the transaction the rows were read in, nobody else's change can show before it ends;
    // otherwise rows read ahead are kept only for the moment of one scan.
    const std::uint64_t transaction = database_->transactionSerial();
    return (transaction != 0 && transaction == aheadTransaction_) ||
           std::chrono::steady_clock::now() - aheadRead_ < std::chrono::milliseconds(20);
}

void Table::last() {
    requireActive();
    settlePendingEdit();
    if (standAtEndOfWholeSet(true))
        return;
    if (loadRow(planned(plan_->last, plan_->lastSql))) {
        bof_ = false;
        eof_ = true;
    } else {
        clearRow();
        bof_ = eof_ = true;
    }
    notifyDataChanged();
}

void Table::next() {
    requireActive();
    settlePendingEdit();
    if (!hasRow_) {
        eof_ = true;
        return;
    }
    if (stepInWholeSet(true))
        return;
    // A scan: from the second next in a row on, the rows after the current one are read ahead
    // in one step and served from memory while nothing can have changed them.
    const bool scanning = scanRun_ > 0 && lastServed_ == rowid_ && lastPlan_ == plan_.get() &&
                          lastGeneration_ == generation();
    scanRun_ = scanning ? scanRun_ + 1 : 1;
    if (scanning && !aheadValid()) {
        // A scan that used up its rows reads twice as many next time; a new one starts small,
        // as most scans stop after a few rows.
        const bool continued = aheadAt_ > 0 && aheadAt_ == ahead_.size() &&
                               aheadPlan_ == plan_.get() && ahead_.back().first == rowid_;
        readAhead(continued ? std::min(ReadAhead, aheadBatch_ * 2) : FirstReadAhead);
    }
    if (scanning && aheadAt_ < ahead_.size()) {
        rowid_ = ahead_[aheadAt_].first;
        setRow(ahead_[aheadAt_].second);
        noteRowRead(aheadGeneration_, aheadTransaction_);
        ++aheadAt_;
        bof_ = false;
        eof_ = false;
        noteScanPosition();
        notifyDataChanged();
        return;
    }
    if (!scanning || !aheadEnded_) {
        if (loadRow(stepStatement(true, row_, rowid_))) {
            bof_ = false;
            eof_ = false;
            noteScanPosition();
            notifyDataChanged();
            return;
        }
    }
    eof_ = true;
    noteScanPosition();
}

Table::Stamp Table::generation() const {
    // Writes elsewhere on the connection, and this table's own writes.
    return {database_->generation(), *written_};
}

bool Table::aheadValid() const {
    if (aheadAt_ >= ahead_.size() || aheadGeneration_ != generation() ||
        aheadPlan_ != plan_.get() || aheadAt_ == 0 || ahead_[aheadAt_ - 1].first != rowid_)
        return false;
    return fresh();
}

void Table::readAhead(int rows) {
    ahead_.clear();
    aheadAt_ = 0;
    aheadEnded_ = false;
    const bool pinned = withinPinned(row_);
    auto& p = *plan_;
    Statement& stmt = pinned ? planned(p.nextManyPinned, p.nextManyPinnedSql)
                             : planned(p.nextMany, p.nextManySql);
    bindPosition(stmt, pinned ? static_cast<int>(p.pinned.size()) : 0, row_, rowid_);
    struct ResetAfter {
        Statement& s;
        ~ResetAfter() { s.reset(); }
    } resetAfter{stmt};
    while (ahead_.size() < static_cast<std::size_t>(rows) && stmt.step()) {
        std::vector<Value> row;
        row.reserve(names_.size());
        for (std::size_t i = 0; i < names_.size(); ++i)
            row.push_back(stmt.column(static_cast<int>(i) + 1));
        ahead_.emplace_back(stmt.columnInteger(0), std::move(row));
    }
    aheadEnded_ = ahead_.size() < static_cast<std::size_t>(rows);
    aheadBatch_ = rows;
    aheadFromFirst_ =
        rowid_ == firstRowid_ && plan_.get() == firstPlan_ && generation() == firstStamp_;
    // The current row heads the buffer's positions: the first row read follows it.
    ahead_.insert(ahead_.begin(), {rowid_, row_});
    aheadAt_ = 1;
    aheadGeneration_ = generation();
    aheadTransaction_ = database_->transactionSerial();
    aheadPlan_ = plan_.get();
    aheadRead_ = std::chrono::steady_clock::now();
}

void Table::noteScanPosition() {
    lastServed_ = rowid_;
    lastPlan_ = plan_.get();
    lastGeneration_ = generation();
}

void Table::prior() {
    requireActive();
    settlePendingEdit();
    if (!hasRow_) {
        bof_ = true;
        return;
    }
    if (stepInWholeSet(false))
        return;
    if (loadRow(stepStatement(false, row_, rowid_))) {
        bof_ = false;
        eof_ = false;
        notifyDataChanged();
    } else {
        bof_ = true;
    }
}

int Table::recordCount() {
    requireActive();
    if (useWholeSet())
        return static_cast<int>(plan_->set.rows.size());
    if (!plan_->count)
        plan_->count = held("select count(*) from " + plan_->source + whereFilter(""));
    auto& stmt = *plan_->count;
    stmt.step();
    const auto n = stmt.columnInteger(0);
    stmt.reset();
    return static_cast<int>(n);
}

int Table::recNo() {
    requireActive();
    if (!hasRow_)
        return 0;
    const int from = withinPinned(row_) ? static_cast<int>(plan_->pinned.size()) : 0;
    auto& slot = from ? plan_->recNoPinned : plan_->recNo;
    if (!slot) {
        std::string tuple = from ? plan_->pinnedTuple : plan_->tuple;
        std::string marks = from ? plan_->pinnedMarks : std::string();
        if (!from) {
            for (int i = 0; i < plan_->tupleSize; ++i)
                marks += i ? ", ?" : "?";
            marks = "(" + marks + ")";
        }
        slot = held("select count(*) from " + plan_->source + whereFilter(tuple + " <= " + marks));
    }
    auto& stmt = *slot;
    bindPosition(stmt, from, row_, rowid_);
    stmt.step();
    const auto n = stmt.columnInteger(0);
    stmt.reset();
    return static_cast<int>(n);
}

bool Table::findKey(const std::vector<Value>& key) {
    requireActive();
    settlePendingEdit();
    if (keyNames_.empty())
        throw StoreError("Table " + tableName_ + " has no index selected for a key search");
    if (key.empty() || key.size() > keyNames_.size())
        throw StoreError("Key search on table " + tableName_ + " with " +
                         std::to_string(key.size()) + " values; the key has " +
                         std::to_string(keyNames_.size()));
    auto& cached = plan_->findKey[key.size()];
    if (!cached) {
        std::string condition;
        for (std::size_t i = 0; i < key.size(); ++i)
            condition += (i ? " and " : "") + quoteName(keyNames_[i]) + " = ?";
        cached = held(plan_->selectFrom + whereFilter(condition) + " order by " + plan_->order +
                      " limit 1");
    }
    // loadRow leaves the current row alone when nothing matches.
    bindKey(*cached, 1, key, false);
    if (!loadRow(*cached))
        return false;
    bof_ = eof_ = false;
    notifyDataChanged();
    return true;
}

void Table::findNearest(const std::vector<Value>& key) {
    requireActive();
    settlePendingEdit();
    if (keyNames_.empty())
        throw StoreError("Table " + tableName_ + " has no index selected for a nearest search");
    if (key.empty() || key.size() > keyNames_.size())
        throw StoreError("Nearest search on table " + tableName_ + " with " +
                         std::to_string(key.size()) + " values; the key has " +
                         std::to_string(keyNames_.size()));
    if (findNearestInWholeSet(key))
        return;
    // A key that starts with the values the filter pins compares only the rest, so that the
    // index seeks straight to it instead of walking the pinned range from its start.
    const auto& pinned = plan_->pinned;
    std::size_t from = 0;
    if (!pinned.empty() && key.size() > pinned.size()) {
        from = pinned.size();
        for (std::size_t i = 0; i < pinned.size(); ++i)
            if (!(coerce(keyColumns_[i], key[i]) == pinned[i]))
                from = 0;
    }
    auto& slots = from ? plan_->findNearestPinned : plan_->findNearest;
    if (slots.size() <= key.size())
        slots.resize(key.size() + 1);
    auto& cached = slots[key.size()];
    if (!cached) {
        std::string tuple, marks;
        for (std::size_t i = from; i < key.size(); ++i) {
            tuple += (i > from ? ", " : "") + quoteName(keyNames_[i]);
            marks += i > from ? ", ?" : "?";
        }
        cached = held(plan_->selectFrom + whereFilter("(" + tuple + ") >= (" + marks + ")") +
                      " order by " + plan_->order + " limit 1");
    }
    int index = 1;
    for (std::size_t i = from; i < key.size(); ++i)
        cached->bind(index++, coerce(keyColumns_[i], key[i]));
    if (loadRow(*cached)) {
        bof_ = eof_ = false;
    } else if (loadRow(planned(plan_->last, plan_->lastSql))) {
        // Past the last key: stand on the last row, with the end flag clear.
        bof_ = eof_ = false;
    } else {
        clearRow();
        bof_ = eof_ = true;
    }
    notifyDataChanged();
}

void Table::post() {
    requireActive();
    if (state() != DatasetState::Edit && state() != DatasetState::Insert)
        return;
    notifyBeforePost();
    std::vector<Value> values;
    bool aliasChanged = false;
    for (std::size_t i = 0; i < modified_.size(); ++i) {
        if (!modified_[i])
            continue;
        values.push_back(coerce(static_cast<int>(i), editRow_[i]));
        if (static_cast<int>(i) == rowidAlias_)
            aliasChanged = true;
    }
    if (values.empty()) {
        cancel();
        return;
    }
    if (state() == DatasetState::Edit && rowUnchangedSinceRead()) {
        bool same = true;
        for (std::size_t i = 0; same && i < modified_.size(); ++i)
            same = !modified_[i] || coerce(static_cast<int>(i), editRow_[i]) == row_[i];
        if (same) {
            // The row holds these values already: nothing to write, the row stays current.
            editRow_.clear();
            modified_.clear();
            setState(DatasetState::Browse);
            notifyDataChanged();
            return;
        }
    }
    // The statement of the last set of columns posted is kept: a routine posts the same ones.
    if (!plan_->update || plan_->updateColumns != modified_) {
        std::string sets;
        for (std::size_t i = 0; i < modified_.size(); ++i)
            if (modified_[i])
                sets += (sets.empty() ? "" : ", ") + plan_->quoted[i] + " = ?";
        plan_->update = held("update " + plan_->source + " set " + sets + whereSameRow());
        plan_->updateColumns = modified_;
    }
    auto& stmt = *plan_->update;
    int index = 1;
    for (auto& v : values)
        stmt.bindBorrowed(index++, v);
    bindSameRow(stmt, index);
    ++*written_;
    stmt.run();
    if (database_->changes() == 0) {
        // The row is gone; the edit is dropped, never inserted anew.
        editRow_.clear();
        modified_.clear();
        setState(DatasetState::Browse);
        notifyDataChanged();
        throw StoreError("Record not found: cannot post to table " + tableName_ +
                         ": the record being edited was deleted by another statement");
    }
    std::int64_t rowid = rowid_;
    if (aliasChanged) {
        const Value& v = editRow_[static_cast<std::size_t>(rowidAlias_)];
        rowid = v.isInteger() ? v.integer() : common::strToIntDef(v.isText() ? v.text() : "", 0);
    }
    editRow_.clear();
    modified_.clear();
    setState(DatasetState::Browse);
    // The cursor moves with the row when its key changed.
    if (!readByRowid(rowid))
        clearRow();
    notifyDataChanged();
}

std::string Table::whereSameRow() const {
    // A rowid freed by a delete may be given to a new row: the key read with the row tells the
    // two apart.
    std::string where = " where _rowid_ = ?";
    for (int c : keyColumns_)
        where += " and " + plan_->quoted[static_cast<std::size_t>(c)] +
                 database_->connection().sameValueOperator() + "?";
    return where;
}

void Table::bindSameRow(Statement& stmt, int from) {
    stmt.bind(from++, Value(static_cast<long long>(rowid_)));
    for (int c : keyColumns_)
        stmt.bind(from++, row_[static_cast<std::size_t>(c)]);
}

void Table::deleteRecord() {
    requireActive();
    if (state() == DatasetState::Edit || state() == DatasetState::Insert)
        cancel();
    if (!hasRow_)
        throw StoreError("Cannot delete from table " + tableName_ + ": it has no current record");
    if (beforeDelete && !beforeDelete())
        return;
    const auto deletedRow = row_;
    const auto deletedRowid = rowid_;
    if (!plan_->deleteRow)
        plan_->deleteRow = held("delete from " + plan_->source + whereSameRow());
    auto& del = *plan_->deleteRow;
    bindSameRow(del, 1);
    ++*written_;
    del.run();
    // Go to the next row, or to the new last row when the last was deleted.
    if (loadRow(stepStatement(true, deletedRow, deletedRowid)) ||
        loadRow(planned(plan_->last, plan_->lastSql))) {
        bof_ = eof_ = false;
    } else {
        clearRow();
        bof_ = eof_ = true;
    }
    notifyDataChanged();
}

void Table::insertRecord(const std::vector<Value>& values) {
    requireActive();
    settlePendingEdit();
    if (values.size() > names_.size())
        throw StoreError("Insert into table " + tableName_ + " with " +
                         std::to_string(values.size()) + " values; it has " +
                         std::to_string(names_.size()) + " columns");
    if (beforeInsert && !beforeInsert())
        return;
    auto& slot = plan_->insert[values.size()];
    if (!slot) {
        std::string sql = "insert into " + plan_->source;
        if (values.empty()) {
            sql += " default values";
        } else {
            std::string columns, marks;
            for (std::size_t i = 0; i < values.size(); ++i) {
                columns += (i ? ", " : "") + plan_->quoted[i];
                marks += i ? ", ?" : "?";
            }
            sql += " (" + columns + ") values (" + marks + ")";
        }
        slot = held(sql + database_->connection().insertReturningRowid());
    }
    auto& stmt = *slot;
    // The values outlive the run, which clears the bindings.
    for (std::size_t i = 0; i < values.size(); ++i)
        stmt.bindBorrowed(static_cast<int>(i) + 1, values[i]);
    ++*written_;
    // The engine tells the new row id, or the statement returns it.
    std::int64_t rowid = 0;
    if (*database_->connection().insertReturningRowid()) {
        try {
            if (stmt.step())
                rowid = stmt.columnInteger(0);
        } catch (...) {
            stmt.reset();
            throw;
        }
        stmt.reset();
    } else {
        stmt.run();
        rowid = database_->connection().lastInsertRowid();
    }
    // The cursor stands on the new row.
    if (readByRowid(rowid))
        bof_ = eof_ = false;
    notifyDataChanged();
}

void Table::appendRecord(const std::vector<Value>& values) { insertRecord(values); }

void Table::applyFilter(const std::string& text, bool on) {
    const std::string previousText = filter_;
    const bool previousOn = filtered_;
    filter_ = text;
    filtered_ = on;
    if (!active())
        return;
    try {
        buildPlan();
    } catch (...) {
        // A refused filter leaves the table as it was.
        filter_ = previousText;
        filtered_ = previousOn;
        throw;
    }
    first();
}

void Table::setFilter(const std::string& text) {
    settlePendingEdit();
    applyFilter(text, filtered_);
}

void Table::setFiltered(bool on) {
    settlePendingEdit();
    applyFilter(filter_, on);
}

void Table::refilter(const std::string& text) {
    if (hasDataSources() || !active()) {
        setFiltered(false);
        setFilter(text);
        setFiltered(true);
        return;
    }
    settlePendingEdit();
    applyFilter(text, true);
}

Bookmark Table::getBookmark() const {
    Bookmark b;
    if (!hasRow_)
        return b;
    b.rowid = rowid_;
    for (int c : keyColumns_)
        b.key.push_back(row_[static_cast<std::size_t>(c)]);
    b.valid = true;
    return b;
}

void Table::gotoBookmark(const Bookmark& bookmark) {
    requireActive();
    settlePendingEdit();
    if (!bookmark.valid)
        throw StoreError("Invalid bookmark on table " + tableName_);
    // Back to the row the cursor stands on, which nothing can have changed: no read.
    const bool here = hasRow_ && rowid_ == bookmark.rowid && rowUnchangedSinceRead();
    if (!here && !readByRowid(bookmark.rowid))
        throw StoreError("Record not found: the bookmarked row of table " + tableName_ +
                         " no longer exists");
    bof_ = eof_ = false;
    notifyDataChanged();
}

} // namespace store
