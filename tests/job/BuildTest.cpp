// Job build: the demo template for pallet 7, small templates for the kinds of line, and failures.
#include "JobFixture.h"
#include "store/CellFile.h"

#include <libpq-fe.h>

#include <array>
#include <vector>

namespace {

class BuildTest : public jobtest::JobFixture {
protected:
    // Adds template `id` with rows "level code syntax" and values; sections get a null syntax.
    void addTemplate(int id, const std::vector<std::string>& rows) {
        std::string sql =
            "insert into TemplateName values (" + std::to_string(id) + ", 'FX', 'T', 3, False);";
        for (std::size_t i = 0; i < rows.size(); ++i)
            sql += "insert into TemplateData values (" + std::to_string(id) + ", " +
                   std::to_string(i) + ", " + rows[i] + ", '', False, 0);";
        cell.run("Quorvel.db", sql);
    }
    void useTemplate(int id) {
        DM().PositionTemplate(id);
        form->SetWizardInfo(jobtest::wizardInfo(&gate, id));
        form->TakeJobKeys();
    }
    // Line `n` of the job as "code|level|item|script|values 1 to 6|image|state".
    static std::string line(int n) {
        std::string columns =
            "Code || '|' || Node_Level || '|' || Syntax_Item || '|' || Script_Line";
        for (int v = 1; v <= 6; ++v)
            columns += " || '|' || coalesce(" + std::string(schema::ValueColumn(v)) + ", '')";
        return row(n, columns + " || '|' || Image || '|' || State");
    }
    // The lines given, of a job of `total` rows (or as many as given) that have no Path.
    void expectJob(const std::vector<std::pair<int, std::string>>& lines, std::size_t total = 0) {
        EXPECT_EQ(DM().tableJobs.recordCount(), static_cast<int>(total ? total : lines.size()));
        EXPECT_EQ(rowsOf(7, "Path is not null"), "0");
        for (const auto& [n, expected] : lines)
            EXPECT_EQ(line(n), expected) << "line " << n;
    }
    static std::string rowsOf(int pallet, const std::string& condition = "1 = 1") {
        return read("select count(*) from Jobs where Pallet_Number = " + std::to_string(pallet) +
                    " and " + condition);
    }
};

} // namespace

TEST_F(BuildTest, DemoTemplateForPallet7ReplacesOnlyThisJobsRows) {
    cell.run("Quorvel.db", "insert into Jobs (Pallet_Number, Job_Number, Line_Number, Code) "
                           "values (7, 1, 99, 'OLD'), (7, 2, 0, 'HDR'), (8, 1, 0, 'HDR');");
    build();
    build();
    // Presets start complete (image 2), defaults open (1). Lines that repeat the path of one
    // shown are left out; the sections are KindsOfLine's.
    expectJob(
        {
            {1, "COMMENT|1|1|(DEMO WIRE-CUT PLATE)|DEMO WIRE-CUT PLATE|0|||||2|0"},
            // A preset of a static syntax: the template's values are dropped.
            {2, "G90|1|1|G90|||||||2|0"},
            // The local default syntax 2 of G54 is G55.
            {3, "G54|1|2|G55|||||||1|0"},
            {5, "VAR|1|1|#510=0.125|510|0.125|||||2|0"},
            // "[P4]" with pallet 7.
            {6, "M98|1|1|M98 P0007|0007|0|||||2|0"},
            // The running number has no default: its integer counts as 0.
            {8, "PIECE|1|1|#501=0|||||||1|0"},
            {9, "G92|1|1|G92 X+10.000 Y+5.000|10|5|0||||2|0"},
            {10, "UV|2|1| U+0.500 V-0.500|0.5|-0.5|||||2|2"},
            // The dwell takes the template's local default 2.5 over the global 0.5.
            {11, "G04|1|1|G04 X2.5|2.5|0|||||1|0"},
            {22, "UV|2|1| U+0.000 V+0.000|0|0|||||1|2"},
            // The first syntax's type (5, plain) decides, though item 2 is chosen.
            {26, "FLUSH|1|2|M81|||||||2|0"},
        },
        30);
    EXPECT_EQ(form->FWorkpieceCounter, 3);
    EXPECT_FALSE(DM().tableJobs.findKey({7, 1, 99}));
    EXPECT_EQ(rowsOf(7), "31");
    EXPECT_EQ(rowsOf(8), "1");
}

TEST_F(BuildTest, KindsOfLine) {
    addTemplate(2, {
                       "0, 'HDR', null, null, null, null, null, null, null",
                       "0, 'WRK', null, null, null, null, null, null, null",
                       // A code that Syntax does not hold becomes a workpiece line.
                       "1, 'XYZ', 0, 'a', 'b', '', '', '', ''",
                       "0, 'NOP', null, null, null, null, null, null, null",
                       "0, 'WRK', null, null, null, null, null, null, null",
                       // No default syntax at all still gives item 1.
                       "1, 'OFFSET', -1, '', '', '', '', '', ''",
                       // Item 3 of ACK (which has 2) reads the next code's row.
                       "1, 'ACK', 2, '', '', '', '', '', ''",
                       // Item 2 of G04 stands on G54's first row, which composes to its text.
                       "1, 'G04', 1, '[Px][P2]', '[P2]', '', '', '', ''",
                       // A level 0 row of a command code takes the section path.
                       "0, 'G00', 0, '', '', '', '', '', ''",
                       "0, 'FTR', null, null, null, null, null, null, null",
                   });
    useTemplate(2);
    build();
    expectJob({
        {0, "HDR|0|0|(HEADER)|Header|3|||||1|0"},
        {1, "WRK|0|0|(WORKPIECE1)|Workpiece1||||||1|0"},
        {2, "XYZ|1|0|(WORKPIECE2)|Workpiece2||||||1|0"},
        {3, "NOP|0|0||||||||1|0"},
        {4, "WRK|0|0|(WORKPIECE3)|Workpiece3||||||1|0"},
        {5, "OFFSET|1|1|G41 D01|1|0|||||1|0"},
        {6, "ACK|1|3|C__|||||||2|0"},
        // A preset passes the token routine twice: two tokens are expanded.
        {7, "G04|1|2|G54|00707|07|||||2|0"},
        {8, "G00|0|0|(WORKPIECE4)|Workpiece4||||||1|0"},
        {9, "FTR|0|0|(FOOTER)|Footer||||||1|0"},
    });
}

