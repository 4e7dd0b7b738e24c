#pragma once
// Controls bound to a column of a dataset through a data source. They show the current row on
// every cursor move, put the dataset into edit state at the first keystroke (before the change
// signal), write their text into the column before every post and when focus leaves them, and
// fire their change signal whenever their text changes, also when the row changed it.
#include "store/Dataset.h"

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

#include <functional>
#include <string>

namespace dialogs {

// The binding shared by the controls: data source, column, and whether the user changed the text.
class FieldBinding : public store::FieldLink {
public:
    virtual ~FieldBinding();
    void setDataSource(store::DataSource* source);
    store::DataSource* dataSource() const { return source_; }
    void setDataField(const std::string& field);
    const std::string& dataField() const { return field_; }
    bool bound() const { return source_ && !field_.empty(); }
    // The column's text on the current row ("" when unbound or inactive).
    std::string fieldText() const;
    bool modified() const { return modified_; }

    void dataChanged() override;
    void fieldChanged(int fieldIndex) override;
    void updateRecord() override;

protected:
    // Puts the dataset into edit state; true when the control may be edited.
    bool beginEdit();
    // A key for the control: starts the edit first when `editing` (a key that changes the text),
    // refuses it when there is no row, upper-cases typed letters when `upper`, then hands it to
    // the control's own handling.
    void keyPress(QKeyEvent* event, bool editing, bool upper,
                  const std::function<void(QKeyEvent*)>& control);
    // Called when the text changed; marks the control modified unless the row set it.
    void noteTextChanged();
    // Runs `show` as the row showing its value: the change it makes is not the user's.
    void asRowValue(const std::function<void()>& show);
    virtual std::string controlText() const = 0;
    virtual void setControlText(const std::string& text) = 0;

private:
    // The column's index in the dataset (-1 when it has none), found by name once for each
    // reading of the dataset's columns.
    int columnIndex(const store::Dataset& dataset) const;

    store::DataSource* source_ = nullptr;
    std::string field_;
    bool modified_ = false;
    bool showing_ = false; // the text is being set from the row
    mutable const store::Dataset* indexed_ = nullptr;
    mutable std::uint64_t indexedColumns_ = 0;
    mutable int index_ = -1;
};

class TDBEdit : public QLineEdit, public FieldBinding {
public:
    explicit TDBEdit(QWidget* parent = nullptr);
    // An upper-case control converts all its text: typed, set by code or by the binding.
    void setUpperCase(bool upper);
    bool upperCase() const { return upper_; }
    // Hides QLineEdit::setText so that code setting the text is upper-cased too.
    void setText(const QString& text);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    std::string controlText() const override;
    void setControlText(const std::string& text) override;

private:
    bool upper_ = false;
    // The text last read and its UTF-8 form; while the edit still holds that same string, the
    // form is not made again.
    mutable QString readText_;
    mutable std::string readUtf8_;
};

class TDBMemo : public QPlainTextEdit, public FieldBinding {
public:
    explicit TDBMemo(QWidget* parent = nullptr);
    void setUpperCase(bool upper);
    bool upperCase() const { return upper_; }
    // The text the memo holds, also while a row's value waits for the memo to show.
    QString text() const { return hasPending_ ? pending_ : toPlainText(); }
    void setText(const QString& text);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void showEvent(QShowEvent* event) override;
    std::string controlText() const override;
    void setControlText(const std::string& text) override;

private:
    bool upper_ = false;
    // While the memo is not showing, a row's value waits here instead of being laid out on
    // every cursor move: nothing can see or edit a hidden memo's text, and the change handlers
    // of the memo act only while it shows.
    QString pending_;
    bool hasPending_ = false;
};

// A label showing a column.
class TDBText : public QLabel, public FieldBinding {
public:
    explicit TDBText(QWidget* parent = nullptr);

protected:
    std::string controlText() const override;
    void setControlText(const std::string& text) override;
};

// Upper-cases ASCII letters only.
QString upperAscii(const QString& text);

} // namespace dialogs
