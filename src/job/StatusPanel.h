#pragma once
// The owner-drawn panel of the wizard's status bar: the status message, and behind it a progress
// bar with its percentage while a long routine runs.
#include <QWidget>

#include <functional>
#include <string>

namespace job {

class StatusPanel : public QWidget {
public:
    explicit StatusPanel(QWidget* parent = nullptr);
    QSize sizeHint() const override;

    std::function<std::string()> text;
    std::function<double()> progress; // percent; 0 draws no bar

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace job
