#pragma once
// A table as a cursor in key order. The position is the key tuple of the current row (plus rowid
// where the key admits duplicates); every move is one indexed lookup, so changes made by any
// statement are seen at the next move.
#include "store/Dataset.h"

#include <chrono>
#include <functional>
#include <list>
#include <memory>

namespace store {

class Database;
class Statement;

class Table : public Dataset {
public:
    Table(Database& database, std::string tableName);
    ~Table() override;

    const std::string& tableName() const { return tableName_; }
    Database& database() const { return *database_; }

    // Raises a StoreError naming the table and the database when the table is absent.
    void open() override;
    void close() override;

    // The table's index definitions, in order of definition.
    std::vector<std::string> indexDefs();
    // Selects the order and the key for lookups; "" for the natural (insertion) order.
    void setIndexName(const std::string& name);
    const std::string& indexName() const { return indexName_; }
    const std::vector<std::string>& keyFields() const { return keyNames_; }

    void first() override;
    void last() override;
    void next() override;
    void prior() override;
    int recordCount() override;
    int recNo() override;

    // Exact search on the leading key columns; the cursor stays where it was when nothing matches.
    bool findKey(const std::vector<Value>& key);
    // The first (filtered) row whose key is not less than the values; past the last key the cursor
    // stands on the last row.
    void findNearest(const std::vector<Value>& key);

    void post() override;
    void deleteRecord() override;
    void insertRecord(const std::vector<Value>& values) override;
    void appendRecord(const std::vector<Value>& values) override;

    void setFilter(const std::string& text) override;
    void setFiltered(bool on) override;
    // The filter switched off, given `text`, switched on: the cursor ends on the first row of the
    // new set, as after the three changes. Without attached data sources, nobody sees the two
    // steps between, and only the last is made.
    void refilter(const std::string& text);

    Bookmark getBookmark() const override;
    void gotoBookmark(const Bookmark& bookmark) override;

    // Before-insert and before-delete events: returning false aborts the change silently.
    std::function<bool()> beforeInsert;
    std::function<bool()> beforeDelete;

    std::string describe() const override;

protected:
    FieldType fieldType(int index) const override;

private:
    struct Plan;
    // A statement through the database's cache, held by the caller beyond an eviction from it.
    std::shared_ptr<Statement> held(const std::string& sql);
    // The statement of a slot of the plan, prepared from `sql` at its first use.
    Statement& planned(std::shared_ptr<Statement>& slot, const std::string& sql);
    // The plan of the present order and filter: a kept one when the table had it lately.
    void buildPlan();
    void forgetPlans();
    std::string whereFilter(const std::string& extra) const;
    // A column name quoted as the engine takes it.
    std::string quoteName(const std::string& name) const;
    // Sets the filter text and switch and moves to the first row; a filter that cannot be used
    // raises and leaves both as they were.
    void applyFilter(const std::string& text, bool on);
    // The condition that finds the current row: its rowid and the key it was read with.
    std::string whereSameRow() const;
    void bindSameRow(Statement& stmt, int from);
    // Loads the row found by `stmt` (already stepped); false when there was none.
    bool loadRow(Statement& stmt);
    bool readByRowid(std::int64_t rowid);
    void bindKey(Statement& stmt, int from, const std::vector<Value>& key, bool withRowid);
    Value coerce(int column, const Value& value) const;
    // True when the filter pins leading key columns and `row` lies within them.
    bool withinPinned(const std::vector<Value>& row) const;
    // Binds the position of `row` to a step or count statement, from key column `from` on.
    void bindPosition(Statement& stmt, int from, const std::vector<Value>& row, std::int64_t rowid);
    // The next (or prior) statement for the position of `row`, bound and ready to step.
    Statement& stepStatement(bool forward, const std::vector<Value>& row, std::int64_t rowid);

    Database* database_;
    std::string tableName_;
    std::string indexName_;
    std::vector<std::string> keyNames_;
    std::vector<int> keyColumns_; // column indexes of the key
    bool keyUnique_ = false;
    int rowidAlias_ = -1; // column that is the integer primary key, if any
    std::vector<FieldType> types_;
    std::int64_t rowid_ = 0;
    std::shared_ptr<Plan> plan_;
    std::uint64_t* written_; // the database's count of writes to this table
    // Plans of the orders and filters used lately, most recent first: routines switch between a
    // few filters many times over.
    std::list<std::pair<std::string, std::shared_ptr<Plan>>> plans_;
    static constexpr std::size_t PlanBound = 64;
    // Rows read ahead by a scan of next moves (the row the scan stood on first), and what they
    // are valid for: the same plan, no write on the connection since, and either an open
    // transaction or a moment's age.
    static constexpr int ReadAhead = 32;
    static constexpr int FirstReadAhead = 4;
    int aheadBatch_ = 0; // rows asked of the last read ahead
    bool aheadValid() const;
    bool fresh() const;
    using Stamp = std::pair<std::uint64_t, std::uint64_t>;
    Stamp generation() const;
    void readAhead(int rows);
    void noteScanPosition();
    std::vector<std::pair<std::int64_t, std::vector<Value>>> ahead_;
    std::size_t aheadAt_ = 0;
    bool aheadEnded_ = false;     // the read reached the end of the set
    bool aheadFromFirst_ = false; // the buffer starts with the set's first row
    std::int64_t firstRowid_ = 0; // the first row as first() last found it
    const void* firstPlan_ = nullptr;
    Stamp aheadGeneration_{};
    std::uint64_t aheadTransaction_ = 0; // the transaction the rows were read in; 0 outside one
    Stamp firstStamp_{};
    const void* aheadPlan_ = nullptr;
    std::chrono::steady_clock::time_point aheadRead_;
    // Where the last next left the cursor: a next from there continues the scan.
    int scanRun_ = 0;
    std::int64_t lastServed_ = 0;
    const void* lastPlan_ = nullptr;
    Stamp lastGeneration_{};
    // When the current row was read: the transaction and the writes seen. A post that
    // changes nothing on a row read in this transaction, with no write since, has nothing to write.
    void noteRowRead(Stamp stamp, std::uint64_t transaction);
    bool rowUnchangedSinceRead() const;
    // A small set is kept whole in memory within a transaction, and past it while no other
    // connection has committed: lookups of a few dozen rows are searched and walked many times
    // over in one operator action.
    static constexpr std::size_t WholeSetBound = 256;
    struct WholeSet {
        bool loaded = false;
        Stamp stamp{};
        std::int64_t dataVersion = -1;
        std::uint64_t checked = 0; // the transaction it was last known good in
        std::vector<std::pair<std::int64_t, std::vector<Value>>> rows;
        std::size_t at = 0; // the current row's place, when it is in the set
    };
    bool wholeSetValid();
    bool useWholeSet();
    void standOnWholeSetRow(std::size_t at);
    bool stepInWholeSet(bool forward);
    bool standAtEndOfWholeSet(bool last);
    bool findNearestInWholeSet(const std::vector<Value>& key);
    Stamp rowStamp_{};
    std::uint64_t rowTransaction_ = 0;
};

} // namespace store
