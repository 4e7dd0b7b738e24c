// The compose command: one tab-separated case a line (mask, type, syntax, six values), composed
// as the job wizard composes a Syntax row with the job row's values.
#include "app/QuorvelRun.h"

#include <gtest/gtest.h>

#include <filesystem>

TEST(ComposeCommand, PrintsOneLinePerCaseAndGoesOnPastBadCases) {
    const std::string exe = QUORVEL_EXE;
    ASSERT_TRUE(std::filesystem::is_regular_file(exe)) << exe;
    const std::pair<const char*, const char*> cases[] = {
        // The masks themselves are Composer's; here the fields of a case.
        {"M98 P%.4d L%d\t3\tM98\t12\t3\tx\ty\tz\tw", "M98 P0012 L3"},
        // Missing fields are empty.
        {"(%s)\t1", "()"},
        // A bad case (empty mask, a type that is no number, ten fields) leaves an empty line in
        // its place and its error on standard error.
        {"\t1", ""},
        {"%d\tone\t\t1", ""},
        {"%d\t1\t\t1\t2\t3\t4\t5\t6\t7", ""},
        {"(%s)\t1\t\tLAST\r", "(LAST)"},
    };
    std::string input;
    std::string expected;
    for (const auto& [line, composed] : cases) {
        input += std::string(line) + "\n";
        expected += std::string(composed) + "\n";
    }
    testsupport::TempDir dir;
    testsupport::writeFile(dir.file("cases.tsv"), input);

    const auto run =
        apptest::quorvel("compose < '" + dir.file("cases.tsv") + "'", dir.file("err.txt"));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, expected);
    for (const char* error :
         {"quorvel compose: case 3: An empty mask has no specifiers to count\n", "'one'", "not 10"})
        EXPECT_NE(run.err.find(error), std::string::npos) << run.err;
}
