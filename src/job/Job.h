#pragma once
// The job wizard "Master Program Wizard": one job (a pallet and job number) built from a template,
// its lines composed from syntax masks and values. The logic is split by concern:
//   JobComposer.cpp  script line composer (masks, pictures, the final pass)
//   JobFiles.cpp     backup copy and program number of a chosen file
//   JobDefaults.cpp  global and local default syntaxes and values
//   JobBuild.cpp      job rows from the template rows
//   JobUpdate.cpp     the template's journal replayed on the job's lines
//   JobOpen.cpp       opening a job: template tree, new or existing job, status of the nodes
//   JobControls.cpp   the controls, by tab and panel, and their signals
//   JobForm.cpp       the form's own events and the job keys
//   JobNavigation.cpp the selection handler
//   JobSyntax.cpp     syntaxes, value boxes, joined lines, running numbers, line status
//   JobValueEntry.cpp clicks and keystrokes that reach the row
//   JobValidation.cpp checks of values
//   JobComment.cpp    section comments as program lines
//   FileSource.cpp    the choice between two sources of an included file
//   JobProgram.cpp    program number, line numbers, baskets and the queue
//   JobSkip.cpp       skipped workpieces and lines, copy and paste of values
//   JobWrite.cpp      the master program: check walk, file, report; the previous job's files
#include "boundary/Structs.h"
#include "dialogs/DBControls.h"
#include "template/TreeNodes.h"

#include <QDialog>

#include <array>
#include <cstdint>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

class QAction;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QMenu;
class QPushButton;
class QRadioButton;
class QSpinBox;
class QStatusBar;
class QTabWidget;

// A job operation that cannot go on: a number out of range, a mask that cannot be composed, a file
// that cannot be read. The message names the value, mask or file.
class JobError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

namespace job {
class JobLineReplay;
class ProgramFile;
} // namespace job

// An entry of the form's workpiece list: first piece, line, range start, range end.
struct TWorkpieceRange {
    int FirstPiece = 0;
    int Line = 0;
    int RangeStart = 0;
    int RangeEnd = 0;
};

class TdlgJob : public QDialog {
    Q_OBJECT

public:
    explicit TdlgJob(QWidget* parent = nullptr);
    ~TdlgJob() override;

    // ---- Open and load (JobOpen.cpp) ----
    // Takes a copy of the record, loads the template's tree and the job; true when the form is
    // ready to be shown. Messages for an empty template or a corrupt job end it with false.
    bool OpenJob(TJobWizardInfo Info);
    // Filters the job tables, builds a new job or brings an outdated one up to date, restores
    // every node's status and selects the first line's pages. Needs the three job keys.
    bool LoadJob();
    // The node of an absolute index, walking on from where the last search stood, so that a walk
    // over the lines in order costs one step per line. nullptr when there is none.
    QTreeWidgetItem* FindNodeByIndex(int Index, bool Restart);

    // ---- Form events (JobForm.cpp) ----
    void FormCreate();
    void FormActivate(); // once per showing
    void FormResize();
    void FormClose();
    void FormDestroy();

    // ---- Job keys ----
    const TJobWizardInfo& WizardInfo() const { return FInfo; }
    std::int16_t PalletNumber() const { return FPalletNumber; }
    std::int16_t JobNumber() const { return FJobNumber; }
    std::int16_t TemplateId() const { return FTemplateId; }
    // The steps of the open path, for tests of the build and update alone:
    // the record's copy (OpenJob's first step),
    void SetWizardInfo(const TJobWizardInfo& Info) { FInfo = Info; }
    // FPalletNumber, FJobNumber and FTemplateId from the record (a pallet text that is no
    // integer, or a number outside -32768..32767, raises a JobError naming the value),
    void TakeJobKeys();
    // the data-aware controls bound to the job's rows and the template's name, once,
    void BindDataControls();
    // and the filters of tableJobs on the job and tableTemplateData on the template.
    void FilterJobTables();

