#include "template/DBGrid.h"

#include "common/Services.h"
#include "store/Table.h"

#include <QHeaderView>
#include <QKeyEvent>

TDBGrid::TDBGrid(QWidget* parent) : QTableWidget(parent) {
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setDragEnabled(true);
    setDragDropMode(QAbstractItemView::DragOnly);
    setDefaultDropAction(Qt::CopyAction);
    verticalHeader()->setVisible(false);
    horizontalHeader()->setStretchLastSection(true);
    connect(this, &QTableWidget::currentCellChanged, this,
            [this](int row, int, int, int) { currentRowChanged(row); });
}

TDBGrid::~TDBGrid() {
    if (source_)
        source_->removeLink(this);
}

void TDBGrid::setColumns(std::vector<std::string> columns, const QStringList& captions) {
    columns_ = std::move(columns);
    setColumnCount(static_cast<int>(columns_.size()));
    QStringList labels;
    for (std::size_t c = 0; c < columns_.size(); ++c)
        labels << (c < static_cast<std::size_t>(captions.size())
                       ? captions[static_cast<qsizetype>(c)]
                       : QString::fromStdString(columns_[c]));
    setHorizontalHeaderLabels(labels);
}

void TDBGrid::setDataSource(store::DataSource* source) {
    if (source_ == source)
        return;
    if (source_)
        source_->removeLink(this);
    source_ = source;
    if (source_)
        source_->addLink(this);
    reload();
}

store::Table* TDBGrid::table() const {
    return source_ ? dynamic_cast<store::Table*>(source_->dataSet()) : nullptr;
}

void TDBGrid::reload() {
    store::Table* t = table();
    syncing_ = true;
    setRowCount(0);
    if (t && t->active() && !columns_.empty()) {
        const store::Bookmark mark = t->getBookmark();
        try {
            for (t->first(); !t->eof(); t->next()) {
                const int row = rowCount();
                insertRow(row);
                for (std::size_t c = 0; c < columns_.size(); ++c)
                    setItem(row, static_cast<int>(c),
                            new QTableWidgetItem(
                                QString::fromStdString(t->fieldByName(columns_[c]).asString())));
            }
            if (mark.valid)
                t->gotoBookmark(mark);
        } catch (...) {
            syncing_ = false;
            throw;
        }
    }
    syncing_ = false;
    dataChanged();
}

void TDBGrid::dataChanged() {
    store::Table* t = table();
    if (syncing_ || !t || !t->active() || columns_.empty())
        return;
    const QString key = t->hasRow()
                            ? QString::fromStdString(t->fieldByName(columns_.front()).asString())
                            : QString();
    for (int row = 0; row < rowCount(); ++row) {
        if (item(row, 0) && item(row, 0)->text() == key) {
            syncing_ = true;
            setCurrentCell(row, currentColumn() < 0 ? 0 : currentColumn());
            syncing_ = false;
            return;
        }
    }
}

void TDBGrid::currentRowChanged(int row) {
    store::Table* t = table();
    if (syncing_ || !t || !t->active() || row < 0 || !item(row, 0))
        return;
    // Reached from the view's signal: a store error is reported, never thrown through Qt.
    syncing_ = true;
    try {
        t->findKey({item(row, 0)->text().toStdString()});
    } catch (const std::exception& e) {
        syncing_ = false;
        common::ui().error(e.what());
        return;
    }
    syncing_ = false;
}

void TDBGrid::keyPressEvent(QKeyEvent* event) {
    const QString text = event->text();
    if (!text.isEmpty() && keyPress)
        keyPress(text.at(0));
    // Characters go to the search only; Enter, Esc and the navigation keys keep their meaning.
    if (!text.isEmpty() && text.at(0).isPrint())
        return;
    QTableWidget::keyPressEvent(event);
}

void TDBGrid::startDrag(Qt::DropActions) { QTableWidget::startDrag(Qt::CopyAction); }
