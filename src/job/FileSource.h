#pragma once
// "Select File Source": the operator's choice between two files that could be copied as an
// included file, the one in the input directory (item 0) and the one the line used before (item 1).
#include <QDialog>

#include <array>
#include <string>

class QButtonGroup;
class QGroupBox;
class QPushButton;
class QRadioButton;

class TdlgFileSource : public QDialog {
    Q_OBJECT

public:
    explicit TdlgFileSource(QWidget* parent = nullptr);

    // The captions of the two items of rdgSource.
    void SetItems(const std::string& Source, const std::string& Previous);
    QString Item(int Index) const;
    // The selected item of rdgSource, -1 when none is.
    int ItemIndex() const;
    void SetItemIndex(int Index);

    // ---- Controls ----
    QGroupBox* rdgSource;
    QPushButton* btnOK; // modal result OK

private:
    QButtonGroup* FButtons;
    std::array<QRadioButton*, 2> FItems{};
};
