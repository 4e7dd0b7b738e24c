#pragma once
// "Delete Template": lists the templates and removes the chosen one with its rows, defaults and
// journal, unless a job of the cell (JobList of the shared database) uses it. The dialog stays open
// for further deletions until btnExit.
#include "common/Ui.h"

#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include <string>

class TdlgDeleteTemplate : public QDialog {
    Q_OBJECT
public:
    explicit TdlgDeleteTemplate(QWidget* parent = nullptr);

    // ---- Controls ----
    QLabel* txtFixtureType;
    QListWidget* lstTemplateName; // the template id of an entry is its Qt::UserRole data
    QLabel* pnlMessage;           // how many jobs use the selected template; empty for none
    QPushButton* btnDelete;       // disabled at start
    QPushButton* btnExit;         // modal result OK

    // ---- Events ----
    void FormShow();
    void lstTemplateNameClick();
    // Asks, then deletes the selected template in one transaction. Throws std::runtime_error when
    // no entry is selected (the list emptied by the last deletion).
    void btnDeleteClick();

    common::ModalResult ModalResult() const { return FModalResult; }

protected:
    void showEvent(QShowEvent* event) override;
    void reject() override; // Esc and the close box press btnExit

private:
    void LoadList();
    void UpdateButton();
    // "This template is being used by ..." for a template with jobs, else empty.
    static std::string UseText(int templateId);

    common::ModalResult FModalResult = common::ModalResult::None;
};

// The export's part: creates the form, shows it modally and frees it.
void ShowDeleteTemplateDialog();
