// The master program: Write checks every line as Next does, then writes the program of the job's
// rows into the local directory and reports it to the host. Also the other buttons of the top
// panel and the question about the previous job's files.
#include "job/Job.h"

#include "common/Convert.h"
#include "common/FileNames.h"
#include "common/FileSearch.h"
#include "common/Format.h"
#include "common/Services.h"
#include "dialogs/DeleteFiles.h"
#include "dialogs/EventsGuard.h"
#include "job/HostReport.h"
#include "job/ProgramFile.h"
#include "store/DataMod.h"

#include <QCheckBox>
#include <QComboBox>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QStatusBar>

#include <filesystem>

namespace {

constexpr const char* ProgramFilter = "Fanuc Program Files (*.NC)|*.NC|All Files (*.*)|*.*";

// The screen during the check walk: the tree and the value pages at height 0, so that thousands
// of selections draw nothing. The old layout comes back when the walk ends, also by an error.
class ShrunkScreen {
public:
    ShrunkScreen(TdlgJob& form, bool& panelsFill)
        : form_(form), panelsFill_(panelsFill), syntaxHeight_(form.lstSyntax->height()) {
        for (QWidget* w :
             {static_cast<QWidget*>(form.tvwTemplate), form.pnlSection, form.pnlEditBoxes,
              form.pnlRadioButtons, static_cast<QWidget*>(form.lstSyntax)})
            w->resize(w->width(), 0);
        panelsFill_ = false;
    }
    ~ShrunkScreen() {
        form_.lstSyntax->resize(form_.lstSyntax->width(), syntaxHeight_);
        panelsFill_ = true;
        for (QWidget* panel : {form_.pnlSection, form_.pnlEditBoxes, form_.pnlRadioButtons})
            panel->setGeometry(form_.tabValues->rect());
        // The tree's own margin within its page, as the form's layout keeps it.
        form_.tvwTemplate->resize(form_.tvwTemplate->width(), form_.tabTree->height() - 8);
    }
    ShrunkScreen(const ShrunkScreen&) = delete;
    ShrunkScreen& operator=(const ShrunkScreen&) = delete;

private:
    TdlgJob& form_;
    bool& panelsFill_;
    int syntaxHeight_;
};

} // namespace

// ---- Write ----

void TdlgJob::btnWriteClick() {
    FFileList.clear();
    if (!ClearPalletFiles())
        return;
    if (!CheckAllLines())
        return;

    common::FileDialogRequest request;
    request.title = "Save the Master Program";
    request.defaultExt = "NC";
    request.fileName = common::format("Pal%.5d", {common::strToIntDef(FInfo.PalletNumber, 0)});
    request.filter = ProgramFilter;
    request.filterIndex = 1;
    request.initialDir =
        FInfo.OutputDirectory.empty() ? FInfo.LocalDirectory : FInfo.OutputDirectory;
    std::string answer;
    if (!common::ui().saveFile(request, answer))
        return;
    common::hostApplication().processMessages();
    // The directory picked in the dialog is dropped: the program always lands in the job's own.
    std::string name = common::extractFileName(answer);
    if (common::extractFileExt(name).empty())
        name += ".NC";
    FProgramFileName = common::includeTrailingPathDelimiter(FInfo.LocalDirectory) + name;
    SetJobHeaderValue(schema::Path, FProgramFileName);

    WriteMasterProgram(FProgramFileName);
    btnEdit->setEnabled(true);
    StatusBar->setSizeGripEnabled(true);
    FProgress = 0;
    RepaintStatusBar();
    ReportProgramToHost();
}

bool TdlgJob::CheckAllLines() {
    {
        const ShrunkScreen shrunk(*this, FPanelsFill);
        btnCollapseClick(nullptr);
        SelectFirstRoot();
        FStopFlag = false;
        FProgress = 0;
        const int total = tree::NodeCount(tvwTemplate);
        StatusBar->setSizeGripEnabled(false);
        InStoreBatch([&] {
            ByCode([&] {
                while (btnNext->isEnabled() && !FStopFlag) {
                    btnNextClick(nullptr);
                    FProgress = total > 0 ? 100.0 * tree::AbsoluteIndex(SelectedNode()) / total : 0;
                    RepaintStatusBar();
                }
            });
        });
        if (FStopFlag) {
            if (QTreeWidgetItem* node = SelectedNode())
                tvwTemplate->scrollToItem(node, QAbstractItemView::PositionAtTop);
            FProgress = 0;
        } else {
            btnCollapseClick(nullptr);
            SelectFirstRoot();
            FProgress = 100;
            RepaintStatusBar();
        }
    }
    return !FStopFlag;
}

