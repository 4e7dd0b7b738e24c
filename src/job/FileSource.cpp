// "Select File Source": a radio group with two file paths and an OK button.
#include "job/FileSource.h"

#include "common/Ui.h"

#include <QButtonGroup>
#include <QGroupBox>
#include <QPushButton>
#include <QRadioButton>

TdlgFileSource::TdlgFileSource(QWidget* parent) : QDialog(parent) {
    setObjectName("dlgFileSource");
    setWindowTitle("Select File Source");
    resize(420, 150);
    rdgSource = new QGroupBox("Copy the file from", this);
    rdgSource->setObjectName("rdgSource");
    rdgSource->setGeometry(8, 8, 404, 92);
    FButtons = new QButtonGroup(rdgSource);
    for (int i = 0; i < 2; ++i) {
        auto* item = new QRadioButton(rdgSource);
        item->setGeometry(12, 24 + i * 30, 380, 22);
        FButtons->addButton(item, i);
        FItems[static_cast<std::size_t>(i)] = item;
    }
    btnOK = new QPushButton("OK", this);
    btnOK->setObjectName("btnOK");
    btnOK->setGeometry(336, 112, 76, 28);
    btnOK->setDefault(true);
    connect(btnOK, &QPushButton::clicked, this,
            [this] { done(static_cast<int>(common::ModalResult::Ok)); });
}

void TdlgFileSource::SetItems(const std::string& Source, const std::string& Previous) {
    FItems[0]->setText(QString::fromStdString(Source));
    FItems[1]->setText(QString::fromStdString(Previous));
}

QString TdlgFileSource::Item(int Index) const {
    return Index >= 0 && Index < 2 ? FItems[static_cast<std::size_t>(Index)]->text() : QString();
}

int TdlgFileSource::ItemIndex() const { return FButtons->checkedId(); }

void TdlgFileSource::SetItemIndex(int Index) {
    if (Index >= 0 && Index < 2)
        FItems[static_cast<std::size_t>(Index)]->setChecked(true);
}
