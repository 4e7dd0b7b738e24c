// `quorvel job --script` choosing the demo cell's machine: the FOCAS library is found by its bare
// name through LD_LIBRARY_PATH, here one of the stand-ins.
#include "QuorvelRun.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using apptest::quorvel;
using apptest::Run;

// The script on the demo cell, with the stand-in as the system's FOCAS library.
Run script(const std::string& lines) {
    testsupport::TempDir dir;
    quorvel("init --cell '" + dir.str() + "'");
    testsupport::writeFile(dir.file("script"), lines);
    const std::string folder = std::filesystem::path(FOCAS_STANDIN).parent_path().string();
    return quorvel("job --cell '" + dir.str() + "' --pallet 7 --script '" + dir.file("script") +
                       "'",
                   dir.file("stderr"),
                   "LD_LIBRARY_PATH='" + folder + "' FOCAS_STANDIN_PROGRAMS='12=(ROUGH)|3='");
}

} // namespace

TEST(QuorvelJobMachine, ChoosingTheMachineListsItsPrograms) {
    auto run = script("machine 2\nprograms\nmachine 1\nprograms\n");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "0012    (ROUGH)\n0003    \n");
    EXPECT_EQ(run.err.find("message:"), std::string::npos) << run.err;
}
