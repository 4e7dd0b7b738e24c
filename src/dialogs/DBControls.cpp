#include "dialogs/DBControls.h"

#include <QKeyEvent>

#include <limits>

namespace dialogs {

namespace {

// Keys that change the text of an edit: those that produce characters, and the deleting keys.
bool changesText(const QKeyEvent* event) {
    if (event->matches(QKeySequence::Paste) || event->matches(QKeySequence::Cut) ||
        event->matches(QKeySequence::Undo) || event->matches(QKeySequence::Redo))
        return true;
    switch (event->key()) {
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
        return true;
    default:
        break;
    }
    return !event->text().isEmpty() && event->text().at(0).isPrint();
}

} // namespace

QString upperAscii(const QString& text) {
    QString out = text;
    for (auto& c : out)
        if (c >= QChar('a') && c <= QChar('z'))
            c = QChar(c.unicode() - 'a' + 'A');
    return out;
}

// ---- FieldBinding ----

FieldBinding::~FieldBinding() {
    if (source_)
        source_->removeLink(this);
}

void FieldBinding::setDataSource(store::DataSource* source) {
    if (source_ == source)
        return;
    if (source_)
        source_->removeLink(this);
    source_ = source;
    if (source_)
        source_->addLink(this);
    dataChanged();
}

void FieldBinding::setDataField(const std::string& field) {
    field_ = field;
    indexed_ = nullptr;
    dataChanged();
}

int FieldBinding::columnIndex(const store::Dataset& dataset) const {
    if (indexed_ != &dataset || indexedColumns_ != dataset.columnsVersion()) {
        index_ = dataset.fieldIndex(field_);
        indexed_ = &dataset;
        indexedColumns_ = dataset.columnsVersion();
    }
    return index_;
}

std::string FieldBinding::fieldText() const {
    if (!bound() || !source_->dataSet() || !source_->dataSet()->active())
        return {};
    auto* dataset = source_->dataSet();
    const int index = columnIndex(*dataset);
    // A missing column raises the dataset's error that names it.
    return (index < 0 ? dataset->fieldByName(field_) : dataset->fields(index)).asString();
}

void FieldBinding::dataChanged() {
    if (!bound())
        return;
    const std::string text = fieldText();
    modified_ = false;
    if (text == controlText())
        return;
    showing_ = true;
    try {
        setControlText(text);
    } catch (...) {
        showing_ = false;
        throw;
    }
    showing_ = false;
    modified_ = false;
}

void FieldBinding::fieldChanged(int fieldIndex) {
    // Only the control of the column written follows; others keep what the user typed.
    if (bound() && source_->dataSet() && columnIndex(*source_->dataSet()) == fieldIndex)
        dataChanged();
}

void FieldBinding::updateRecord() {
    if (!modified_ || !bound() || !source_->dataSet())
        return;
    auto* dataset = source_->dataSet();
    if (dataset->state() != store::DatasetState::Edit &&
        dataset->state() != store::DatasetState::Insert)
        return;
    modified_ = false;
    dataset->fieldByName(field_).setAsString(controlText());
}

bool FieldBinding::beginEdit() {
    if (!bound() || !source_->dataSet() || !source_->dataSet()->active())
        return true;
    auto* dataset = source_->dataSet();
    if (dataset->state() == store::DatasetState::Browse) {
        if (!dataset->hasRow())
            return false;
        dataset->edit();
    }
    return true;
}

void FieldBinding::keyPress(QKeyEvent* event, bool editing, bool upper,
                            const std::function<void(QKeyEvent*)>& control) {
    if (editing && !beginEdit()) {
        event->ignore();
        return;
    }
    if (upper && !event->text().isEmpty() && upperAscii(event->text()) != event->text()) {
        // Typed letters arrive upper-cased, so the change handlers see the final text once.
        QKeyEvent upperEvent(event->type(), event->key(), event->modifiers(),
                             upperAscii(event->text()), event->isAutoRepeat(),
                             static_cast<ushort>(event->count()));
        control(&upperEvent);
        return;
    }
    control(event);
}

void FieldBinding::asRowValue(const std::function<void()>& show) {
    const bool saved = showing_;
    showing_ = true;
    try {
        show();
    } catch (...) {
        showing_ = saved;
        throw;
    }
    showing_ = saved;
}

void FieldBinding::noteTextChanged() {
    if (showing_ || !bound() || !source_->dataSet())
        return;
    const auto state = source_->dataSet()->state();
    if (state == store::DatasetState::Edit || state == store::DatasetState::Insert)
        modified_ = true;
}

// ---- TDBEdit ----

TDBEdit::TDBEdit(QWidget* parent) : QLineEdit(parent) {
    // The box takes whatever its column holds; a line edit would cut at 32767 characters.
    setMaxLength(std::numeric_limits<int>::max());
    // Connected first, so the mark is set before any form handler sees the change.
    connect(this, &QLineEdit::textChanged, this, [this] { noteTextChanged(); });
}

void TDBEdit::setUpperCase(bool upper) {
    upper_ = upper;
    setText(QLineEdit::text());
}

void TDBEdit::setText(const QString& text) { QLineEdit::setText(upper_ ? upperAscii(text) : text); }

void TDBEdit::keyPressEvent(QKeyEvent* event) {
    keyPress(event, changesText(event) && !isReadOnly(), upper_,
             [this](QKeyEvent* e) { QLineEdit::keyPressEvent(e); });
}

void TDBEdit::focusOutEvent(QFocusEvent* event) {
    updateRecord();
    QLineEdit::focusOutEvent(event);
}

std::string TDBEdit::controlText() const {
    // A string still shared with the one read last is that string, unchanged: a change to the
    // edit's text would have made it a copy of its own.
    const QString text = QLineEdit::text();
    if (!text.isSharedWith(readText_)) {
        readUtf8_ = text.toStdString();
        readText_ = text;
    }
    return readUtf8_;
}

void TDBEdit::setControlText(const std::string& text) {
    // A row that shows the text the box already holds leaves the box alone: no new layout, and
    // the caret of a person typing stays where it is.
    if (text == controlText())
        return;
    setText(QString::fromStdString(text));
}

// ---- TDBMemo ----

TDBMemo::TDBMemo(QWidget* parent) : QPlainTextEdit(parent) {
    connect(this, &QPlainTextEdit::textChanged, this, [this] { noteTextChanged(); });
}

void TDBMemo::setUpperCase(bool upper) {
    upper_ = upper;
    if (upper_)
        setText(toPlainText());
}

void TDBMemo::setText(const QString& text) {
    hasPending_ = false;
    pending_.clear();
    const QString value = upper_ ? upperAscii(text) : text;
    if (value != toPlainText())
        setPlainText(value);
}

void TDBMemo::showEvent(QShowEvent* event) {
    if (hasPending_) {
        const QString value = pending_;
        asRowValue([&] { setText(value); });
    }
    QPlainTextEdit::showEvent(event);
}

void TDBMemo::keyPressEvent(QKeyEvent* event) {
    const bool newLine = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    keyPress(event, (changesText(event) || newLine) && !isReadOnly(), upper_,
             [this](QKeyEvent* e) { QPlainTextEdit::keyPressEvent(e); });
}

void TDBMemo::focusOutEvent(QFocusEvent* event) {
    updateRecord();
    QPlainTextEdit::focusOutEvent(event);
}

// The column holds the lines of a memo with CR LF between them, as a memo of the classic
// runtime stores them; the editor itself works with bare line feeds.
std::string TDBMemo::controlText() const {
    QString text = this->text();
    text.replace('\n', "\r\n");
    return text.toStdString();
}

void TDBMemo::setControlText(const std::string& text) {
    const QString value = QString::fromStdString(text).replace("\r\n", "\n");
    if (!isVisible()) {
        pending_ = upper_ ? upperAscii(value) : value;
        hasPending_ = true;
        return;
    }
    setText(value);
}

// ---- TDBText ----

TDBText::TDBText(QWidget* parent) : QLabel(parent) {}

std::string TDBText::controlText() const { return QLabel::text().toStdString(); }

void TDBText::setControlText(const std::string& text) { setText(QString::fromStdString(text)); }

} // namespace dialogs
