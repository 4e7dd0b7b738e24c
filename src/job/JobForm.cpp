// The wizard form's own events, the job keys, the bound controls and the handler plumbing.
#include "job/Job.h"

#include "common/Convert.h"
#include "common/Format.h"
#include "common/Services.h"
#include "machine/MachineInfo.h"
#include "store/DataMod.h"
#include "store/Database.h"

#include <QComboBox>
#include <QEvent>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QStatusBar>
#include <QTabWidget>

#include <limits>

namespace {

// A key of the Jobs table is a 16-bit number; wrapping would silently address another job.
std::int16_t toInt16(std::int64_t value, const char* what) {
    if (value < std::numeric_limits<std::int16_t>::min() ||
        value > std::numeric_limits<std::int16_t>::max())
        throw JobError(std::string(what) + " " + std::to_string(value) +
                       " is outside -32768..32767");
    return static_cast<std::int16_t>(value);
}

} // namespace

// ---- Handler plumbing ----

void TdlgJob::Event(const std::function<void()>& Handler) {
    try {
        InStoreBatch(Handler);
    } catch (...) {
        if (FCodeDepth > 0) {
            if (!FPendingError)
                FPendingError = std::current_exception();
            return;
        }
        try {
            throw;
        } catch (const std::exception& e) {
            common::ui().message(common::MessageKind::Error, e.what());
        }
    }
}

void TdlgJob::ByCode(const std::function<void()>& Code) {
    ++FCodeDepth;
    try {
        Code();
    } catch (...) {
        --FCodeDepth;
        FPendingError = nullptr;
        throw;
    }
    --FCodeDepth;
    if (FCodeDepth == 0 && FPendingError) {
        auto error = FPendingError;
        FPendingError = nullptr;
        std::rethrow_exception(error);
    }
}

void TdlgJob::InStoreBatch(const std::function<void()>& Work) {
    if (FBatchDepth > 0 || !DMExists() || !DM().LocalDatabase.connected()) {
        Work();
        return;
    }
    ++FBatchDepth;
    store::Transaction batch(DM().LocalDatabase);
    try {
        Work();
    } catch (...) {
        --FBatchDepth;
        // What the work posted stays, as each post would have stayed on its own; the work's
        // own error is the one reported.
        try {
            batch.commit();
        } catch (...) {
        }
        throw;
    }
    --FBatchDepth;
    batch.commit();
}

// ---- Job keys and bindings ----

void TdlgJob::TakeJobKeys() {
    const auto pallet = common::tryStrToInt(FInfo.PalletNumber);
    if (!pallet)
        throw JobError("Pallet number '" + FInfo.PalletNumber + "' is not a valid integer value");
    FPalletNumber = toInt16(*pallet, "Pallet number");
    FJobNumber = toInt16(FInfo.JobNumber, "Job number");
    FTemplateId = toInt16(FInfo.TemplateID, "Template id");
}

void TdlgJob::BindDataControls() {
    if (FControlsBound)
        return;
    auto* jobs = &DM().sourceJobs;
    for (int n = 1; n <= 6; ++n) {
        ValueEdit(n)->setDataSource(jobs);
        ValueEdit(n)->setDataField(schema::ValueColumn(n));
    }
    dbmComment->setDataSource(jobs);
    dbmComment->setDataField(schema::Value_1);
    dbtScriptLine->setDataSource(jobs);
    dbtScriptLine->setDataField(schema::Script_Line);
    dbtTemplateName->setDataSource(&DM().sourceTemplateName);
    dbtTemplateName->setDataField(schema::Name);
    FControlsBound = true;
}

void TdlgJob::FilterJobTables() {
    auto& jobs = DM().tableJobs;
    jobs.setFiltered(false);
    jobs.setFilter(
        common::format("Pallet_Number = %d and Job_Number = %d", {FPalletNumber, FJobNumber}));
    jobs.setFiltered(true);
    auto& data = DM().tableTemplateData;
    data.setFiltered(false);
    data.setFilter(common::format("Template_ID = %d", {FTemplateId}));
    data.setFiltered(true);
}

void TdlgJob::StoreScriptLine(const std::string& Line) {
    auto& jobs = DM().tableJobs;
    jobs.edit();
    jobs.fieldByName(schema::Script_Line).setAsString(Line);
    jobs.post();
}

// ---- Form events ----

