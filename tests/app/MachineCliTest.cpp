// `quorvel job --script` choosing the demo cell's machine: the FOCAS library is found by its bare
// name through LD_LIBRARY_PATH, here one of the stand-ins.
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>
#include <sys/wait.h>

namespace {

struct Run {
    int exitCode = -1;
    std::string out, err;
};

Run quorvel(const std::string& environment, const std::string& arguments,
            const testsupport::TempDir& dir) {
    Run run;
    const std::string command = environment + " QT_QPA_PLATFORM=offscreen " + QUORVEL_EXE + " " +
                                arguments + " 2>'" + dir.file("stderr") + "'";
    FILE* pipe = popen(command.c_str(), "r");
    std::array<char, 4096> buffer{};
    while (pipe && std::fgets(buffer.data(), static_cast<int>(buffer.size()), pipe))
        run.out += buffer.data();
    const int status = pipe ? pclose(pipe) : -1;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.err = testsupport::readFile(dir.file("stderr"));
    return run;
}

// The script on the demo cell, with the stand-in as the system's FOCAS library.
Run script(const std::string& lines) {
    testsupport::TempDir dir;
    quorvel("", "init --cell '" + dir.str() + "'", dir);
    testsupport::writeFile(dir.file("script"), lines);
    const std::string folder = std::filesystem::path(FOCAS_STANDIN).parent_path().string();
    return quorvel(
        "LD_LIBRARY_PATH='" + folder + "' FOCAS_STANDIN_PROGRAMS='12=(ROUGH)|3='",
        "job --cell '" + dir.str() + "' --pallet 7 --script '" + dir.file("script") + "'", dir);
}

} // namespace

TEST(QuorvelJobMachine, ChoosingTheMachineListsItsPrograms) {
    auto run = script("machine 2\nprograms\nmachine 1\nprograms\n");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "0012    (ROUGH)\n0003    \n");
    EXPECT_EQ(run.err.find("message:"), std::string::npos) << run.err;

    run = script("machine 3\n");
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_NE(run.err.find("line 1"), std::string::npos) << run.err;
}
