// Opening a job: the template's tree into the wizard, the fixture's points, a new job built or an
// existing one brought up to date, and each node's status restored from the job's rows.
#include "job/Job.h"

#include "common/Convert.h"
#include "common/Format.h"
#include "common/Services.h"
#include "dialogs/MyMessage.h"
#include "store/DataMod.h"
#include "template/Template.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QPushButton>
#include <QSpinBox>
#include <QWidget>

#include <algorithm>

namespace {

constexpr const char* TemplateEmpty = "The template is empty";
constexpr const char* TemplateChanged =
    "The template has changed.\r\nThe job will now be updated.\r\nThis may take a few minutes.";
constexpr const char* JobCorrupt =
    "The job file is corrupt!\r\nPlease empty the pallet to correct the problem.";

// A setting of line 0 as an integer; the fallback when the text is no integer.
int setting(const char* column, int fallback) {
    return common::strToIntDef(DM().tableJobs.fieldByName(column).asString(), fallback);
}

// Selects the entry of a combo box with the text, or none; no handler runs.
void selectText(QComboBox* box, const std::string& text) {
    const QSignalBlocker blocker(box);
    box->setCurrentIndex(box->findText(QString::fromStdString(text)));
}

} // namespace

bool TdlgJob::OpenJob(TJobWizardInfo Info) {
    FInfo = std::move(Info);
    FEventsEnabled = false;
    FWriting = false;
    FStatusMessage.clear();
    FProgress = 0;

    dlgTemplate().LoadTemplateTree(tvwTemplate, FInfo.TemplateID);
    FFindCursor = nullptr;
    if (tree::NodeCount(tvwTemplate) == 0) {
        common::ui().message(common::MessageKind::Error, TemplateEmpty);
        return false;
    }
    SelectNode(tree::FindNodeByIndex(tvwTemplate, 0));

    const std::string partName =
        FInfo.UseTemplateFixture
            ? DM().tableTemplateName.fieldByName(schema::Fixture).asString()
            : DM().tableFixtureList.fieldByName(schema::Part_Number).asString();
    auto& points = DM().tableFixturePoints;
    if (points.active()) {
        points.setFiltered(false);
        points.setFilter("Part_Number='" + partName + "'");
        points.setFiltered(true);
        FPoints.PartNumber = partName;
        FPoints.Z = DM().tableFixtureList.fieldByName(schema::Z).asFloat();
        int count = 0;
        for (points.first(); !points.eof(); points.next()) {
            const int workpiece = points.fieldByName(schema::Workpiece).asInteger();
            // A number outside the arrays is passed over rather than written elsewhere.
            if (workpiece >= 0 && workpiece < static_cast<int>(FPoints.X.size())) {
                const auto at = static_cast<std::size_t>(workpiece);
                FPoints.X[at] = points.fieldByName(schema::Adjusted_X).asFloat();
                FPoints.Y[at] = points.fieldByName(schema::Adjusted_Y).asFloat();
            }
            ++count;
        }
        if (tree::NodeCount(tvwTemplate) == count + 2) {
            common::ui().message(common::MessageKind::Error, TemplateEmpty);
            return false;
        }
    }
    TakeJobKeys();
    return LoadJob();
}

bool TdlgJob::LoadJob() {
    BindDataControls();
    FilterJobTables();

    auto& jobs = DM().tableJobs;
    jobs.first();
    if (jobs.hasRow()) {
        FProgramFileName = jobs.fieldByName(schema::Path).asString();
        btnEdit->setEnabled(!FProgramFileName.empty());
        // The settings go through the spin edits' limits, as the controls take them.
        const int program = std::clamp(setting(schema::Value_6, 1), 0, 7999);
        const bool numbers = setting(schema::Value_5, 1) > 0;
        const int increment = std::clamp(setting(schema::Value_4, 1), 1, 500);
        const std::string basket = jobs.fieldByName(schema::Value_3).asString();
        const int jobVersion = setting(schema::Value_2, 1);
        ByCode([&] {
            spnProgramNumber->setValue(program);
            chkLineNumbers->setChecked(numbers);
            spinIncrement->setValue(increment);
        });
        if (!grpAuxLoad->isHidden()) {
            selectText(cmbAuxPallet, basket);
            cmbAuxPalletChange();
        }
        if (DM().tableTemplateName.fieldByName(schema::Version).asInteger() > jobVersion) {
            TdlgMessage box;
            if (box.SetupMessage(FInfo.MessageGate, 64, TemplateChanged, true) &&
                box.ShowModal() == common::ModalResult::Cancel)
                return false;
            UpdateJobFromJournal(jobVersion);
        }
    } else {
        ByCode([&] { spnProgramNumber->setValue(1); });
        BuildJobFromTemplate();
        if (DM().BasketListExists()) {
            selectText(cmbAuxPallet, std::to_string(FPalletNumber));
            cmbAuxPalletChange();
        }
    }

    bool restored = false;
    try {
        restored = RestoreTree();
    } catch (const std::exception&) {
        restored = false;
    }
    if (!restored) {
        common::ui().message(common::MessageKind::Plain, JobCorrupt);
        return false;
    }

    FEventsEnabled = true;
    tvwTemplateChange(nullptr, SelectedNode());
    tabProgram->repaint();
    return true;
}

bool TdlgJob::RestoreTree() {
    auto& jobs = DM().tableJobs;
    for (jobs.first(); !jobs.eof(); jobs.next()) {
        QTreeWidgetItem* node =
            FindNodeByIndex(jobs.fieldByName(schema::Line_Number).asInteger(), false);
        if (!node)
            return false;
        tree::SetImageIndex(node, jobs.fieldByName(schema::Image).asInteger());
        tree::SetStateIndex(node, jobs.fieldByName(schema::State).asInteger());
    }
    return true;
}

QTreeWidgetItem* TdlgJob::FindNodeByIndex(int Index, bool Restart) {
    if (Restart || Index == 0 || !FFindCursor)
        FFindCursor = tree::FindNodeByIndex(tvwTemplate, 0);
    for (QTreeWidgetItem* node = FFindCursor; node; node = tree::NextNode(node)) {
        if (tree::AbsoluteIndex(node) == Index) {
            FFindCursor = node;
            return node;
        }
    }
    return Restart ? nullptr : FindNodeByIndex(Index, true);
}
