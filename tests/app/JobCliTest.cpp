// `quorvel job` as a script or a user runs it on the demo cell: the report of an unattended run,
// the operator's script, bad input, and the notice of a changed template.
#include "QuorvelRun.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <regex>
#include <vector>

namespace {

using apptest::Run;

// A demo cell and the job command on it; standard output and standard error apart.
class JobCli {
public:
    JobCli() { run("init --cell '" + dir.str() + "'"); }
    Run job(const std::string& arguments) {
        return run("job --cell '" + dir.str() + "' " + arguments);
    }
    Run script(const std::string& lines, const std::string& arguments = "--pallet 7") {
        testsupport::writeFile(dir.file("script"), lines);
        return job(arguments + " --script '" + dir.file("script") + "'");
    }
    // The first column of the first row of a query on the local database.
    std::string local(const std::string& statements) const {
        std::string first;
        sqlite3* db = nullptr;
        sqlite3_open(dir.file("Quorvel.db").c_str(), &db);
        const auto keep = [](void* out, int, char** values, char**) {
            *static_cast<std::string*>(out) = values[0] ? values[0] : "";
            return 1;
        };
        sqlite3_exec(db, statements.c_str(), keep, &first, nullptr);
        sqlite3_close(db);
        return first;
    }
    testsupport::TempDir dir;

private:
    Run run(const std::string& arguments) const {
        return apptest::quorvel(arguments, dir.file("stderr"));
    }
};

const std::string version =
    "select Value_2 from Jobs where Pallet_Number = 7 and Job_Number = 1 and Line_Number = 0";

} // namespace

TEST(QuorvelJob, UnattendedRunPrintsTheReportAndScriptsDriveTheWizard) {
    JobCli cli;
    auto run = cli.job("--pallet 7 --unattended");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("\nMachineText: FANUC Robocut\nPalletNumber: 7\n"), std::string::npos)
        << run.out;

    run = cli.script("program 7\nincrement 500\nnumbers on\nsample\nrows\n"
                     "numbers off\nsample\nrows\nmachines\n");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto numbered = run.out.find("%\nO0007\nN500 G92\nN1000 M30\n%\n");
    EXPECT_NE(numbered, std::string::npos) << run.out;
    EXPECT_GT(run.out.find("%\nO0007\nG92\nM30\n%\n", numbered), numbered) << run.out;
    EXPECT_NE(run.out.find("(Select a machine)\n01.02     Robocut C400\n"), std::string::npos);
    // Line 0 as "rows" shows it: Value_4 500 and Value_6 7 both times; Value_5 0 after "off".
    const std::regex header("\n0\t0\tHDR(\t[^\t\n]*){6}\t500\t([^\t\n]*)\t7\t");
    std::vector<std::string> numbers;
    for (std::sregex_iterator it(run.out.begin(), run.out.end(), header), end; it != end; ++it)
        numbers.push_back((*it)[2]);
    ASSERT_EQ(numbers.size(), 2u) << run.out;
    EXPECT_EQ(numbers[1], "0");
}

TEST(QuorvelJob, BadInputFailsWithAClearMessage) {
    JobCli cli;
    auto run = cli.script("rows\nfly away\n");
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_NE(run.err.find("line 2"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("fly"), std::string::npos) << run.err;
    run = cli.script("\nprogram abc\n");
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_NE(run.err.find("line 2"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("'abc'"), std::string::npos) << run.err;
    // Pallet and job numbers are a usage matter: quorvel numbers them from 1.
    for (const char* bad : {"--pallet x7", "--pallet 0", "--pallet 7 --job 0"}) {
        run = cli.job(std::string(bad) + " --unattended");
        EXPECT_EQ(run.exitCode, 2) << bad;
        EXPECT_NE(run.err.find("from 1 to 32767"), std::string::npos) << run.err;
    }
    run = cli.job("--pallet 7 --template 9 --unattended");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.err.find("template 9"), std::string::npos) << run.err;
}

TEST(QuorvelJob, ChangedTemplateAsksThroughTheGateAndCancelKeepsTheJob) {
    JobCli cli;
    ASSERT_EQ(cli.job("--pallet 7 --unattended").exitCode, 0);
    const std::string built = cli.local(version);
    // The template gains a line at its end, journalled under a new version.
    cli.local("insert into TemplateData select 1, count(*), 1, 'FLUSH', 0, '', '', '', '', '', "
              "'', '', 0, 0 from TemplateData where Template_ID = 1;"
              "insert into TemplateVersion select 1, Version + 1, 0, (select max(Item) from "
              "TemplateData where Template_ID = 1), 'ADD', 'FLUSH', 1 from TemplateName;"
              "update TemplateName set Version = Version + 1 where Template_ID = 1");
    auto run = cli.job("--pallet 7 --unattended --gate on --answer cancel");
    EXPECT_NE(run.err.find("message: The template has changed."), std::string::npos) << run.err;
    EXPECT_EQ(cli.local(version), built);
}

TEST(JobCli, ScriptWalksTheTreeThroughTheOperatorsHandlers) {
    JobCli cli;
    const auto line11 = [&] {
        return cli.local("select Image || '|' || Value_1 || '|' || Script_Line from Jobs "
                         "where Line_Number = 11");
    };
    // A bad value typed into the dwell time: Next keeps the line open.
    auto walk = cli.script("select 11\nvalue 1 abc\nnext\n");
    ASSERT_EQ(walk.exitCode, 0) << walk.err;
    EXPECT_EQ(line11(), "1|abc|G04 X0.0"); // a value that is no number composes as 0
    // A good one: Next finishes the line; the script view shows the composed program.
    walk = cli.script("select 11\nvalue 1 3.75\nnext\nview\n");
    ASSERT_EQ(walk.exitCode, 0) << walk.err;
    EXPECT_EQ(line11(), "2|3.75|G04 X3.75");
    EXPECT_NE(walk.out.find("\nG04 X3.75\n"), std::string::npos) << walk.out;
    EXPECT_EQ(cli.script("select 99999\n").exitCode, 2);
}
