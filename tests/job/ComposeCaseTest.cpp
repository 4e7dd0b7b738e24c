// The compose command's cases equal ComposeScriptLine, in process and through the executable.
#include "JobFixture.h"
#include "app/QuorvelRun.h"

#include <array>
#include <filesystem>
#include <vector>

namespace {

struct Case {
    std::string mask;
    int type;
    std::string syntax;
    std::array<std::string, 6> values;
};

const std::vector<Case>& cases() {
    static const std::vector<Case> all{
        {"G01 X%+0.000f Y%+0.000f", 1, "G01", {"12.5", "-3"}},
        {"%.3f", 1, "", {"abc"}},
        {"M98 P%.4d L%d", 3, "M98", {"12", "3", "x", "y", "z", "w"}},
        {"(%s)", 1, "(comment)", {"ROUGH CUT"}},
        {"#%s=%0.000f", 3, "#___=__", {"510", "0.125"}},
        {"%s%%", 1, "SYN", {"1"}},
        {"G90", 0, "G90 TEXT", {}},
        {"%d %d %d %d %d %d %d", 1, "SEVEN", {"1", "2", "3", "4", "5", "6"}},
    };
    return all;
}

std::string quoted(const std::string& text) {
    std::string out = "'";
    for (char c : text)
        out += c == '\'' ? std::string("''") : std::string(1, c);
    return out + "'";
}

std::string tabbed(const Case& c) {
    std::string line = c.mask + "\t" + std::to_string(c.type) + "\t" + c.syntax;
    for (const auto& v : c.values)
        line += "\t" + v;
    return line;
}

class ComposeCaseTest : public jobtest::JobFixture {
protected:
    void SetUp() override {
        JobFixture::SetUp();
        // One Syntax row and one job row per case.
        std::string sql;
        for (std::size_t i = 0; i < cases().size(); ++i) {
            const auto& c = cases()[i];
            sql += "insert into Syntax values ('CLI', " + std::to_string(i + 1) + ", 'ALL', " +
                   quoted(c.syntax) + ", " + std::to_string(c.type) + ", " + quoted(c.mask) +
                   ", '', 0, 0, 0, 0, 0, 0);";
            sql += "insert into Jobs values (7, 1, " + std::to_string(i) + ", 'CLI', " +
                   std::to_string(i + 1) + ", 1, ''";
            for (const auto& v : c.values)
                sql += ", " + quoted(v);
            sql += ", 1, 0, null);";
        }
        cell.run("Quorvel.db", sql);
        form->BindDataControls();
        form->FilterJobTables();
    }
    // ComposeScriptLine on the case's rows.
    std::string scriptLine(std::size_t i) {
        EXPECT_TRUE(DM().tableJobs.findKey({7, 1, static_cast<int>(i)}));
        EXPECT_TRUE(DM().tableSyntax.findKey({"CLI", static_cast<int>(i + 1)}));
        return form->ComposeScriptLine(false);
    }
};

} // namespace

TEST_F(ComposeCaseTest, CasesComposeAsTheSyntaxRowsDo) {
    for (std::size_t i = 0; i < cases().size(); ++i)
        EXPECT_EQ(TdlgJob::ComposeCaseLine(tabbed(cases()[i])), scriptLine(i))
            << tabbed(cases()[i]);

    // Missing fields are empty; a bad type and a tenth field are errors.
    EXPECT_EQ(TdlgJob::ComposeCaseLine("(%s)\t1"), "()");
    EXPECT_EQ(TdlgJob::ComposeCaseLine("G90\t0\tG90 TEXT"), "G90 TEXT");
    EXPECT_THROW(TdlgJob::ComposeCaseLine("%d\tone\t\t1"), JobError);
    EXPECT_THROW(TdlgJob::ComposeCaseLine("%d\t1\t\t1\t2\t3\t4\t5\t6\t7"), JobError);
    EXPECT_THROW(TdlgJob::ComposeCaseLine(""), JobError);
}

TEST_F(ComposeCaseTest, ExecutablePrintsOneLinePerCase) {
    const std::string exe = QUORVEL_EXE;
    ASSERT_TRUE(std::filesystem::is_regular_file(exe)) << exe;

    std::string input;
    std::string expected;
    for (std::size_t i = 0; i < cases().size(); ++i) {
        input += tabbed(cases()[i]) + "\n";
        expected += scriptLine(i) + "\n";
    }
    // A bad case leaves an empty line in its place, its error goes to standard error, and the
    // run goes on.
    input += "\t1\n(%s)\t1\t\tLAST\r\n";
    expected += "\n(LAST)\n";
    const std::string casesFile = cell.tmp.file("cases.tsv");
    testsupport::writeFile(casesFile, input);

    const auto run = apptest::quorvel("compose < '" + casesFile + "'", cell.tmp.file("err.txt"));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, expected);
    EXPECT_NE(run.err.find("quorvel compose: case " + std::to_string(cases().size() + 1) +
                           ": An empty mask has no specifiers to count\n"),
              std::string::npos)
        << run.err;
}
