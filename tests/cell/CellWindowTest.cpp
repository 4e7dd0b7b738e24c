// The cell window driven offscreen on a demo cell: each action calls the module's export with the
// host's record, the lists follow, and bad input ends in a message with the window still usable.
#include "CellWindow.h"
#include "CellJobInfo.h"
#include "ModuleExports.h"
#include "support/TestSupport.h"

#include "common/Scripted.h"
#include "store/CellInit.h"
#include "store/Database.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QSettings>
#include <QSpinBox>
#include <QTableView>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "CellNewJobDialog.h"

// The test program is the host, as quorvel is: the module finds this entry by name.
extern "C" void GetJobInfo(TAutomationInfo* info) {
    if (info)
        app::ForwardJobInfo(*info);
}

namespace {

// The module's dialogs would wait for a person: their calls are recorded instead. Deleting a job
// runs for real, and the wizard runs unattended, so that the lists have something to follow.
class RecordingExports : public app::RealModuleExports {
public:
    std::string newTemplate(const std::string& fixture, int workpieces) override {
        calls.push_back("NewTemplate " + fixture + " " + std::to_string(workpieces));
        return "";
    }
    void modifyTemplate(int workpieces, int templateId) override {
        calls.push_back("ModifyTemplate " + std::to_string(workpieces) + " " +
                        std::to_string(templateId));
    }
    void deleteTemplate() override { calls.push_back("DeleteTemplate"); }
    void jobWizard(const TJobWizardInfo& info) override {
        wizard.push_back(info);
        calls.push_back("JobWizard " + info.PalletNumber + " " + std::to_string(info.JobNumber));
        TJobWizardInfo unattended = info;
        unattended.Unattended = true;
        RealModuleExports::jobWizard(unattended);
    }
    void deleteJob(const std::string& pallet, const std::string& job) override {
        calls.push_back("DeleteJob " + pallet + " " + job);
        RealModuleExports::deleteJob(pallet, job);
    }
    void copyFiles(const std::string& source, const std::string& destination) override {
        calls.push_back("CopyFiles " + source + " " + destination);
    }
    std::vector<std::string> calls;
    std::vector<TJobWizardInfo> wizard;
};

// Runs a script on a database file, outside the window.
void runSql(const std::string& file, const std::string& sql) {
    store::Database db("test", "test");
    db.setFileName(file);
    db.open();
    db.executeScript(sql);
}

class CellWindowTest : public ::testing::Test {
protected:
    CellWindowTest() {
        store::createCell(cell.str());
        window.openCell(QString::fromStdString(cell.str()));
    }
    std::string lastMessage() const {
        const auto all = ui.messages();
        return all.empty() ? std::string() : all.back();
    }
    // The New Job dialog answered with a pallet, a job and the template.
    void answerNewJob(int pallet, int job) {
        ui.onModal = [=](QWidget* form) {
            auto* dialog = dynamic_cast<app::CellNewJobDialog*>(form);
            ASSERT_NE(dialog, nullptr);
            dialog->spnPallet->setValue(pallet);
            dialog->spnJob->setValue(job);
        };
        ui.modalAnswers.push_back(common::ModalResult::Ok);
    }
    // The folder choices the user makes, in order; an empty one cancels.
    void chooseFolders(std::vector<std::string> folders) {
        window.chooseFolder = [folders, next = std::size_t{0}](const QString&,
                                                               const QString&) mutable {
            return QString::fromStdString(next < folders.size() ? folders[next++] : "");
        };
    }
    QString cellText(int row, int column) const {
        return window.tblJobs->model()->index(row, column).data().toString();
    }