void TdlgJob::SelectFirstRoot() {
    // Back through the visible nodes: after a collapse these are the sections.
    while (QTreeWidgetItem* node = SelectedNode()) {
        QTreeWidgetItem* above = tvwTemplate->itemAbove(node);
        if (!above)
            break;
        SelectNode(above);
    }
}

void TdlgJob::WriteMasterProgram(const std::string& FileName) {
    job::ProgramFile file(FileName);
    file.writeLine("%");
    file.writeLine(common::format("O%4.4d (CMS MAIN PROGRAM)", {spnProgramNumber->value()}));
    {
        const dialogs::EventsGuard<bool> writing(FWriting, true, false);
        const dialogs::EventsGuard<bool> quiet(FEventsEnabled, false, true);
        WriteProgramLines(file);
    }
    file.writeLine("M219 P1");
    file.writeLine("M30");
    file.writeLine("%");
    file.complete();
}

std::string TdlgJob::WriteLinePrefix(int& LineNumber, int Increment) {
    if (!chkLineNumbers->isChecked())
        return {};
    const std::string prefix = "N" + std::to_string(LineNumber) + " ";
    LineNumber += Increment;
    return prefix;
}

void TdlgJob::WriteProgramLines(job::ProgramFile& File) {
    int number = spinIncrement->value();
    const int increment = spinIncrement->value();
    auto& jobs = DM().tableJobs;
    bool sectionSkipped = false;
    bool lineSkipped = false;
    bool joined = false;
    const auto line = [&] {
        return WriteLinePrefix(number, increment) +
               common::trim(jobs.fieldByName(schema::Script_Line).asString());
    };
    for (jobs.first(); !jobs.eof();) {
        const int level = jobs.fieldByName(schema::Node_Level).asInteger();
        const bool skipped = jobs.fieldByName(schema::Image).asInteger() == 3;
        if (level == 0)
            sectionSkipped = skipped;
        else
            lineSkipped = skipped;
        if (!sectionSkipped && !lineSkipped && !joined && level != 2) {
            if (level == 0) {
                File.writeLine("");
                File.writeLine(line());
                File.writeLine("");
            } else {
                File.writeLine(line());
            }
        }
        // A joined run carries one text on all its rows: only its first row is written.
        joined = IsLineContinued();
        jobs.next();
        common::hostApplication().processMessages();
    }
    // The bound controls show the selected line again, not the last row read.
    SyncJobRow(nullptr);
}

void TdlgJob::ReportProgramToHost() {
    if (!FInfo.HostModule)
        return;
    TAutomationInfo info;
    info.JobNumber = FInfo.JobNumber;
    info.HostText1 = FInfo.HostText1;
    info.HostText2 = FInfo.HostText2;
    info.MachineText = "FANUC Robocut";
    info.PalletNumber = FInfo.PalletNumber;
    info.CommandFile = FProgramFileName;
    info.CommandText = "Basket=" + cmbAuxPallet->currentText().toStdString();
    info.FileList = FFileList;
    job::ReportToHost(FInfo.HostModule, info);
}

// ---- The previous job's files ----

bool TdlgJob::ClearPalletFiles() {
    const std::string pallet =
        common::includeTrailingPathDelimiter(common::platform().executableDirectory()) + "Pallet" +
        FInfo.PalletNumber;
    int option = -1;
    for (const common::FoundFile& found : common::FindFiles(pallet)) {
        if (found.attributes == common::faDirectory)
            continue;
        if (option < 0) {
            TdlgDeleteFiles question(this);
            question.SetItemIndex(TdlgDeleteFiles::DeleteAll);
            if (common::ui().showModal(&question) == common::ModalResult::Cancel)
                return false;
            option = question.ItemIndex();
            if (option == TdlgDeleteFiles::RetainAll)
                return true;
        }
        if (option == TdlgDeleteFiles::PromptEach &&
            common::ui().message(common::MessageKind::Confirmation, "JOB_S0015" + found.name + "?",
                                 common::MessageButtons::YesNo) != common::ModalResult::Yes)
            continue;
        common::platform().deleteFile(common::includeTrailingPathDelimiter(pallet) + found.name);
        // Kept as it stands: only without an output directory is a file of that name deleted
        // "there", which from the empty text is the root directory.
        if (FInfo.OutputDirectory.empty()) {
            const std::string there =
                common::includeTrailingPathDelimiter(FInfo.OutputDirectory) + found.name;
            std::error_code ec;
            if (std::filesystem::is_regular_file(there, ec))
                common::platform().deleteFile(there);
        }
    }
    return true;
}

// ---- The other buttons ----

void TdlgJob::btnEditClick() {
    common::platform().shellExecute("open", "notepad.exe", FProgramFileName, "");
}

void TdlgJob::btnFindClick() {
    std::error_code ec;
    const std::string current = std::filesystem::current_path(ec).string();
    common::platform().shellExecute("find", current, "", "");
}
