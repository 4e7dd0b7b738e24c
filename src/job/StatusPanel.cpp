#include "job/StatusPanel.h"

#include <QPainter>
#include <QStyleOptionProgressBar>

#include <algorithm>
#include <cmath>

namespace job {

StatusPanel::StatusPanel(QWidget* parent) : QWidget(parent) {}

QSize StatusPanel::sizeHint() const { return {50, fontMetrics().height() + 4}; }

void StatusPanel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect area = rect().adjusted(1, 1, -1, -1);
    const double percent = progress ? std::clamp(progress(), 0.0, 100.0) : 0.0;
    const QString message = text ? QString::fromStdString(text()) : QString();
    if (percent > 0) {
        QStyleOptionProgressBar bar;
        bar.initFrom(this);
        bar.rect = area;
        bar.minimum = 0;
        bar.maximum = 100;
        bar.progress = static_cast<int>(std::lround(percent));
        bar.text = QString("%1%").arg(bar.progress);
        bar.textVisible = true;
        bar.textAlignment = Qt::AlignCenter;
        bar.state |= QStyle::State_Horizontal;
        style()->drawControl(QStyle::CE_ProgressBar, &bar, &painter, this);
        return;
    }
    painter.drawText(area.adjusted(3, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft, message);
}

} // namespace job
