// The program page and the options page: program number, line numbering and its sample, the
// auxiliary basket; and what the queue holds for a job.
#include "job/Job.h"

#include "common/FileNames.h"
#include "common/Format.h"
#include "common/Services.h"
#include "dialogs/WaitCursor.h"
#include "machine/Focus1Comm.h"
#include "machine/MachineInfo.h"
#include "store/DataMod.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QSpinBox>
#include <QTabWidget>

void TdlgJob::spnProgramNumberChange() {
    SetJobHeaderValue(schema::Value_6, std::to_string(spnProgramNumber->value()));
}

void TdlgJob::btnProgramNumberClick() {
    SetActivePage(pageScript, tabOptions);
    RefreshProgramSample();
}

void TdlgJob::chkLineNumbersClick() {
    SetJobHeaderValue(schema::Value_5, chkLineNumbers->isChecked() ? "1" : "0");
    RefreshProgramSample();
}

void TdlgJob::spinIncrementChange() {
    SetJobHeaderValue(schema::Value_4, spinIncrement->text().toStdString());
    RefreshProgramSample();
}

void TdlgJob::btnLineNumbersClick() { SetActivePage(pageScript, tabTree); }

void TdlgJob::RefreshProgramSample() {
    lstSample->clear();
    lstSample->addItem("%");
    lstSample->addItem(
        QString::fromStdString(common::format("O%4.4d", {spnProgramNumber->value()})));
    if (chkLineNumbers->isChecked()) {
        const int increment = spinIncrement->value();
        lstSample->addItem(QString::fromStdString(common::format("N%d G92", {increment})));
        lstSample->addItem(QString::fromStdString(common::format("N%d M30", {2 * increment})));
    } else {
        lstSample->addItem("G92");
        lstSample->addItem("M30");
    }
    lstSample->addItem("%");
}

void TdlgJob::cmbAuxPalletChange() {
    const int index = cmbAuxPallet->currentIndex();
    if (index < 0)
        return;
    common::hostApplication().processMessages();
    const std::string text = cmbAuxPallet->currentText().toStdString();
    if (BasketFull(cmbAuxPallet, index)) {
        editBasketStatus->setText("Full");
        QFont font = editBasketStatus->font();
        font.setBold(true);
        editBasketStatus->setFont(font);
        editBasketStatus->setStyleSheet("color: red;");
    } else {
        editBasketStatus->setText("Empty");
        editBasketStatus->setFont(QFont());
        editBasketStatus->setStyleSheet({});
    }
    SetJobHeaderValue(schema::Value_3, text);
}

void TdlgJob::cmbMachinesChange() {
    lstPrograms->clear();
    bool connected = false;
    const TMachineInfo* machine = MachineOf(cmbMachines, cmbMachines->currentIndex());
    if (!machine) // "(Select a machine)"
        return;
    const std::string host = machine->Host;
    const std::string portText = machine->Port;
    const dialogs::WaitCursor hourglass;
    {
        TFocus1Comm link;
        const std::uint16_t port = FocasPort(portText);
        if (!host.empty() && port != 0 && link.Connect(host, port)) {
            // A failed read still counts as connected: its own box is enough.
            connected = true;
            link.ReadPrograms(lstPrograms);
        }
    }
    if (!connected)
        common::ui().error(common::format("Unable to connect to %s.%s", {host, portText}));
}

namespace {

// The first field of the job's queue row, or nothing.
void readQueue(const char* column, const TJobWizardInfo& info, std::string& out) {
    auto query = DM().NewSharedQuery();
    query->setSql(common::format(std::string("select ") + column +
                                     " from JobQueue where Pallet_Number = %s and Job_Number = %d",
                                 {info.PalletNumber, info.JobNumber}));
    query->open();
    if (!query->eof())
        out = query->fields(0).asString();
}

} // namespace

void TdlgJob::QueueCommandFile(bool Unattended, std::string& CommandFile) {
    if (Unattended)
        readQueue("Command_File", FInfo, CommandFile);
    else
        CommandFile = common::includeTrailingPathDelimiter(FInfo.LocalDirectory) +
                      common::extractFileName(FProgramFileName);
}

void TdlgJob::QueueFileList(bool Unattended, std::string& FileList) {
    if (Unattended)
        readQueue("File_List", FInfo, FileList);
    else
        FileList = FFileList;
}
