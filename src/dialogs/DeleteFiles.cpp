#include "dialogs/DeleteFiles.h"

#include "common/Ui.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGroupBox>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <filesystem>

TdlgDeleteFiles::TdlgDeleteFiles(QWidget* parent) : QDialog(parent) {
    setObjectName("dlgDeleteFiles");
    setWindowTitle("Delete Previous Files");
    setModal(true);
    setWindowFlags(windowFlags() & ~Qt::WindowContextHelpButtonHint);

    rdgOption = new QGroupBox(this);
    rdgOption->setObjectName("rdgOption");
    rdgOption->setGeometry(8, 8, 324, 96);
    rdgOptionItems = new QButtonGroup(rdgOption);
    auto* items = new QVBoxLayout(rdgOption);
    const char* captions[] = {"Delete All of the Job Files", "Retain All of the Job Files",
                              "Prompt on Each File"};
    for (int i = 0; i < 3; ++i) {
        auto* item = new QRadioButton(captions[i], rdgOption);
        item->setObjectName(QString("rdgOptionItem%1").arg(i));
        rdgOptionItems->addButton(item, i);
        items->addWidget(item);
    }
    rdgOptionItems->button(DeleteAll)->setChecked(true);

    chkOutputDir = new QCheckBox("Apply File Deletions to the Output Directory", this);
    chkOutputDir->setObjectName("chkOutputDir");
    chkOutputDir->setGeometry(12, 112, 320, 20);

    btnOK = new QPushButton("OK", this);
    btnOK->setObjectName("btnOK");
    btnOK->setGeometry(170, 142, 75, 25);
    btnOK->setDefault(true);
    btnCancel = new QPushButton("Cancel", this);
    btnCancel->setObjectName("btnCancel");
    btnCancel->setGeometry(254, 142, 75, 25);
    btnCancel->setAutoDefault(false);
    setProperty("defaultModalResult", static_cast<int>(common::ModalResult::Ok));
    setFixedSize(340, 176);

    connect(btnOK, &QPushButton::clicked, this,
            [this] { done(static_cast<int>(common::ModalResult::Ok)); });
    connect(btnCancel, &QPushButton::clicked, this,
            [this] { done(static_cast<int>(common::ModalResult::Cancel)); });
    connect(rdgOptionItems, &QButtonGroup::idClicked, this, [this] { rdgOptionClick(); });
}

int TdlgDeleteFiles::ItemIndex() const { return rdgOptionItems->checkedId(); }

void TdlgDeleteFiles::SetItemIndex(int Index) {
    if (QAbstractButton* item = rdgOptionItems->button(Index))
        item->setChecked(true);
}

void TdlgDeleteFiles::FormActivate() { rdgOptionClick(); }

void TdlgDeleteFiles::rdgOptionClick() {
    std::error_code ec;
    const bool usable = ItemIndex() != RetainAll && !FOutputDirectory.empty() &&
                        std::filesystem::is_directory(FOutputDirectory, ec);
    chkOutputDir->setEnabled(usable);
    if (!usable)
        chkOutputDir->setChecked(false);
}

void TdlgDeleteFiles::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    FormActivate();
}

void TdlgDeleteFiles::reject() { done(static_cast<int>(common::ModalResult::Cancel)); }