    // ---- Navigation (JobNavigation.cpp) ----
    // The selection handler: fills the pages for the node. Sender is the tree for a selection
    // change, nullptr when a routine calls it (the status message then stays).
    void tvwTemplateChange(QObject* Sender, QTreeWidgetItem* Node);
    // Selects a node from code: the change handler runs directly, with the tree as sender, so an
    // error in it reaches the caller. No handler runs when the selection stays.
    void SelectNode(QTreeWidgetItem* Node);
    QTreeWidgetItem* SelectedNode() const;
    // Makes a tab of pageScript or pageValues active without firing its change handler.
    void SetActivePage(QTabWidget* Pages, QWidget* Page);
    // Checks the selected line's values, marks it finished and selects the next line. Sender is
    // the button, another routine, or nullptr from the write walk; with btnSkip down, or from a
    // sender named btnSkip or btnSkipDown, it advances without a check or an image.
    void btnNextClick(QObject* Sender);
    // Switches a sub-item in or out of its command's line.
    void tvwTemplateDblClick();
    // Fills the script view when its tab becomes active.
    void pageScriptChange();
    // Moves the tree selection to the line clicked in the script view.
    void lstScriptClick();
    void btnExpandClick();
    // Sender nullptr (from the write walk) keeps the status message.
    void btnCollapseClick(QObject* Sender);

    // ---- Skip, copy and paste (JobSkip.cpp) ----
    // Marks the selected line or section skipped (btnSkip down) or open again (up), with the
    // workpiece's "SEP" line of the Header when the template has automatic points, and advances.
    // Sender goes on to Next.
    void btnSkipClick(QObject* Sender);
    // Skips the selected section and every one after it but the last.
    void btnSkipDownClick();
    // Does nothing but note the first node: the button is kept as it stands.
    void btnUnskipClick();
    void btnCopyClick();
    // The copied line's values onto the selected line; a copied section's lines onto the
    // selected section's, then the next section is selected.
    void btnPasteClick();
    // Code, Syntax_Item, Script_Line and the six values of the source's row into the target's;
    // Image, State and Path of the target stay.
    void PasteLineValues(QTreeWidgetItem* Source, QTreeWidgetItem* Target);

    // ---- Program number and line numbers (JobProgram.cpp) ----
    void spnProgramNumberChange();
    void btnProgramNumberClick();
    void chkLineNumbersClick();
    void spinIncrementChange();
    void btnLineNumbersClick();
    void RefreshProgramSample();

    // ---- Machines, baskets and the queue (JobProgram.cpp) ----
    // Lists the programs of the machine chosen in cmbMachines in lstPrograms, read over the
    // machine's FOCAS link. When no connection comes about, "Unable to connect to HOST.PORT"
    // follows the link's own boxes.
    void cmbMachinesChange();
    void cmbAuxPalletChange();
    // The master program and file list for the host: from JobQueue when unattended, otherwise
    // what the form knows of the job. A missing queue row leaves the string as it was.
    void QueueCommandFile(bool Unattended, std::string& CommandFile);
    void QueueFileList(bool Unattended, std::string& FileList);

    // ---- Syntax item handlers (JobSyntax.cpp) ----
    // Moves tableJobs to the row of the node (the selected one when Node is nullptr).
    void SyncJobRow(QTreeWidgetItem* Node);
    void LocateSyntaxRow(const std::string& Code, int Level, const std::string& ParentCode);
    void ShowItemValues();
    void ShowItemSelection();
    void ClearSyntaxList();
    void FillValueField(QLabel* Label, dialogs::TDBEdit* Edit, bool LoadDefault);
    void ComposeCommandLine();
    void ComposeJoinedLine();
    bool IsLineContinued();
    void NumberSequenceValue();
    void RefreshScriptListLine();
    std::string ScriptViewLine();
    void SetNodeImage(QTreeWidgetItem* Node, int Image, bool Force);
    std::string WorkpieceRangeText(QTreeWidgetItem* Node);
    void UpdateCopyPasteButtons();

