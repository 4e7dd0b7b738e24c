#include "job/SyntaxItemDelegate.h"

namespace job {

SyntaxItemDelegate::SyntaxItemDelegate(std::function<bool(int)> isDefaultRow, QObject* parent)
    : QStyledItemDelegate(parent), isDefaultRow_(std::move(isDefaultRow)) {}

void SyntaxItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const {
    QStyleOptionViewItem row(option);
    if (isDefaultRow_ && isDefaultRow_(index.row())) {
        row.font.setBold(true);
        row.fontMetrics = QFontMetrics(row.font);
    }
    QStyledItemDelegate::paint(painter, row, index);
}

} // namespace job
