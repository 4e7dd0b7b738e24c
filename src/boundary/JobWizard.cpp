// The job wizard export: opens the job in a new form, shows it, or answers the host at once.
#include "boundary/Exports.h"

#include "common/Services.h"
#include "dialogs/WaitCursor.h"
#include "job/HostReport.h"
#include "job/Job.h"
#include "store/DataMod.h"

#include <QApplication>

#include <memory>
#include <stdexcept>

namespace boundary {

void JobWizard(TJobWizardInfo Info) {
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        throw std::logic_error("JobWizard needs the host's Qt application");
    const TJobWizardInfo record = std::move(Info);
    TAutomationInfo automation;
    auto form = std::make_unique<TdlgJob>();
    bool ready = false;
    {
        const dialogs::WaitCursor wait;
        DM().PositionTemplate(record.TemplateID);
        ready = form->OpenJob(record);
    }
    if (ready && !record.Unattended) {
        common::ui().showModal(form.get());
        return;
    }
    if (!record.HostModule)
        return;
    automation.HostTag = record.HostTag;
    automation.JobNumber = record.JobNumber;
    automation.HostText1 = record.HostText1;
    automation.HostText2 = record.HostText2;
    automation.MachineText = record.MachineText.empty() ? ModuleName : record.MachineText;
    automation.PalletNumber = record.PalletNumber;
    form->QueueCommandFile(record.Unattended, automation.CommandFile);
    form->QueueFileList(record.Unattended, automation.FileList);
    automation.HostFlag2 = record.HostFlag2;
    automation.HostFlag1 = record.HostFlag1;
    automation.AutomationFlag1 = false;
    automation.AutomationFlag2 = false;
    job::ReportToHost(record.HostModule, automation);
}

} // namespace boundary
