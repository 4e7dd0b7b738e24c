#pragma once
// The template editor "Fixture Template Definition": one instance for the life of the library. It
// holds the current-template state (FTemplateID and the filter of tableTemplateData), loads a
// template's rows into a tree view (its own, or the job wizard's), edits the tree, writes a
// journal row for every structural edit at once, and writes the rows back at OK.
#include "common/Ui.h"
#include "dialogs/DBControls.h"
#include "template/CommandSetup.h"
#include "template/DBGrid.h"
#include "template/TreeNodes.h"

#include <QDialog>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class TdlgTemplate : public QDialog {
    Q_OBJECT
public:
    explicit TdlgTemplate(QWidget* parent = nullptr);
    ~TdlgTemplate() override;

    // ---- Controls ----
    dialogs::TDBEdit* dbeTemplateName;
    QPushButton* btnCopyTemplate;
    QLabel* txtPieceCount;
    QLabel* pnlMachineType;
    tree::TTreeView* tvwTemplate;
    TDBGrid* dbgCommands;
    dialogs::TDBMemo* dbmDesc;
    QPushButton* btnAdd;
    QPushButton* btnUp;
    QPushButton* btnDown;
    QPushButton* btnExpand;
    QPushButton* btnCollapse;
    QPushButton* btnCut;
    QPushButton* btnCopy;
    QPushButton* btnPaste;
    QPushButton* btnDelete;
    QPushButton* btnOK;
    QPushButton* btnCancel;
    QFrame* pnlPlugins; // the plug-ins' controls; has an empty horizontal layout for them
    QTimer* Timer;      // 1500 ms, ends an incremental search in dbgCommands

    // ---- Tree and persistence ----
    // Makes the template current: FTemplateID, tableTemplateName on its row, tableTemplateData
    // filtered on it.
    void SelectTemplate(std::int32_t templateId);
    // Fills `tree` (this form's or another's) from the template's rows; clears FModified.
    void LoadTemplateTree(QTreeWidget* tree, std::int32_t templateId);
    // The skeleton of an empty template: Header, "Workpiece 1" ... "Workpiece n", Footer.
    void NewTemplateTree(int workpieces);
    // Prepares an opening of the editor: the piece count, the tree and the working version.
    void LoadTemplate(int workpieces, std::int32_t templateId);
    // Replaces the template's rows by the tree, in one transaction: on failure the rows stay.
    void SaveTemplateTree();

    // ---- Journal and the two ends of an opening ----
    static std::int32_t NextJournalSequence(std::int32_t templateId, std::int32_t version);
    void btnOKClick();
    void btnCancelClick();
    // Whether the form may close; asks to save pending changes.
    bool FormCloseQuery();

    // ---- Form events ----
    void FormActivate();
    void UpdateButtons();
    // Each plug-in sees the selected node's object (given the plug-ins' file filter first), then
    // the buttons are updated.
    void tvwTemplateChange();
    // Each plug-in places its controls on pnlPlugins and opens its databases (at each opening).
    void FormShow();
    // Each plug-in removes its controls and closes its databases, however the opening ends.
    void FormClose();
    // The selected node's image from its object: plug-ins call this after changing the object.
    // Sets neither FModified nor a journal row.
    void RefreshNodeImage();
    void dbeTemplateNameChange();

    // ---- Editing ----
    void btnAddClick();
    void btnUpClick();
    // With a sender (a press of the button) the move is journalled and marks the tree modified;
    // without one (the internal use by add, paste and drop) it only moves.
    void btnDownClick(QObject* Sender);
    void btnCutClick();
    void btnCopyClick();
    void btnPasteClick();
    void btnDeleteClick();
    void btnExpandClick();
    void btnCollapseClick();
    void btnCopyTemplateClick();
    void dbgCommandsDblClick();
    void dbgCommandsKeyPress(QChar key);
    void TimerTimer();
    // Whether a drag from `Source` may drop at `pos` (tree viewport coordinates).
    bool tvwTemplateDragOver(QObject* Source, const QPoint& pos);
    void tvwTemplateDragDrop(QObject* Sender, QObject* Source, const QPoint& pos);

    // ---- The classic modal result ----
    common::ModalResult ModalResult() const { return FModalResult; }
    void SetModalResult(common::ModalResult result) { FModalResult = result; }

    // ---- State, for the exports and the wizard ----
    std::int32_t TemplateID() const { return FTemplateID; }
    std::int32_t Version() const { return FVersion; }
    bool Modified() const { return FModified; }
    int CopiedLevel() const { return FCopiedLevel; }
    const std::vector<CommandSetupPtr>& Clipboard() const { return FClipboard; }
    const std::string& SearchText() const { return FSearchText; }

    // Makes the copy dialog of btnCopyTemplate (the "Copy Template" dialog unless replaced, as
    // tests do); without one the button does nothing.
    std::function<std::unique_ptr<QDialog>(QWidget* owner)> CreateCopyTemplateDialog;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

private:
    void buildControls();
    void connectHandlers();
    // Runs a handler for a signal: an error is shown, as the event loop's default handler does.
    template <typename F> void guarded(F&& handler);
    // A button with a modal result: the result is set first, then the handler runs, then the
    // form closes when the result still stands and the close is allowed.
    void modalButtonClick(common::ModalResult result, void (TdlgTemplate::*handler)());
    void closeModal();
    QTreeWidgetItem* selectedNode() const;
    QTreeWidgetItem* requireSelected() const;
    void WriteJournal(std::int32_t sequence, int item, const std::string& action,
                      const std::string& value, int number);

    std::int32_t FTemplateID = 0;
    std::int32_t FVersion = 0;
    bool FModified = false;
    int FCopiedLevel = -1;
    std::vector<CommandSetupPtr> FClipboard; // shares the objects with the tree's nodes
    std::string FSearchText;
    common::ModalResult FModalResult = common::ModalResult::None;
    bool FClosing = false;
};

// ---- The one instance of the library ----
// Created at library load when a QApplication exists, otherwise at first use: widgets need the
// application object, and the module never makes one of its own. Also installs the store's
// SelectTemplate hook, which works without the form when no QApplication exists.
bool CreateDlgTemplate();
void FreeDlgTemplate();
bool DlgTemplateExists();
// The instance, created if needed; throws std::logic_error when no QApplication exists.
TdlgTemplate& dlgTemplate();
// The store part of SelectTemplate: tableTemplateName on the id's row, tableTemplateData
// filtered on it.
void SelectTemplateRows(std::int32_t templateId);
