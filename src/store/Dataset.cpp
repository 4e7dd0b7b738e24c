#include "store/Dataset.h"

#include "common/Convert.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>

namespace store {

namespace {

const Value& nullValue() {
    static const Value v;
    return v;
}

// The shortest text of a real that reads back the same, with a decimal point.
std::string realText(double v) {
    char buffer[64];
    for (int precision = 15; precision <= 17; ++precision) {
        std::snprintf(buffer, sizeof buffer, "%.*g", precision, v);
        double back = 0;
        if (std::sscanf(buffer, "%lf", &back) == 1 && back == v)
            break;
    }
    std::string s(buffer);
    std::replace(s.begin(), s.end(), ',', '.');
    return s;
}

} // namespace

// ---- Field ----

const std::string& Field::fieldName() const {
    return dataset_->names_.at(static_cast<std::size_t>(index_));
}

FieldType Field::dataType() const { return dataset_->fieldType(index_); }

bool Field::isNull() const { return dataset_->currentValue(index_).isNull(); }

Value Field::value() const { return dataset_->currentValue(index_); }

std::string Field::asString() const {
    const Value& v = dataset_->currentValue(index_);
    if (v.isNull())
        return {};
    if (v.isText())
        return v.text();
    if (v.isInteger()) {
        if (dataType() == FieldType::Boolean)
            return v.integer() ? "True" : "False";
        return std::to_string(v.integer());
    }
    return realText(v.real());
}

std::int32_t Field::asInteger() const {
    const Value& v = dataset_->currentValue(index_);
    if (v.isNull())
        return 0;
    if (v.isInteger())
        return static_cast<std::int32_t>(v.integer());
    if (v.isReal())
        return static_cast<std::int32_t>(std::llround(v.real()));
    if (v.text().empty())
        return 0;
    auto parsed = common::tryStrToInt(v.text());
    if (!parsed)
        throw StoreError("'" + v.text() + "' is not a valid integer value in column " +
                         fieldName() + " of " + dataset_->describe());
    return *parsed;
}

double Field::asFloat() const {
    const Value& v = dataset_->currentValue(index_);
    if (v.isNull())
        return 0.0;
    if (v.isInteger())
        return static_cast<double>(v.integer());
    if (v.isReal())
        return v.real();
    if (v.text().empty())
        return 0.0;
    auto parsed = common::tryStrToFloat(v.text());
    if (!parsed)
        throw StoreError("'" + v.text() + "' is not a valid floating point value in column " +
                         fieldName() + " of " + dataset_->describe());
    return *parsed;
}

bool Field::asBoolean() const {
    const Value& v = dataset_->currentValue(index_);
    if (v.isNull())
        return false;
    if (v.isInteger())
        return v.integer() != 0;
    if (v.isReal())
        return v.real() != 0.0;
    const std::string t = common::upperCase(common::trim(v.text()));
    if (t.empty() || t == "FALSE" || t == "F" || t == "N" || t == "NO" || t == "0")
        return false;
    if (t == "TRUE" || t == "T" || t == "Y" || t == "YES" || t == "1")
        return true;
    throw StoreError("'" + v.text() + "' is not a valid boolean value in column " + fieldName() +
                     " of " + dataset_->describe());
}

void Field::setValue(const Value& value) { dataset_->setCurrentValue(index_, value); }
void Field::setAsString(const std::string& value) { setValue(Value(value)); }
void Field::setAsInteger(std::int32_t value) { setValue(Value(static_cast<long long>(value))); }
void Field::setAsFloat(double value) { setValue(Value(value)); }
void Field::setAsBoolean(bool value) { setValue(Value(value)); }
void Field::clear() { setValue(Value()); }

// ---- Dataset ----

Dataset::~Dataset() {
    auto sources = std::move(sources_);
    sources_.clear();
    for (auto* source : sources)
        source->setDataSet(nullptr);
}

void Dataset::close() {
    if (state_ == DatasetState::Inactive)
        return;
    editRow_.clear();
    modified_.clear();
    clearRow();
    eof_ = bof_ = true;
    setState(DatasetState::Inactive);
    notifyDataChanged();
}

void Dataset::requireActive() const {
    if (state_ == DatasetState::Inactive)
        throw StoreError("Cannot perform this operation on a closed dataset: " + describe());
}

int Dataset::fieldIndex(std::string_view name) const {
    // Names of another length are passed over without comparing letters.
    for (std::size_t i = 0; i < names_.size(); ++i)
        if (names_[i].size() == name.size() && common::sameText(names_[i], name))
            return static_cast<int>(i);
    return -1;
}

Field Dataset::fieldByName(std::string_view name) {
    const int index = fieldIndex(name);
    if (index < 0)
        throw StoreError(describe() + ": Field '" + std::string(name) + "' not found");
    return Field(*this, index);
}

Field Dataset::fields(int index) {
    if (index < 0 || index >= fieldCount())
        throw StoreError(describe() + ": field index " + std::to_string(index) + " out of range");
    return Field(*this, index);
}

const Value& Dataset::currentValue(int index) const {
    const auto i = static_cast<std::size_t>(index);
    if (state_ == DatasetState::Edit || state_ == DatasetState::Insert)
        return i < editRow_.size() ? editRow_[i] : nullValue();
    if (!hasRow_ || i >= row_.size())
        return nullValue();
    return row_[i];
}

void Dataset::setCurrentValue(int index, Value value) {
    if (state_ != DatasetState::Edit && state_ != DatasetState::Insert)
        throw StoreError(describe() + ": not in edit or insert mode");
    const auto i = static_cast<std::size_t>(index);
    if (editRow_[i] == value && modified_[i])
        return;
    editRow_[i] = std::move(value);
    modified_[i] = true;
    notifyFieldChanged(index);
}

FieldType Dataset::fieldType(int) const { return FieldType::String; }

void Dataset::setState(DatasetState state) { state_ = state; }

void Dataset::columnsReset() {
    static std::atomic<std::uint64_t> readings{0};
    columnsVersion_ = ++readings;
}

void Dataset::clearRow() {
    row_.clear();
    hasRow_ = false;
}

void Dataset::edit() {
    requireActive();
    if (state_ == DatasetState::Edit || state_ == DatasetState::Insert)
        return;
    if (!hasRow_)
        throw StoreError(describe() + ": cannot edit, the dataset has no current row");
    editRow_ = row_;
    modified_.assign(row_.size(), false);
    setState(DatasetState::Edit);
    notifyDataChanged();
}

void Dataset::post() { throw StoreError(describe() + ": this dataset cannot be changed"); }

void Dataset::cancel() {
    if (state_ != DatasetState::Edit && state_ != DatasetState::Insert)
        return;
    editRow_.clear();
    modified_.clear();
    setState(DatasetState::Browse);
    notifyDataChanged();
}

void Dataset::settlePendingEdit() {
    if (state_ != DatasetState::Edit && state_ != DatasetState::Insert)
        return;
    notifyBeforePost();
    if (std::find(modified_.begin(), modified_.end(), true) != modified_.end())
        post();
    else
        cancel();
}

void Dataset::deleteRecord() { throw StoreError(describe() + ": this dataset cannot be changed"); }

void Dataset::insertRecord(const std::vector<Value>&) {
    throw StoreError(describe() + ": this dataset cannot be changed");
}

void Dataset::appendRecord(const std::vector<Value>& values) { insertRecord(values); }

void Dataset::setFilter(const std::string&) {
    throw StoreError(describe() + ": this dataset cannot be filtered");
}

void Dataset::setFiltered(bool) {
    throw StoreError(describe() + ": this dataset cannot be filtered");
}

Bookmark Dataset::getBookmark() const {
    throw StoreError(describe() + ": bookmarks are not supported");
}

void Dataset::gotoBookmark(const Bookmark&) {
    throw StoreError(describe() + ": bookmarks are not supported");
}

void Dataset::attach(DataSource* source) {
    if (std::find(sources_.begin(), sources_.end(), source) == sources_.end())
        sources_.push_back(source);
}

void Dataset::detach(DataSource* source) {
    sources_.erase(std::remove(sources_.begin(), sources_.end(), source), sources_.end());
}

void Dataset::notifyDataChanged() {
    // Copy: a link's handler may attach or detach sources.
    auto sources = sources_;
    for (auto* source : sources)
        source->dataChanged();
}

void Dataset::notifyFieldChanged(int index) {
    auto sources = sources_;
    for (auto* source : sources)
        source->fieldChanged(index);
}

void Dataset::notifyBeforePost() {
    auto sources = sources_;
    for (auto* source : sources)
        source->updateRecord();
}

// ---- DataSource ----

DataSource::DataSource(Dataset* dataset) { setDataSet(dataset); }

DataSource::~DataSource() {
    if (dataset_)
        dataset_->detach(this);
}

void DataSource::setDataSet(Dataset* dataset) {
    if (dataset_ == dataset)
        return;
    if (dataset_)
        dataset_->detach(this);
    dataset_ = dataset;
    if (dataset_)
        dataset_->attach(this);
    dataChanged();
}

void DataSource::addLink(FieldLink* link) {
    if (std::find(links_.begin(), links_.end(), link) == links_.end())
        links_.push_back(link);
}

void DataSource::removeLink(FieldLink* link) {
    links_.erase(std::remove(links_.begin(), links_.end(), link), links_.end());
}

void DataSource::dataChanged() {
    auto links = links_;
    for (auto* link : links)
        link->dataChanged();
}

void DataSource::fieldChanged(int fieldIndex) {
    auto links = links_;
    for (auto* link : links)
        link->fieldChanged(fieldIndex);
}

void DataSource::updateRecord() {
    auto links = links_;
    for (auto* link : links)
        link->updateRecord();
}

} // namespace store