    // ---- Syntax and value entry (JobValueEntry.cpp) ----
    // Sender is the list for a real click, nullptr when a routine calls it.
    void lstSyntaxClick(QObject* Sender);
    // Sender is the box whose text changed, nullptr when a routine calls it.
    void dbeValueChange(QObject* Sender);
    // A right press (At in the list's viewport) chooses the row under the mouse, before the
    // syntax menu opens, and applies it; other buttons do nothing.
    void lstSyntaxMouseDown(Qt::MouseButton Button, const QPoint& At);
    // The box (or chkOption) entered becomes the box of mnuDefaultValue.
    void dbeValueEnter(QObject* Sender);
    // Any press focuses the box, so that a right click makes it the menu's box.
    void dbeValueMouseDown(QObject* Sender);
    // A blank typed in the first box stops composing until another key or leaving the box.
    void dbeValue1KeyPress(QChar Key);
    void dbeValue1Exit();
    // The section comment: its wrapped text becomes the line unless it ends in a blank.
    void dbmCommentChange();
    // "(" + the text with ASCII letters upper-cased + ")"; "" for an empty text. Line breaks stay.
    static std::string WrapComment(const std::string& Text);
    // Browses for a file: its program number goes into the value of the button's box and the
    // file into Path.
    void btnFilenameClick();
    // Sender is the control clicked, nullptr when a routine calls it.
    void chkOptionClick(QObject* Sender);
    void radItemClick(QObject* Sender);
    void txtItemClick(QObject* Sender);

    // ---- Default markers (JobDefaults.cpp) ----
    void UpdateDefaultMark(dialogs::TDBEdit* Edit, QLabel* Label);
    void SetDefaultSyntaxMark(int SyntaxNumber, const std::string& Marker);
    // Stores the box's text as the value type's global default, unless it names a browsed file
    // that is not in the default input directory.
    void SetGlobalDefaultValue(dialogs::TDBEdit* Edit, QLabel* Label, int ValueId);
    // Writes the global default into value ValueNumber of the row; boxes 2 to 6 then are emptied.
    void LoadGlobalDefaultValue(int ValueNumber);
    // Store (or with Clear remove) the local default of the menu's box, or of the command's
    // syntax: the list's item index.
    void SetLocalDefaultValue(bool Clear);
    void SetLocalDefaultSyntax(bool Clear);
    // Owner drawing: true when row Index of lstSyntax is a default syntax (drawn bold); such a
    // row also makes txtValues show the command's Code.
    bool lstSyntaxDrawItem(int Index);
    // Enables the local items of mnuDefaultValue by the present TemplateDefaults filter.
    void mnuDefaultValuePopup();
    // Items of mnuDefaultValue (its tag names the box) and of mnuDefaultSyntax. The Cancel items
    // have no handler.
    void itemSetGlobalClick();
    void itemLoadGlobalClick();
    void itemSetLocalClick();
    void itemLoadLocalClick();
    void itemClearLocalClick();
    void itemSetGlobalDefSynClick();
    void itemSetLocalDefSynClick();
    void itemClearLocalDefSynClick();

    // ---- Validation (JobValidation.cpp) ----
    // Beeps, shows the fixed status text and sets FStopFlag; the identifier is not shown.
    void ReportInputError(const std::string& Identifier);
    // Checks the box's text against the value type (ids above 9999 pass). A file value with a
    // checked chkOption is copied into the local directory and its name added to FFileList; with
    // CheckOnly only the source's existence is answered and nothing changes.
    bool ValidateValue(dialogs::TDBEdit* Edit, int ValueType, bool CheckOnly);

    // ---- The master program (JobWrite.cpp) ----
    // Checks every line as Next does, then asks for the file name and writes the program into
    // the job's local directory; the host gets the program and the included files.
    void btnWriteClick();
    // Deletes, keeps or asks about the files of the previous job in the pallet directory;
    // false when the operator cancels.
    bool ClearPalletFiles();
    // The file from the job's rows as they stand: the opening lines, the rows that are neither
    // skipped nor joined to the row before, the closing lines. File errors raise a JobError
    // naming the file; no partial file is left.
    void WriteMasterProgram(const std::string& FileName);
    // "N<number> " when line numbers are on, the number then growing by Increment; "" when off.
    std::string WriteLinePrefix(int& LineNumber, int Increment);
    // Opens the master program in the text editor; opens the file search in the current
    // directory.
    void btnEditClick();
    void btnFindClick();

