// The job wizard export as a host calls it: shown when the job opens, otherwise the report goes
// to the host's "GetJobInfo" with what the queue or the form knows of the job.
#include "boundary/Exports.h"
#include "job/Job.h"
#include "store/DataMod.h"
#include "support/CellFixture.h"

#include <QApplication>
#include <gtest/gtest.h>

#include <vector>

namespace {

std::vector<TAutomationInfo> received;

void GetJobInfo(TAutomationInfo* info) { received.push_back(*info); }

class JobWizardExportTest : public ::testing::Test {
protected:
    void SetUp() override {
        received.clear();
        boundary::LibraryLoad();
        boundary::Initialize(cell.dir(), cell.dir());
        cell.platform.libraries["host"]["GetJobInfo"] = reinterpret_cast<void*>(&GetJobInfo);
        cell.platform.libraries["bare"]["Other"] = reinterpret_cast<void*>(&GetJobInfo);
        info.HostModule = cell.platform.loadLibrary("host");
        info.TemplateID = 1;
        info.HostTag = 11;
        info.JobNumber = 3;
        info.HostText1 = "one";
        info.PalletNumber = "7";
        info.LocalDirectory = "/cell/Pallet7";
        info.HostFlag1 = 4;
        info.HostFlag2 = 5;
        info.MessageGate = &gate;
    }
    void TearDown() override {
        boundary::LibraryUnload();
        EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty());
    }
    testsupport::CellFixture cell{true};
    common::BoolMessageGate gate{true};
    TJobWizardInfo info;
};

} // namespace

TEST_F(JobWizardExportTest, UnattendedReportsWhatTheQueueHolds) {
    info.Unattended = true;
    boundary::JobWizard(info);
    ASSERT_EQ(received.size(), 1u);
    const auto& r = received[0];
    EXPECT_EQ(r.HostTag, 11);
    EXPECT_EQ(r.JobNumber, 3);
    EXPECT_EQ(r.HostText1, "one");
    EXPECT_EQ(r.MachineText, "FANUC Robocut");
    EXPECT_EQ(r.PalletNumber, "7");
    EXPECT_EQ(r.CommandFile, "");
    EXPECT_EQ(r.CommandText, "");
    EXPECT_EQ(r.HostFlag1, 4);
    EXPECT_EQ(r.HostFlag2, 5);
    EXPECT_TRUE(cell.ui.calls.empty()); // no window, no message
    // The job was built without a window; the queue's row is what the host gets back.
    auto q = DM().NewLocalQuery();
    q->setSql("select count(*) from Jobs where Pallet_Number = 7 and Job_Number = 3");
    q->open();
    EXPECT_GT(q->fields(0).asInteger(), 0);
    cell.run("ZEL.db", "insert into JobQueue values (7, 3, 'C:\\P7.NC', 'A.NC|B.NC')");
    info.MachineText = "Robocut 2";
    boundary::JobWizard(info);
    ASSERT_EQ(received.size(), 2u);
    EXPECT_EQ(received[1].CommandFile, "C:\\P7.NC");
    EXPECT_EQ(received[1].FileList, "A.NC|B.NC");
    EXPECT_EQ(received[1].MachineText, "Robocut 2");
    // No host library, or one without the entry: nothing is reported.
    info.HostModule = nullptr;
    boundary::JobWizard(info);
    info.HostModule = cell.platform.loadLibrary("bare");
    boundary::JobWizard(info);
    EXPECT_EQ(received.size(), 2u);
}

TEST_F(JobWizardExportTest, ShownWhenTheJobOpensReportedWhenItDoesNot) {
    boundary::JobWizard(info);
    ASSERT_EQ(cell.ui.calls.size(), 1u);
    EXPECT_EQ(cell.ui.calls[0].what, "modal");
    EXPECT_TRUE(received.empty());
    // A job that fails to open reports what the form knows: the program in the job's directory.
    cell.run("Quorvel.db", "update Jobs set Path = '/old/Pal00007.NC' where Line_Number = 0; "
                           "insert into Jobs (Pallet_Number, Job_Number, Line_Number, Code) "
                           "values (7, 3, 999, 'G00')");
    boundary::JobWizard(info);
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].CommandFile, "/cell/Pallet7/Pal00007.NC");
    EXPECT_EQ(cell.ui.messages().back(),
              "The job file is corrupt!\r\nPlease empty the pallet to correct the problem.");
}
