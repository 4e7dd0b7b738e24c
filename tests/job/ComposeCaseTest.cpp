// The compose command: one tab-separated case a line (mask, type, syntax, six values), composed
// as the job wizard composes a Syntax row with the job row's values.
#include "app/QuorvelRun.h"

#include <gtest/gtest.h>

#include <filesystem>

TEST(ComposeCommand, PrintsOneLinePerCaseAndGoesOnPastBadCases) {
    const std::string exe = QUORVEL_EXE;
    ASSERT_TRUE(std::filesystem::is_regular_file(exe)) << exe;
    const std::pair<const char*, const char*> cases[] = {
        {"G01 X%+0.000f Y%+0.000f\t1\tG01\t12.5\t-3\t\t\t\t", "G01 X+12.500 Y-3.000"},
        {"%.3f\t1\t\tabc\t\t\t\t\t", "0.000"},
        {"M98 P%.4d L%d\t3\tM98\t12\t3\tx\ty\tz\tw", "M98 P0012 L3"},
        {"(%s)\t1\t(comment)\tROUGH CUT\t\t\t\t\t", "(ROUGH CUT)"},
        {"#%s=%0.000f\t3\t#___=__\t510\t0.125\t\t\t\t", "#510=0.125"},
        {"%s%%\t1\tSYN\t1\t\t\t\t\t", "Not Handled"},
        {"G90\t0\tG90 TEXT\t\t\t\t\t\t", "G90 TEXT"},
        {"%d %d %d %d %d %d %d\t1\tSEVEN\t1\t2\t3\t4\t5\t6", "SEVEN"},
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
         {"quorvel compose: case 10: An empty mask has no specifiers to count\n", "'one'",
          "not 10"})
        EXPECT_NE(run.err.find(error), std::string::npos) << run.err;
}