    // ---- Top panel ----
    void btnExitClick();
    // Every way the form closes (Exit, Esc, the close box, a modal result) passes here.
    void done(int result) override;

    // ---- Status bar ----
    // Repaints the status bar's owner-drawn panel from FStatusMessage and FProgress.
    void RepaintStatusBar();

    // ---- Composer ----
    // The line of the current Syntax row with the six value boxes; stored in Script_Line of the
    // current Jobs row with SaveIt. "Program Error!" while the program is written.
    std::string ComposeScriptLine(bool SaveIt);
    // The Syntax column of the current Syntax row as the line; stored with SaveIt.
    std::string ComposeSyntaxLine(bool SaveIt);
    // The composer on explicit row fields: what ComposeScriptLine does after reading the row.
    static std::string ComposeMaskLine(const std::string& Mask, int Type, const std::string& Syntax,
                                       const std::array<std::string, 6>& Values);
    // One case of the compose command: mask, type, syntax text and up to six values, separated by
    // tabs (missing fields are empty). A type that is no integer or more than nine fields raise a
    // JobError.
    static std::string ComposeCaseLine(const std::string& Case);
    // Text for specifier Index (1..6) of the working mask, which is rewritten to hold "%s" there.
    static std::string FormatValueForMask(std::string& Mask, int Index, const std::string& Value);
    // Number of "%x" pairs; 0 for a mask ending in "%", and with Strict for "%-*.*s" or "%p".
    // An empty mask raises a JobError.
    static int CountFormatSpecs(const std::string& Mask, bool Strict);

    // ---- Files chosen as values ----
    // Copies the file to the same name with "~" behind the extension's dot; returns that name.
    static std::string BackupFileName(const std::string& FileName);
    // Digits of the program number on the first "O" or ";" line (bare line feeds are repaired
    // first, keeping a "~" copy). File errors raise a JobError naming the file.
    static std::string ReadProgramNumber(const std::string& FileName);

    // ---- Defaults ----
    // Syntax numbers count from 1; 0 means none.
    int GetDefaultSyntax(const std::string& Code);
    int GetLocalDefaultSyntax(const std::string& Code);
    int GetGlobalDefaultSyntax(const std::string& Code);
    void GetDefaultValue(int ValueId, std::string& Value);
    void GetGlobalDefaultValue(int ValueId, std::string& Value);

    // ---- Build ----
    // Replaces the job's rows by one row per template row. Runs in one transaction: a failure
    // leaves the job's rows as they were.
    void BuildJobFromTemplate();
    void AppendJobLine(int LineNumber, const std::string& Code, bool Preset, int NodeLevel);
    // Replaces the first "[Pn]" token by the pallet number with n digits (3 when n is no digit).
    void ExpandProgramToken(std::string& Value) const;

    // ---- Update ----
    // Replays the journal rows newer than the job's version on the job's lines, then writes the
    // version of the last row applied into line 0. One transaction: a failure (an unknown line, a
    // "MOV" whose target is no number) leaves the job as it was.
    void UpdateJobFromJournal(int JobVersion);
    // Writes one column of line 0; the value goes into the statement as it stands.
    void SetJobHeaderValue(const std::string& Column, const std::string& Value);
    // Opens a gap at the line and adds a line with the default syntax and values there.
    void InsertJobLine(int LineNumber, const std::string& Code, int NodeLevel);
    // Deletes Count lines from the line on, closing the gap; stops after the last line.
    void DeleteJobLines(int LineNumber, int Count);
    // Moves Count lines from FromLine so that the first stands at ToLine; the lines keep their
    // columns.
    void MoveJobLines(int FromLine, int ToLine, int Count);

