// The job wizard export: shown when the job opens, otherwise reported to the host's GetJobInfo.
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
        info.HostModule = cell.platform.loadLibrary("host");
        info.TemplateID = 1;
        info.JobNumber = 3;
        info.PalletNumber = "7";
        info.LocalDirectory = "/cell/Pallet7";
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
}
