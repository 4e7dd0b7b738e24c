#pragma once
// A read-only grid on a keyed table, one row per (filtered) table row, whole-row selection. The
// grid's current row follows the table's cursor, and choosing a row moves the cursor to it by its
// key, whose first column is the grid's first column. Drags of the grid are copies.
#include "store/Dataset.h"

#include <QTableWidget>

#include <functional>
#include <string>
#include <vector>

namespace store {
class Table;
}

class TDBGrid : public QTableWidget, public store::FieldLink {
    Q_OBJECT
public:
    explicit TDBGrid(QWidget* parent = nullptr);
    ~TDBGrid() override;

    // The columns shown, by column name; the first one is the table's key. The header shows
    // `captions` where given, else the column names.
    void setColumns(std::vector<std::string> columns, const QStringList& captions = {});
    void setDataSource(store::DataSource* source);
    store::DataSource* dataSource() const { return source_; }
    bool bound() const { return source_ != nullptr; }
    // Reads all rows of the table again, keeping the cursor where it was.
    void reload();

    // A key that produces a character, as typed (the form's key-press handler).
    std::function<void(QChar key)> keyPress;

    void dataChanged() override;
    void updateRecord() override {}

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void startDrag(Qt::DropActions supportedActions) override;

private:
    store::Table* table() const;
    void currentRowChanged(int row);

    store::DataSource* source_ = nullptr;
    std::vector<std::string> columns_;
    bool syncing_ = false;
};