    // ---- Controls, by where they stand ----
    // Top panel.
    QWidget* pnlTop;
    QLabel* txtTemplateName; // "Template Name:"
    dialogs::TDBText* dbtTemplateName;
    QPushButton* btnFind;
    QPushButton* btnWrite;
    QPushButton* btnEdit;
    QPushButton* btnExit;
    QLabel* txtTemplate; // heading of the left half
    QLabel* txtValues;   // heading of the right half
    QTabWidget* pageScript;
    // tabProgram "Program".
    QWidget* tabProgram;
    QSpinBox* spnProgramNumber;
    QPushButton* btnProgramNumber;
    QComboBox* cmbMachines;
    QListWidget* lstPrograms;
    // tabOptions "Options".
    QWidget* tabOptions;
    QCheckBox* chkLineNumbers;
    QSpinBox* spinIncrement;
    QListWidget* lstSample;
    QPushButton* btnLineNumbers;
    QGroupBox* grpAuxLoad;
    QComboBox* cmbAuxPallet;
    QLineEdit* editBasketStatus;
    // tabTree "Tree View".
    QWidget* tabTree;
    tree::TTreeView* tvwTemplate; // the job's tree, one node per Jobs row
    QPushButton* btnExpand;
    QPushButton* btnCollapse;
    QPushButton* btnCopy;
    QPushButton* btnPaste;
    QPushButton* btnSkip; // a speed button: stays down on a skipped line
    QPushButton* btnSkipDown;
    QPushButton* btnUnskip; // a speed button of btnSkip's group
    QPushButton* btnNext;
    // tabScript "Script View".
    QWidget* tabScript;
    QListWidget* lstScript;
    // grpSyntax "Item Syntax Options".
    QGroupBox* grpSyntax;
    QListWidget* lstSyntax;
    std::array<QLabel*, 5> textDefSyn; // textDefSyn0 .. textDefSyn4
    // pageValues.
    QTabWidget* pageValues;
    QWidget* tabValues;
    QWidget* tabDescription;
    QLabel* txtSyntaxDesc;
    QWidget* pnlSection;
    QLabel* txtComment;
    dialogs::TDBMemo* dbmComment;
    QWidget* pnlEditBoxes;
    QLabel* txtValue1;
    QLabel* txtValue2;
    QLabel* txtValue3;
    QLabel* txtValue4;
    QLabel* txtValue5;
    QLabel* txtValue6;
    dialogs::TDBEdit* dbeValue1;
    dialogs::TDBEdit* dbeValue2;
    dialogs::TDBEdit* dbeValue3;
    dialogs::TDBEdit* dbeValue4;
    dialogs::TDBEdit* dbeValue5;
    dialogs::TDBEdit* dbeValue6;
    QLabel* textDefault1;
    QLabel* textDefault2;
    QLabel* textDefault3;
    QLabel* textDefault4;
    QLabel* textDefault5;
    QLabel* textDefault6;
    QCheckBox* chkOption;
    QPushButton* btnFilename;
    QWidget* pnlRadioButtons;
    QRadioButton* radItem1;
    QRadioButton* radItem2;
    QRadioButton* radItem3;
    QRadioButton* radItem4;
    QRadioButton* radItem5;
    QRadioButton* radItem6;
    QLabel* txtItem1;
    QLabel* txtItem2;
    QLabel* txtItem3;
    QLabel* txtItem4;
    QLabel* txtItem5;
    QLabel* txtItem6;
    // grpResult "Composed Line Item".
    QGroupBox* grpResult;
    dialogs::TDBText* dbtScriptLine;
    // Status bar: panels of 160, 140 and 50 pixels, the third drawn by the form.
    QStatusBar* StatusBar;
    std::array<QLabel*, 2> StatusPanels;
    QWidget* StatusDrawPanel;
    // Popup menus of the value boxes and of the syntax list.
    QMenu* mnuDefaultValue;
    QAction* itemSetGlobal;
    QAction* itemLoadGlobal;
    QAction* itemSetLocal;
    QAction* itemLoadLocal;
    QAction* itemClearLocal;
    QAction* itemCancelDefault;
    QMenu* mnuDefaultSyntax;
    QAction* itemSetGlobalDefSyn;
    QAction* itemSetLocalDefSyn;
    QAction* itemClearLocalDefSyn;
    QAction* itemCancelSyntax;

    // The controls of a number 1..6: value box, its label, its marker, radio button, its label.
    dialogs::TDBEdit* ValueEdit(int Number) const;
    QLabel* ValueLabel(int Number) const;
    QLabel* DefaultLabel(int Number) const;
    QRadioButton* RadioItem(int Number) const;
    QLabel* ItemLabel(int Number) const;
    // The tag of a control (its number 1..6), 0 when it has none.
    static int Tag(const QObject* Control);
    static void SetTag(QObject* Control, int Tag);