    testsupport::TempDir cell;
    common::ScriptedUi ui;
    RecordingExports exports;
    app::CellWindow window{exports, ui};
};

TEST_F(CellWindowTest, ActionsCallTheExportsAndTheListsAndTheProgramViewFollow) {
    ASSERT_EQ(window.cellDir().toStdString(), cell.str()) << lastMessage();
    ASSERT_EQ(window.lstTemplates->count(), 1);
    EXPECT_EQ(window.lstTemplates->item(0)->text(), "Demo wire-cut plate");

    // A new template needs a fixture; then it is made for the chosen one.
    window.actNewTemplate->trigger();
    EXPECT_TRUE(exports.calls.empty());
    window.cmbFixture->setCurrentIndex(window.cmbFixture->findText("FX-200"));
    EXPECT_EQ(window.lstTemplates->count(), 0); // the list is per fixture
    window.spnWorkpieces->setValue(2);
    window.actNewTemplate->trigger();
    window.cmbFixture->setCurrentIndex(0);
    window.actModifyTemplate->trigger();
    window.actDeleteTemplate->trigger();
    EXPECT_EQ(exports.calls, (std::vector<std::string>{"NewTemplate FX-200 2", "ModifyTemplate 2 1",
                                                       "DeleteTemplate"}));
    exports.calls.clear();

    // New job: the host lists the job, the wizard gets the record, the list and panel follow.
    window.chkUpdateNotices->setChecked(false);
    answerNewJob(3, 2);
    window.actNewJob->trigger();
    ASSERT_EQ(exports.wizard.size(), 1u) << lastMessage();
    const auto& info = exports.wizard.back();
    EXPECT_EQ(exports.calls, std::vector<std::string>{"JobWizard 3 2"});
    EXPECT_EQ(info.TemplateID, 1);
    EXPECT_EQ(info.LocalDirectory, (cell.path() / "Pallet3").string());
    EXPECT_EQ(info.InputDirectory, cell.str());
    ASSERT_NE(info.MessageGate, nullptr);
    EXPECT_FALSE(info.MessageGate->checked());
    ASSERT_EQ(window.tblJobs->model()->rowCount(), 1);
    EXPECT_EQ(cellText(0, app::CellJobsModel::Template), "Demo wire-cut plate");
    EXPECT_TRUE(window.txtReport->toPlainText().contains("PalletNumber: 3\n"))
        << window.txtReport->toPlainText().toStdString();

    // Open runs the wizard on the selected row with its template.
    window.actOpenJob->trigger();
    ASSERT_EQ(exports.wizard.size(), 2u);
    EXPECT_EQ(exports.wizard.back().TemplateID, 1);
    EXPECT_EQ(exports.calls.back(), "JobWizard 3 2");

    // The program the host queued, in Windows-1252, older than the job's rows.
    const std::string program = cell.file("Pallet3/Pal00003.NC");
    testsupport::writeFile(program, "%\r\nN1 (60\xB0 \x80)\r\nN2 M30\r\n");
    std::filesystem::last_write_time(program, std::filesystem::file_time_type::clock::now() -
                                                  std::chrono::hours(1));
    runSql(cell.file("ZEL.db"),
           "insert or replace into JobQueue values (3, 2, '" + program + "', '')");
    window.actRefresh->trigger();
    EXPECT_EQ(window.txtProgram->toPlainText(),
              QString::fromUtf8("%\r\nN1 (60° €)\r\nN2 M30\r\n").replace("\r", ""));
    EXPECT_FALSE(window.lblProgramNote->isHidden());

    // Written after the rows: no note.
    std::filesystem::last_write_time(program, std::filesystem::file_time_type::clock::now() +
                                                  std::chrono::hours(1));
    window.actRefresh->trigger();
    EXPECT_TRUE(window.lblProgramNote->isHidden());

    // A program reported to the host is compared with the job's rows as they were then: the file's
    // time no longer counts, a changed row does.
    QSettings settings(QString::fromStdString(cell.file("window.ini")), QSettings::IniFormat);
    window.settings = &settings;
    TAutomationInfo report;
    report.PalletNumber = "3";
    report.JobNumber = 2;
    report.CommandFile = program;
    GetJobInfo(&report);
    std::filesystem::last_write_time(program, std::filesystem::file_time_type::clock::now() -
                                                  std::chrono::hours(1));
    window.actRefresh->trigger();
    EXPECT_TRUE(window.lblProgramNote->isHidden());
    runSql(cell.file("Quorvel.db"), "update Jobs set Value_1 = 'changed' where Pallet_Number = 3 "
                                    "and Job_Number = 2 and Line_Number = 3");
    window.actRefresh->trigger();
    EXPECT_TRUE(window.lblProgramNote->text().contains("rows changed"))
        << window.lblProgramNote->text().toStdString();

    // Delete asks first; No keeps the job.
    ui.messageAnswers = {common::ModalResult::No};
    window.actDeleteJob->trigger();
    EXPECT_EQ(window.tblJobs->model()->rowCount(), 1);
    window.actDeleteJob->trigger();
    EXPECT_EQ(exports.calls.back(), "DeleteJob 3 2");
    EXPECT_EQ(window.tblJobs->model()->rowCount(), 0);

    // Copy files between the two folders chosen, in order; a cancelled choice copies nothing.
    chooseFolders({"/from", "/to"});
    exports.calls.clear();
    window.actCopyFiles->trigger();
    window.actCopyFiles->trigger();
    EXPECT_EQ(exports.calls, std::vector<std::string>{"CopyFiles /from /to"});
}

TEST_F(CellWindowTest, BadInputShowsAMessageAndTheWindowStaysUsable) {
    // Not a cell: the open cell stays.
    testsupport::TempDir other;
    EXPECT_FALSE(window.openCell(QString::fromStdString(other.str())));
    EXPECT_NE(lastMessage().find("no cell in"), std::string::npos) << lastMessage();
    EXPECT_EQ(window.cellDir().toStdString(), cell.str());

    // Another schema version: the store's message reaches the window.
    store::createCell(other.str());
    runSql(other.file("Quorvel.db"), "pragma user_version = 999");
    EXPECT_FALSE(window.openCell(QString::fromStdString(other.str())));
    EXPECT_NE(lastMessage().find("Quorvel.db"), std::string::npos) << lastMessage();

    // A new demo cell needs an empty folder, and opens when made.
    chooseFolders({other.str()});
    window.actNewDemoCell->trigger();
    EXPECT_NE(lastMessage().find("not empty"), std::string::npos) << lastMessage();
    EXPECT_EQ(window.cellDir().toStdString(), cell.str());
    testsupport::TempDir fresh;
    chooseFolders({fresh.str()});
    window.actNewDemoCell->trigger();
    EXPECT_EQ(window.cellDir().toStdString(), fresh.str()) << lastMessage();
    window.openCell(QString::fromStdString(cell.str()));

    // A job whose template was deleted is named so and not opened.
    runSql(cell.file("ZEL.db"), "insert into JobList (Pallet_Number, Job_Number, Template) "
                                "values (5, 1, 99)");
    window.actRefresh->trigger();
    ASSERT_EQ(window.tblJobs->model()->rowCount(), 1);
    EXPECT_EQ(cellText(0, app::CellJobsModel::Template), "template 99 (deleted)");
    window.actOpenJob->trigger();
    EXPECT_TRUE(exports.wizard.empty());
    EXPECT_NE(lastMessage().find("has been deleted"), std::string::npos) << lastMessage();
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
