#pragma once
// The cursor interface shared by tables and queries: moves in key order, the begin and end flags,
// counts under a filter, fields read with null defaults, edit/post, delete, insert by position,
// filters and bookmarks.
#include "store/StoreError.h"
#include "store/Value.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace store {

class Dataset;
class DataSource;

enum class DatasetState { Inactive, Browse, Edit, Insert };
enum class FieldType { Integer, String, Float, Boolean };

// A column of the current row. Reading a null gives "", 0, 0.0 or false.
class Field {
public:
    Field(Dataset& dataset, int index) : dataset_(&dataset), index_(index) {}
    const std::string& fieldName() const;
    FieldType dataType() const;
    int index() const { return index_; }
    bool isNull() const;
    Value value() const;
    std::string asString() const;
    std::int32_t asInteger() const;
    double asFloat() const;
    bool asBoolean() const;
    // Writes need the dataset in edit state.
    void setValue(const Value& value);
    void setAsString(const std::string& value);
    void setAsInteger(std::int32_t value);
    void setAsFloat(double value);
    void setAsBoolean(bool value);
    void clear();

private:
    Dataset* dataset_;
    int index_;
};

struct Bookmark {
    std::int64_t rowid = 0;
    std::vector<Value> key;
    bool valid = false;
};

class Dataset {
public:
    virtual ~Dataset();
    Dataset(const Dataset&) = delete;
    Dataset& operator=(const Dataset&) = delete;

    // Lifecycle.
    virtual void open() = 0;
    virtual void close();
    bool active() const { return state_ != DatasetState::Inactive; }
    DatasetState state() const { return state_; }

    // Moves. A pending edit is posted first when a field changed, and dropped otherwise.
    virtual void first() = 0;
    virtual void last() = 0;
    virtual void next() = 0;
    virtual void prior() = 0;
    // End flag: set only by a Next that fails to move or by Last on an empty set (and First on
    // one).
    bool eof() const { return eof_; }
    // Begin flag: set by First, and by a Prior that fails to move.
    bool bof() const { return bof_; }
    bool isEmpty() { return recordCount() == 0; }
    virtual int recordCount() = 0;
    // Position of the current row within the (filtered) set, from 1; 0 on an empty set.
    virtual int recNo() = 0;
    bool hasRow() const { return hasRow_; }

    // Columns.
    int fieldCount() const { return static_cast<int>(names_.size()); }
    const std::vector<std::string>& fieldNames() const { return names_; }
    // Case-insensitive; raises a StoreError naming the column and the dataset when missing.
    Field fieldByName(std::string_view name);
    Field fields(int index);
    int fieldIndex(std::string_view name) const; // -1 when missing
    // Changes whenever the columns are read anew (at open); no two readings, of this dataset or
    // another, share a number, so an index found by name stays valid while this one stays.
    std::uint64_t columnsVersion() const { return columnsVersion_; }

    // Changes.
    virtual void edit();
    virtual void post();
    virtual void cancel();
    // Posts a pending edit (cancels one that changed nothing), as a move would first.
    void checkBrowseMode() { settlePendingEdit(); }
    virtual void deleteRecord();
    // One row from values by column position; fewer values leave nulls. Posts at once.
    virtual void insertRecord(const std::vector<Value>& values);
    virtual void appendRecord(const std::vector<Value>& values);

    // Filters: each change (text, on, off) leaves the cursor on the first row of the new set.
    virtual void setFilter(const std::string& text);
    const std::string& filter() const { return filter_; }
    virtual void setFiltered(bool on);
    bool filtered() const { return filtered_; }

    // Bookmarks.
    virtual Bookmark getBookmark() const;
    virtual void gotoBookmark(const Bookmark& bookmark);
    void freeBookmark(Bookmark& bookmark) { bookmark = Bookmark{}; }

    // A display name for messages ("table Jobs", "query select ...").
    virtual std::string describe() const = 0;

    // Data sources attached to this dataset, told of every row and state change.
    void attach(DataSource* source);
    void detach(DataSource* source);
    bool hasDataSources() const { return !sources_.empty(); }

protected:
    Dataset() = default;
    friend class Field;

    // Accessors for Field.
    const Value& currentValue(int index) const;
    void setCurrentValue(int index, Value value);
    virtual FieldType fieldType(int index) const;
    void requireActive() const;

    // Hooks for subclasses.
    void setState(DatasetState state);
    void notifyDataChanged();
    // One column of the current row changed (a field write in edit state).
    void notifyFieldChanged(int index);
    void notifyBeforePost();
    // Posts or drops a pending edit before a move.
    void settlePendingEdit();
    void setRow(std::vector<Value> row) {
        row_ = std::move(row);
        hasRow_ = true;
    }
    void clearRow();
    // Called by a subclass whenever it changes names_ (before it fills them anew).
    void columnsReset();

    std::vector<std::string> names_;
    std::vector<Value> row_;     // current row as read
    std::vector<Value> editRow_; // row under edit
    std::vector<bool> modified_; // columns written during the edit
    bool hasRow_ = false;
    bool eof_ = true;
    bool bof_ = true;
    std::string filter_;
    bool filtered_ = false;

private:
    DatasetState state_ = DatasetState::Inactive;
    std::vector<DataSource*> sources_;
    std::uint64_t columnsVersion_ = 0;
};

// A control bound to a column through a data source.
class FieldLink {
public:
    virtual ~FieldLink() = default;
    // The row or the dataset's state changed: show the current value.
    virtual void dataChanged() = 0;
    // A column of the current row was written; links to other columns keep what they show.
    virtual void fieldChanged(int fieldIndex) {
        (void)fieldIndex;
        dataChanged();
    }
    // Before a post: write the control's text into the column if the user changed it.
    virtual void updateRecord() = 0;
};

// Ties controls to a dataset; lives as long as the form that owns it, or the store module.
class DataSource {
public:
    explicit DataSource(Dataset* dataset = nullptr);
    ~DataSource();
    DataSource(const DataSource&) = delete;
    DataSource& operator=(const DataSource&) = delete;

    void setDataSet(Dataset* dataset);
    Dataset* dataSet() const { return dataset_; }
    void addLink(FieldLink* link);
    void removeLink(FieldLink* link);

    // Called by the dataset.
    void dataChanged();
    void fieldChanged(int fieldIndex);
    void updateRecord();

private:
    Dataset* dataset_ = nullptr;
    std::vector<FieldLink*> links_;
    bool notifying_ = false;
};

} // namespace store