TEST_F(BuildTest, AFailedBuildLeavesTheJobAsItWas) {
    build();
    cell.run("Quorvel.db", "insert into Syntax values ('BAD', 1, 'ALL', 'BAD', 1, '', 'x', "
                           "0, 0, 0, 0, 0, 0);");
    addTemplate(3, {
                       "0, 'HDR', null, null, null, null, null, null, null",
                       "1, 'G90', 0, '', '', '', '', '', ''",
                       "1, 'BAD', 0, '1', '', '', '', '', ''",
                   });
    useTemplate(3);
    form->FilterJobTables();
    try {
        form->BuildJobFromTemplate();
        ADD_FAILURE() << "no error";
    } catch (const JobError& e) {
        EXPECT_NE(std::string(e.what()).find("Syntax BAD item 1"), std::string::npos) << e.what();
    }
    EXPECT_EQ(DM().tableJobs.state(), store::DatasetState::Browse);
    EXPECT_EQ(DM().tableJobs.recordCount(), 30);
    EXPECT_EQ(jobField(6, "Script_Line"), "M98 P0007");
    // The boxes follow the rows that are there.
    DM().tableJobs.first();
    EXPECT_EQ(form->dbeValue1->text().toStdString(), "Header");
}

TEST_F(BuildTest, JobKeysAndPalletTokens) {
    TJobWizardInfo info;
    const auto keyError = [&](const std::string& pallet, int job) -> std::string {
        info.PalletNumber = pallet;
        info.JobNumber = job;
        form->SetWizardInfo(info);
        try {
            form->TakeJobKeys();
        } catch (const JobError& e) {
            return e.what();
        }
        return "";
    };
    EXPECT_NE(keyError("abc", 1).find("'abc'"), std::string::npos);
    EXPECT_NE(keyError("32768", 1).find("32768"), std::string::npos);
    EXPECT_NE(keyError("7", 70000).find("70000"), std::string::npos);
    EXPECT_EQ(keyError("-32768", 32767), "");
    EXPECT_EQ(form->PalletNumber(), -32768);
    EXPECT_EQ(form->JobNumber(), 32767);

    const auto expand = [&](const std::string& pallet, std::string value) {
        info.PalletNumber = pallet;
        form->SetWizardInfo(info);
        form->ExpandProgramToken(value);
        return value;
    };
    EXPECT_EQ(expand("7", "A[P2]B[P2]"), "A07B[P2]");
    EXPECT_EQ(expand("7", "x[P"), "x007");
    EXPECT_EQ(expand("7", "[P0]"), "7");
    EXPECT_EQ(expand("-5", "[P4]"), "-0005");
    // A pallet that is no number fails only where a token needs it.
    EXPECT_EQ(expand("x", "no token"), "no token");
    EXPECT_THROW(expand("x", "[P4]"), JobError);
}

// The server run: the connection dies while the rows of a rebuild go in. The error names the
// server, and the job is as it was (the server rolled the transaction back).
TEST_F(BuildTest, ALostConnectionLeavesTheJobAsItWasAndNamesTheServer) {
    const auto server = store::serverLocation(cell.tmp.file("Quorvel.db"));
    if (!server)
        GTEST_SKIP() << "a cell on the database server only";
    build();
    const std::string before = jobField(6, "Script_Line");
    // Past the module: a trigger that ends its own connection at the tenth new row.
    PGconn* admin = PQconnectdb(server->uri.c_str());
    ASSERT_EQ(PQstatus(admin), CONNECTION_OK) << PQerrorMessage(admin);
    PGresult* done = PQexec(
        admin, ("set search_path to " + server->schema +
                "; create sequence cut_at; create function cut() returns trigger language plpgsql "
                "as $f$ begin if nextval('cut_at') = 10 then perform pg_terminate_backend("
                "pg_backend_pid()); end if; return new; end $f$; create trigger cut after insert "
                "on jobs__rows for each row execute function cut()")
                   .c_str());
    EXPECT_EQ(PQresultStatus(done), PGRES_COMMAND_OK) << PQerrorMessage(admin);
    PQclear(done);
    PQfinish(admin);
    try {
        form->BuildJobFromTemplate();
        ADD_FAILURE() << "the build went through";
    } catch (const std::exception& e) {
        EXPECT_NE(std::string(e.what()).find("connection to the database server " +
                                             server->shownUri + " was lost"),
                  std::string::npos)
            << e.what();
    }
    form.reset();
    FreeDlgTemplate();
    FreeDM();
    CreateDM();
    DM().OpenStore(cell.dir(), cell.dir(), 0, 0);
    EXPECT_EQ(read("select count(*) from Jobs where Pallet_Number = 7 and Job_Number = 1"), "30");
    EXPECT_EQ(read("select Script_Line from Jobs where Pallet_Number = 7 and Line_Number = 6"),
              before);
}
