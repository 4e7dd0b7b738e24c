#pragma once
// Owner drawing of the syntax list: a row that the form calls a default syntax is drawn bold.
#include <QStyledItemDelegate>

#include <functional>

namespace job {

class SyntaxItemDelegate : public QStyledItemDelegate {
public:
    // `isDefaultRow` answers for a row index at each drawing of that row.
    SyntaxItemDelegate(std::function<bool(int)> isDefaultRow, QObject* parent);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

private:
    std::function<bool(int)> isDefaultRow_;
};

} // namespace job
