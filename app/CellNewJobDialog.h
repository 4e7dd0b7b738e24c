#pragma once
// The window's question for a new job: pallet, job and template.
#include "ModuleExports.h"

#include <QDialog>

#include <vector>

class QComboBox;
class QDialogButtonBox;
class QSpinBox;

namespace app {

class CellNewJobDialog : public QDialog {
    Q_OBJECT
public:
    // `templates` without the "(New)" entry; `selectedTemplate` is chosen when listed.
    CellNewJobDialog(const std::vector<TemplateEntry>& templates, int selectedTemplate,
                     QWidget* parent = nullptr);

    int pallet() const;
    int job() const;
    int templateId() const; // 0 when the list is empty
    // Fixes pallet and job (a listed job without a known template is opened so).
    void fixJob(int pallet, int job);

    QSpinBox* spnPallet;
    QSpinBox* spnJob;
    QComboBox* cmbTemplate;
    QDialogButtonBox* buttons;
};

} // namespace app
