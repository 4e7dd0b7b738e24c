#pragma once
// "Copy Template": replaces the rows of the template open in the editor (the current row of
// tableTemplateName) by a copy of another template's rows. Only TemplateData is copied; the
// target's defaults and journal stay. The copy is written at once, whatever the editor does later.
#include "common/Ui.h"

#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include <cstdint>
#include <memory>

class TdlgCopyTemplate : public QDialog {
    Q_OBJECT
public:
    explicit TdlgCopyTemplate(QWidget* parent = nullptr);

    // ---- Controls ----
    QLabel* txtFixtureType;
    QListWidget* lstTemplateName; // the template id of an entry is its Qt::UserRole data
    QPushButton* btnOK;           // modal result OK
    QPushButton* btnCancel;       // modal result Cancel

    // ---- Events ----
    // Takes the current template as the target and lists every other template.
    void FormActivate();
    void lstTemplateNameClick();
    // Replaces the target's rows by the source's, in one transaction: on failure nothing changes.
    void btnOKClick();

    common::ModalResult ModalResult() const { return FModalResult; }
    std::int32_t TargetID() const { return FTargetID; }
    std::int32_t SourceID() const { return FSourceID; }

protected:
    void showEvent(QShowEvent* event) override;
    void reject() override; // Esc and the close box press btnCancel

private:
    void modalButtonClick(common::ModalResult result, void (TdlgCopyTemplate::*handler)());

    std::int32_t FTargetID = 0;
    std::int32_t FSourceID = 0; // stays 0 while the list is empty
    common::ModalResult FModalResult = common::ModalResult::None;
};

// The copy dialog for the editor's btnCopyTemplate.
std::unique_ptr<QDialog> NewCopyTemplateDialog(QWidget* owner);
