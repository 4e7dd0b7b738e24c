// The job follows its template through the journal, and nothing is half done on a bad row.
#include "JobFixture.h"
#include "store/StoreError.h"

namespace {

class UpdateTest : public jobtest::JobFixture {
protected:
    void SetUp() override {
        JobFixture::SetUp();
        build();
        // The operator's work: a mark in Value_6 of every line.
        exec("update Jobs set Value_6 = 'op' || Line_Number where Pallet_Number = 7");
        DM().tableJobs.first();
    }
    static void journal(int version, int item, const std::string& action, const std::string& value,
                        int number) {
        exec("insert into TemplateVersion values (1, " + std::to_string(version) + ", 0, " +
             std::to_string(item) + ", '" + action + "', '" + value + "', " +
             std::to_string(number) + ")");
    }
    // Line numbers, codes and operator marks of the job.
    static std::vector<std::vector<std::string>> lines() {
        return jobtest::rows("select Line_Number, Code, Value_6 from Jobs where Pallet_Number = 7 "
                             "and Job_Number = 1 order by Line_Number");
    }
};

} // namespace

TEST_F(UpdateTest, ReplaysNewerRowsAndKeepsOperatorValues) {
    journal(1, 3, "DEL", "", 5);    // as old as the job: not replayed
    journal(2, 9, "ADD", "G00", 1); // a new line at 9
    journal(2, 12, "DEL", "", 2);   // old lines 11 and 12 (now 12 and 13)
    journal(3, 5, "MOV", "1", 2);   // old lines 5 and 6 to the front of the header
    journal(3, 20, "XYZ", "", 1);   // unknown: passed over
    form->UpdateJobFromJournal(1);

    // Positions against a model are EditSessions'; here the rows it does not look at.
    EXPECT_EQ(lines().size(), 29u); // the version 1 DEL is not replayed
    EXPECT_EQ(jobField(0, "Value_2"), "3");
    // The added line is made with its defaults and composed; moved lines keep text and mark.
    EXPECT_EQ(jobField(9, "Script_Line"), "G00 X+0.000 Y+0.000");
    EXPECT_EQ(jobField(1, "Script_Line"), "#510=0.125");
    EXPECT_EQ(jobField(1, "Value_6"), "op5");
}

TEST_F(UpdateTest, BadRowLeavesJobAsItWasAndNoRowsKeepsVersion) {
    const auto before = lines();
    journal(2, 9, "ADD", "G00", 1);
    journal(2, 3, "MOV", "two", 1);
    try {
        form->UpdateJobFromJournal(1);
        FAIL() << "expected an error";
    } catch (const JobError& e) {
        EXPECT_NE(std::string(e.what()).find("'two'"), std::string::npos) << e.what();
    }
    EXPECT_EQ(lines(), before);
    EXPECT_EQ(jobField(0, "Value_2"), "1");
    // The next opening tries again on the unchanged rows.
    exec("update TemplateVersion set Value = '2' where Action = 'MOV'");
    form->UpdateJobFromJournal(1);
    EXPECT_EQ(lines().size(), 31u);
    EXPECT_EQ(jobField(0, "Value_2"), "2");
    // Nothing newer than the job: nothing moves and the version stays the job's own.
    exec("update TemplateName set Version = 5");
    form->UpdateJobFromJournal(2);
    EXPECT_EQ(lines().size(), 31u);
    EXPECT_EQ(jobField(0, "Value_2"), "2");
    // A quote in a header value breaks the statement.
    EXPECT_THROW(form->SetJobHeaderValue("Path", "C:\\it's.NC"), store::StoreError);
    form->SetJobHeaderValue("Path", "/cell/O0007.NC");
    EXPECT_EQ(jobField(0, "Path"), "/cell/O0007.NC");
}

TEST_F(UpdateTest, EveryReplayedWorkpieceAddCountsWhenItIsReplayed) {
    const int built = std::stoi(read("select count(*) from Jobs where Code = 'WRK'"));
    ASSERT_GT(built, 0);
    journal(2, 9, "ADD", "WRK", 0); // takes the next number ...
    journal(2, 9, "DEL", "", 1);    // ... and is deleted again
    journal(2, 12, "ADD", "WRK", 0);
    journal(2, 14, "ADD", "G00", 1); // a command line counts nothing
    journal(2, 5, "ADD", "WRK", 0);  // stands first
    journal(2, 9, "ADD", "WRK", 0);  // the last one made is deleted too ...
    journal(2, 9, "DEL", "", 1);
    form->UpdateJobFromJournal(1);
    const std::string second = "Workpiece" + std::to_string(built + 2);
    const std::string third = "Workpiece" + std::to_string(built + 3);
    EXPECT_EQ(jobField(13, "Value_1"), second);
    EXPECT_EQ(jobField(13, "Script_Line"), "(WORKPIECE" + std::to_string(built + 2) + ")");
    EXPECT_EQ(jobField(5, "Value_1"), third);
    // ... and a later insert still goes on from the counter as the replay left it.
    form->InsertJobLine(20, "WRK", 0);
    EXPECT_EQ(jobField(20, "Value_1"), "Workpiece" + std::to_string(built + 5));
    // A command line at the end takes the local default; the replay's refusal changes nothing.
    form->InsertJobLine(34, "G04", 1);
    EXPECT_EQ(jobField(34, "Script_Line"), "G04 X2.5");
    EXPECT_THROW(form->InsertJobLine(0, "G04", 1), store::StoreError);
    EXPECT_EQ(lines().size(), 35u);
}