    // ---- Fields ----
    TJobWizardInfo FInfo;
    std::int16_t FPalletNumber = 0;
    std::int16_t FJobNumber = 0;
    std::int16_t FTemplateId = 0;
    // The fixture's points: FFixtureZ is FPoints.Z, FAdjustedX and FAdjustedY are FPoints.X and
    // FPoints.Y, by workpiece number.
    TPointInfo FPoints;
    std::string FProgramFileName; // Path of line 0: the program last written
    std::string FCurrentCode;     // Code of the selected node; empty on a section
    std::string FParentCode;      // the parent's code on level 2, else empty
    std::string FStatusMessage;   // text of the owner-drawn status panel
    double FProgress = 0;         // percentage shown in that panel
    bool FEventsEnabled = false;  // false: the event handlers of the form do nothing
    bool FWriting = false;        // set while the master program is written
    bool FStopFlag = false;       // a check has failed
    QTreeWidgetItem* FFindCursor = nullptr;
    std::vector<TWorkpieceRange> FWorkpieces; // nothing fills it; kept for its readers
    std::vector<std::string> FSavedValues;    // the six values of the line last shown
    std::array<int, 6> FSavedValueTypes{};    // and their value types
    int FItemWidth = 0;
    int FItemTop = 0;
    std::string FScriptParentCode;
    int FWorkpieceCounter = 0;
    QTreeWidgetItem* FCopiedNode = nullptr;
    QTreeWidgetItem* FUnskipCursor = nullptr;
    std::string FBrowsedFileName;
    int FLastScriptIndex = 0;
    std::string FFileList; // included files joined by "|"

protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // ---- Building the form (JobControls.cpp) ----
    void buildTopPanel();
    void buildProgramTab();
    void buildOptionsTab();
    void buildTreeTab();
    void buildScriptTab();
    void buildSyntaxGroup();
    void buildValuePages();
    void buildResultAndStatus();
    void buildMenus();
    void connectHandlers();
    // The signals of the tree tab, the script view and the syntax and value controls.
    void connectNavigationHandlers(); // JobNavigation.cpp
    void connectEntryHandlers();      // JobValueEntry.cpp
    void connectDefaultMenus();       // JobDefaults.cpp
    void connectSkipHandlers();       // JobSkip.cpp

    // Runs a handler for a signal. An error of a handler that code set off (inside ByCode) is
    // kept and raised again where that code continues; an error of the user's own action is
    // shown, as the event loop's default handler does.
    void Event(const std::function<void()>& Handler);
    // Runs code that changes controls whose signals run handlers; an error in such a handler
    // reaches this caller.
    void ByCode(const std::function<void()>& Code);
    // Runs one operator action (or one selection, or the write's walk) as one store transaction,
    // so that its many reads and posts share one lock; nested calls join the outer one. What
    // was posted stays also when the work ends in an error.
    void InStoreBatch(const std::function<void()>& Work);

    // Puts tableJobs in edit mode, sets Script_Line, posts.
    void StoreScriptLine(const std::string& Line);
    // Runs line changes on the job and writes them back, then `afterWrite`, in one transaction.
    void RunLineChanges(const std::function<void(job::JobLineReplay&)>& changes,
                        const std::function<void()>& afterWrite = {});
    void AppendSectionLine(int LineNumber, const std::string& Code, int NodeLevel, int State);
    // Restores each node's image and state from the job's rows; false on a row without a node.
    bool RestoreTree();
    // The write: the check walk over every line (true when it ends without a bad value), the
    // file from the rows, the report.
    bool CheckAllLines();
    void SelectFirstRoot();
    void WriteProgramLines(job::ProgramFile& File);
    void ReportProgramToHost();

    bool FControlsBound = false;
    bool FActivateArmed = true; // FormActivate runs at the next activation
    bool FPanelsFill = true;    // the three value panels fill tabValues
    int FCodeDepth = 0;         // > 0 while ByCode runs
    int FBatchDepth = 0;        // > 0 while InStoreBatch runs
    std::exception_ptr FPendingError;
};