void TdlgJob::FormCreate() {
    FPanelsFill = true;
    tabValues->installEventFilter(this);
    for (QWidget* panel : {pnlSection, pnlEditBoxes, pnlRadioButtons})
        panel->setGeometry(tabValues->rect());
    FItemWidth = txtItem1->width();
    FItemTop = txtItem1->y();
    txtItem1->setWordWrap(true);
    FWorkpieces.clear();
    FSavedValues.clear();
    FCurrentCode.clear();
    grpAuxLoad->setVisible(false);
    // The basket list would be loaded here while the group is visible; it has just been hidden.
    if (!grpAuxLoad->isHidden())
        LoadBaskets(cmbAuxPallet);
    FFindCursor = nullptr;
    FScriptParentCode.clear();
    FWorkpieceCounter = 0;
}

void TdlgJob::FormActivate() {
    FActivateArmed = false;
    btnSkip->setEnabled(FInfo.AllowSkip);
    SetActivePage(pageScript, tabTree);
    tvwTemplate->repaint();
    tvwTemplate->setFocus();
    SetActivePage(pageScript, tabProgram);
    LoadMachines(cmbMachines);
    if (cmbMachines->count() == 1) {
        const QSignalBlocker blocker(cmbMachines);
        cmbMachines->setCurrentIndex(0);
    }
}

void TdlgJob::FormResize() {
    const int W = width();
    const int H = height();
    pnlTop->setGeometry(0, 0, W, pnlTop->height());
    const int statusHeight = StatusBar->height();
    StatusBar->setGeometry(0, H - statusHeight, W, statusHeight);
    pageScript->resize(pageScript->width(),
                       H - (pageScript->y() + grpResult->height() + StatusBar->height() + 4));
    txtTemplate->resize(W - (pageValues->width() + 5), txtTemplate->height());
    pageScript->resize(txtTemplate->width(), pageScript->height());
    txtValues->move(W - (pageValues->width() + 2), txtValues->y());
    for (QWidget* w : {static_cast<QWidget*>(pageValues), static_cast<QWidget*>(grpSyntax),
                       static_cast<QWidget*>(grpResult)})
        w->move(txtValues->x(), w->y());
    btnExit->move(pnlTop->width() - (btnExit->width() + 2), btnExit->y());
    btnEdit->move(btnExit->x() - btnEdit->width(), btnEdit->y());
    btnWrite->move(btnEdit->x() - btnWrite->width(), btnWrite->y());
    btnFind->move(btnWrite->x() - btnFind->width(), btnFind->y());
    // The pages' contents follow their page's size.
    tvwTemplate->resize(tvwTemplate->width(), tabTree->height() - 8);
    lstScript->setGeometry(tabScript->rect());
}

void TdlgJob::FormClose() {
    FEventsEnabled = false;
    FActivateArmed = true;
    FCopiedNode = nullptr;
}

void TdlgJob::FormDestroy() {
    FWorkpieces.clear();
    FSavedValues.clear();
    FreeMachines(cmbMachines);
}

void TdlgJob::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (FActivateArmed)
        Event([this] { FormActivate(); });
}

void TdlgJob::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && FActivateArmed)
        Event([this] { FormActivate(); });
}

void TdlgJob::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    Event([this] { FormResize(); });
}

void TdlgJob::done(int result) {
    Event([this] { FormClose(); });
    QDialog::done(result);
}

bool TdlgJob::eventFilter(QObject* watched, QEvent* event) {
    if (watched == tabValues && event->type() == QEvent::Resize && FPanelsFill)
        for (QWidget* panel : {pnlSection, pnlEditBoxes, pnlRadioButtons})
            panel->setGeometry(tabValues->rect());
    return QDialog::eventFilter(watched, event);
}

void TdlgJob::btnExitClick() { close(); }

void TdlgJob::RepaintStatusBar() {
    StatusDrawPanel->update();
    StatusBar->repaint();
}

// ---- Selection and pages ----

QTreeWidgetItem* TdlgJob::SelectedNode() const { return tree::Selected(tvwTemplate); }

void TdlgJob::SelectNode(QTreeWidgetItem* Node) {
    if (tree::Selected(tvwTemplate) == Node)
        return;
    {
        const QSignalBlocker blocker(tvwTemplate);
        tree::Select(tvwTemplate, Node);
    }
    InStoreBatch([&] { tvwTemplateChange(tvwTemplate, Node); });
}

void TdlgJob::SetActivePage(QTabWidget* Pages, QWidget* Page) {
    const QSignalBlocker blocker(Pages);
    Pages->setCurrentWidget(Page);
}
