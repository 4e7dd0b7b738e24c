// The quorvel command as a user runs it: exit codes and messages for good and bad input.
#include "QuorvelRun.h"

#include <gtest/gtest.h>

using apptest::quorvel;

TEST(QuorvelCli, TheCellsFixturesAndJobsAsAHostSeesThemAndNoOverwriteWithoutForce) {
    testsupport::TempDir dir;
    const std::string cell = " --cell '" + dir.str() + "/cell'";
    ASSERT_EQ(quorvel("init" + cell).exitCode, 0);
    auto run = quorvel("fixtures" + cell);
    EXPECT_EQ(run.out.rfind("FX-100\t", 0), 0u) << run.out;
    run = quorvel("template new --fixture \"FX'300\" --accept --name N" + cell);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.out.find("not in the cell's fixture list"), std::string::npos) << run.out;

    ASSERT_EQ(quorvel("build --pallet 7" + cell).exitCode, 0);
    run = quorvel("jobs" + cell);
    EXPECT_NE(run.out.find("\n7\t1\t-\t18 of 25\t"), std::string::npos) << run.out;
    EXPECT_EQ(quorvel("job delete --pallet 7" + cell).exitCode, 0);
    EXPECT_EQ(quorvel("jobs" + cell).out, "Pallet\tJob\tTemplate\tFinished\tProgram\n");

    run = quorvel("init" + cell);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.out.find("--force"), std::string::npos) << run.out;
    EXPECT_EQ(quorvel("init --force --empty" + cell).exitCode, 0);
    EXPECT_EQ(quorvel("templates" + cell).out, "0\t(New)\n");
}

TEST(QuorvelCli, BadInputGivesMessagesAndFailure) {
    testsupport::TempDir dir;
    auto run = quorvel("templates --cell '" + dir.str() + "/none'");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.out.find("quorvel init"), std::string::npos) << run.out;
    // 2 for a wrong command line; help and the version are plain output.
    run = quorvel("template modify --id -5 --cell x");
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_NE(run.out.find("not in range 1 to 32767"), std::string::npos) << run.out;
    for (const char* plain : {"", "help", "--version"})
        EXPECT_EQ(quorvel(plain).exitCode, 0) << plain;
    EXPECT_EQ(quorvel("--cell '" + dir.str() + "/none' templates").out,
              quorvel("templates --cell '" + dir.str() + "/none'").out);
    // Without a display a window command says so in a line, instead of the platform's abort.
    run = quorvel("template new --fixture FX-100 --cell x", "",
                  "env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.out.find("no display"), std::string::npos) << run.out;
    // Accepting a new template that has no name would wait for a name forever.
    EXPECT_EQ(quorvel("template new --fixture FX-100 --accept --cell x").exitCode, 2);
    // Blank lines and comments of a case list are no cases.
    testsupport::writeFile(dir.file("cases.tsv"), "# a comment\n\n%d\t1\t\t5\n");
    run = quorvel("compose < '" + dir.file("cases.tsv") + "'");
    EXPECT_EQ(run.out, "5\n");
}

TEST(QuorvelCli, TemplateEditorCommandsForScripts) {
    testsupport::TempDir dir;
    const std::string cell = "--cell '" + dir.str() + "'";
    ASSERT_EQ(quorvel("init " + cell).exitCode, 0);
    auto run = quorvel("template new " + cell +
                       " --fixture FX-200 --workpieces 2 --name 'Two up' --accept");
    ASSERT_EQ(run.exitCode, 0) << run.out;
    run = quorvel("template modify " + cell + " --id 2 --name Renamed --accept");
    EXPECT_EQ(run.exitCode, 0) << run.out;
    run = quorvel("templates " + cell + " --fixture FX-200");
    EXPECT_EQ(run.out, "0\t(New)\n2\tRenamed\n");
    run = quorvel("template modify " + cell + " --id 9 --accept");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.out.find("no template with id 9"), std::string::npos) << run.out;
    // Delete opens its dialog; closed at once, it leaves every template.
    run = quorvel("template delete " + cell + " --close");
    ASSERT_EQ(run.exitCode, 0) << run.out;
    EXPECT_NE(run.out.find("Templates left: 2"), std::string::npos) << run.out;
}

TEST(QuorvelCli, CopyWithoutWindowPrintsTheCopiedNames) {
    testsupport::TempDir from, to;
    for (auto name : {"O1.NC", "JOB.DAT", "b.txt", "a.txt"})
        testsupport::writeFile(from.file(name), name);
    const auto run = quorvel("copy --no-window '" + from.str() + "' '" + to.str() + "'");
    ASSERT_EQ(run.exitCode, 0) << run.out;
    EXPECT_EQ(run.out, "a.txt\nb.txt\n");
    EXPECT_EQ(testsupport::readFile(to.file("b.txt")), "b.txt");
    EXPECT_EQ(quorvel("copy --no-window '" + from.str() + "'").exitCode, 2);
}
