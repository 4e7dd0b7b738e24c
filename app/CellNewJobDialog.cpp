#include "CellNewJobDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>

#include <cstdint>
#include <limits>

namespace app {

CellNewJobDialog::CellNewJobDialog(const std::vector<TemplateEntry>& templates,
                                   int selectedTemplate, QWidget* parent)
    : QDialog(parent) {
    setObjectName("dlgCellNewJob");
    setWindowTitle("New Job");
    auto* form = new QFormLayout(this);
    spnPallet = new QSpinBox(this);
    spnPallet->setObjectName("spnPallet");
    // As a host, quorvel numbers pallets and jobs from 1.
    spnPallet->setRange(1, std::numeric_limits<std::int16_t>::max());
    spnJob = new QSpinBox(this);
    spnJob->setObjectName("spnJob");
    spnJob->setRange(1, std::numeric_limits<std::int16_t>::max());
    cmbTemplate = new QComboBox(this);
    cmbTemplate->setObjectName("cmbTemplate");
    for (const auto& entry : templates) {
        if (entry.id == 0)
            continue;
        cmbTemplate->addItem(QString::fromStdString(entry.name), entry.id);
        if (entry.id == selectedTemplate)
            cmbTemplate->setCurrentIndex(cmbTemplate->count() - 1);
    }
    auto addRow = [&](const char* name, const QString& text, QWidget* field) {
        auto* label = new QLabel(text, this);
        label->setObjectName(name);
        label->setBuddy(field);
        form->addRow(label, field);
    };
    addRow("lblPallet", "&Pallet:", spnPallet);
    addRow("lblJob", "&Job:", spnJob);
    addRow("lblTemplate", "&Template:", cmbTemplate);
    buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->setObjectName("btnsNewJob");
    buttons->button(QDialogButtonBox::Ok)->setObjectName("btnOK");
    buttons->button(QDialogButtonBox::Cancel)->setObjectName("btnCancel");
    buttons->button(QDialogButtonBox::Ok)->setEnabled(cmbTemplate->count() > 0);
    form->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

int CellNewJobDialog::pallet() const { return spnPallet->value(); }

int CellNewJobDialog::job() const { return spnJob->value(); }

int CellNewJobDialog::templateId() const {
    return cmbTemplate->count() > 0 ? cmbTemplate->currentData().toInt() : 0;
}

void CellNewJobDialog::fixJob(int pallet, int job) {
    spnPallet->setValue(pallet);
    spnJob->setValue(job);
    spnPallet->setEnabled(false);
    spnJob->setEnabled(false);
    cmbTemplate->setFocus();
}

} // namespace app
