// The cell window's actions on templates and jobs: each goes through the module's exports.
#include "CellWindow.h"

#include "CellHostStore.h"
#include "CellNewJobDialog.h"

#include "common/Ui.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QListWidget>
#include <QSpinBox>
#include <QStatusBar>
#include <QTableView>
#include <QTimer>

#include <dlfcn.h>

#include <algorithm>
#include <filesystem>

namespace app {

namespace {

// The hourglass until the next turn of the event loop: the start of a modal dialog, or the end
// of the work when none shows.
void waitUntilIdle() {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    QTimer::singleShot(0, [] { QApplication::restoreOverrideCursor(); });
}

} // namespace

void CellWindow::newTemplate() {
    const QString fixture = cmbFixture->currentData().toString();
    if (fixture.isEmpty()) {
        ui_.message(common::MessageKind::Information,
                    "Choose the fixture of the new template first.", common::MessageButtons::Ok,
                    "New Template");
        cmbFixture->setFocus();
        return;
    }
    guarded("Cannot create a template", [&] {
        const std::string name =
            exports_.newTemplate(fixture.toStdString(), spnWorkpieces->value());
        loadTemplates();
        const auto found = lstTemplates->findItems(QString::fromStdString(name), Qt::MatchExactly);
        if (!name.empty() && !found.isEmpty())
            lstTemplates->setCurrentItem(found.front());
        statusBar()->showMessage(name.empty() ? QString("No template was created")
                                              : "Created template " + QString::fromStdString(name),
                                 5000);
    });
}

void CellWindow::modifyTemplate() {
    const int id = selectedTemplateId();
    if (id == 0)
        return;
    guarded("Cannot edit the template", [&] {
        exports_.modifyTemplate(spnWorkpieces->value(), id);
        loadTemplates();
        loadJobs();
    });
}

void CellWindow::deleteTemplate() {
    guarded("Cannot delete templates", [&] {
        exports_.deleteTemplate();
        loadTemplates();
        loadJobs();
    });
}

void CellWindow::newJob() { askNewJob(0, 0); }

void CellWindow::askNewJob(int fixedPallet, int fixedJob) {
    guarded("Cannot make the job", [&] {
        CellNewJobDialog dialog(exports_.templateNames({}, false), selectedTemplateId(), this);
        if (fixedPallet != 0)
            dialog.fixJob(fixedPallet, fixedJob);
        else if (const CellJob* current = selectedJob()) {
            // The selected job's pallet, and the next job number free on it.
            int free = 1;
            for (const auto& listed : jobsModel_.jobs())
                if (listed.pallet == current->pallet)
                    free = std::max(free, listed.job + 1);
            dialog.spnPallet->setValue(current->pallet);
            dialog.spnJob->setValue(free);
        }
        if (ui_.showModal(&dialog) != common::ModalResult::Ok || dialog.templateId() == 0)
            return;
        const int pallet = dialog.pallet();
        const int job = dialog.job();
        const int row = jobsModel_.rowOf(pallet, job);
        if (fixedPallet == 0 && row >= 0 && jobsModel_.job(row)->hasRows) {
            ui_.message(common::MessageKind::Information,
                        QString("Pallet %1 already has job %2: open it, or delete it first.")
                            .arg(pallet)
                            .arg(job)
                            .toStdString(),
                        common::MessageButtons::Ok, "New Job");
            selectJob(pallet, job);
            return;
        }
        runWizard(pallet, job, dialog.templateId());
    });
}

void CellWindow::openJob() {
    const CellJob* current = selectedJob();
    if (!current)
        return;
    const CellJob job = *current;
    if (job.templateMissing()) {
        ui_.message(common::MessageKind::Error,
                    QString("The template %1 of job %2 on pallet %3 has been deleted. Delete the "
                            "job and make it anew with another template.")
                        .arg(job.templateId)
                        .arg(job.job)
                        .arg(job.pallet)
                        .toStdString(),
                    common::MessageButtons::Ok, "Open Job");
        return;
    }
    if (job.templateId == 0) {
        // The host has no entry for the job: its template is asked for first.
        askNewJob(job.pallet, job.job);
        return;
    }
    guarded("Cannot open the job", [&] { runWizard(job.pallet, job.job, job.templateId); });
}

void CellWindow::runWizard(int pallet, int job, int templateId) {
    namespace fs = std::filesystem;
    const std::string cell = cellDir_.toStdString();
    const std::string localDir = (fs::path(cell) / ("Pallet" + std::to_string(pallet))).string();
    fs::create_directories(localDir);
    // The host records the job's template before the module builds the job.
    hostStore_->listJob(pallet, job, templateId, TemplateFixture(templateId));

    TJobWizardInfo info;
    // The host's own image, as the library that offers "GetJobInfo".
    const std::unique_ptr<void, int (*)(void*)> self(dlopen(nullptr, RTLD_NOW), dlclose);
    info.HostModule = self.get();
    info.TemplateID = templateId;
    info.JobNumber = job;
    info.PalletNumber = std::to_string(pallet);
    info.LocalDirectory = localDir;
    info.InputDirectory = cell;
    info.AllowSkip = true;
    info.AllowSkipDown = true;
    info.MessageGate = gate_.get();
    statusBar()->showMessage(QString("Opening job %1 of pallet %2...").arg(job).arg(pallet));
    waitUntilIdle();
    exports_.jobWizard(info);
    statusBar()->clearMessage();
    loadJobs();
    selectJob(pallet, job);
}

void CellWindow::deleteJob() {
    const CellJob* current = selectedJob();
    if (!current)
        return;
    const int pallet = current->pallet;
    const int job = current->job;
    if (ui_.message(common::MessageKind::Confirmation,
                    QString("Delete job %1 of pallet %2 and all its lines?")
                        .arg(job)
                        .arg(pallet)
                        .toStdString(),
                    common::MessageButtons::YesNo, "Delete Job") != common::ModalResult::Yes)
        return;
    guarded("Cannot delete the job", [&] {
        exports_.deleteJob(std::to_string(pallet), std::to_string(job));
        hostStore_->removeJob(pallet, job);
        loadJobs();
        statusBar()->showMessage(QString("Deleted job %1 of pallet %2").arg(job).arg(pallet), 5000);
    });
}

void CellWindow::copyFiles() {
    QString start = cellDir_;
    if (const CellJob* current = selectedJob())
        start = QDir(cellDir_).filePath(QString("Pallet%1").arg(current->pallet));
    const QString source = chooseFolder("Copy Files From", start);
    if (source.isEmpty())
        return;
    const QString destination = chooseFolder("Copy Files To", cellDir_);
    if (destination.isEmpty())
        return;
    guarded("Cannot copy the files",
            [&] { exports_.copyFiles(source.toStdString(), destination.toStdString()); });
}

} // namespace app
