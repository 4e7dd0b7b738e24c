#pragma once
// The job wizard "Master Program Wizard": one job (a pallet and job number) built from a template,
// its lines composed from syntax masks and values. The logic is split by concern:
//   JobComposer.cpp  script line composer (masks, pictures, the final pass)
//   JobFiles.cpp     backup copy and program number of a chosen file
//   JobDefaults.cpp  global and local default syntaxes and values
//   JobBuild.cpp     job rows from the template rows
//   JobUpdate.cpp    the template's journal replayed on the job's lines
//   Job.cpp          the form, its controls and the job keys
#include "boundary/Structs.h"
#include "dialogs/DBControls.h"
#include "template/TreeNodes.h"

#include <QDialog>

#include <array>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>

// A job operation that cannot go on: a number out of range, a mask that cannot be composed, a file
// that cannot be read. The message names the value, mask or file.
class JobError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

namespace job {
class JobLineReplay;
}

class TdlgJob : public QDialog {
    Q_OBJECT

public:
    explicit TdlgJob(QWidget* parent = nullptr);
    ~TdlgJob() override;

    // ---- Job keys ----
    // Keeps a copy of the wizard record.
    void SetWizardInfo(const TJobWizardInfo& Info);
    const TJobWizardInfo& WizardInfo() const { return FInfo; }
    // Takes FPalletNumber, FJobNumber and FTemplateId from the record. A pallet text that is no
    // integer, or a number outside -32768..32767, raises a JobError naming the value.
    void TakeJobKeys();
    std::int16_t PalletNumber() const { return FPalletNumber; }
    std::int16_t JobNumber() const { return FJobNumber; }
    std::int16_t TemplateId() const { return FTemplateId; }
    // Binds the value boxes to Value_1..Value_6 of the job rows, once.
    void BindDataControls();
    // Filters tableJobs on the job and tableTemplateData on the template (off, text, on).
    void FilterJobTables();
    // The four steps above in their order: the record, the job keys, the bound boxes, the filters.
    void PrepareJob(const TJobWizardInfo& Info);

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

    // ---- Controls ----
    tree::TTreeView* tvwTemplate; // the job's tree, one node per Jobs row
    dialogs::TDBEdit* dbeValue1;
    dialogs::TDBEdit* dbeValue2;
    dialogs::TDBEdit* dbeValue3;
    dialogs::TDBEdit* dbeValue4;
    dialogs::TDBEdit* dbeValue5;
    dialogs::TDBEdit* dbeValue6;

    // ---- Fields ----
    bool FEventsEnabled = false;
    bool FWriting = false; // set while the master program is written
    int FWorkpieceCounter = 0;

private:
    // The value box of number 1..6.
    dialogs::TDBEdit* ValueEdit(int Number) const;
    // Puts tableJobs in edit mode, sets Script_Line, posts.
    void StoreScriptLine(const std::string& Line);
    // Runs line changes on the job and writes them back, then `afterWrite`, in one transaction.
    void RunLineChanges(const std::function<void(job::JobLineReplay&)>& changes,
                        const std::function<void()>& afterWrite = {});
    void AppendSectionLine(int LineNumber, const std::string& Code, int NodeLevel, int State);

    TJobWizardInfo FInfo;
    std::int16_t FPalletNumber = 0;
    std::int16_t FJobNumber = 0;
    std::int16_t FTemplateId = 0;
    bool FControlsBound = false;
};
