// Copying a job's files: what is left behind, overwriting, Cancel, the window and the tick counter.
#include "boundary/Exports.h"
#include "common/Scripted.h"
#include "common/Services.h"
#include "dialogs/Export.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

class CopyFilesTest : public ::testing::Test {
protected:
    std::vector<std::string> names(const fs::path& dir) {
        std::vector<std::string> out;
        for (const auto& e : fs::directory_iterator(dir))
            out.push_back(e.path().filename().string());
        std::sort(out.begin(), out.end());
        return out;
    }
    static bool exportShown() {
        for (auto* w : QApplication::topLevelWidgets())
            if (qobject_cast<TdlgExport*>(w) && w->isVisible())
                return true;
        return false;
    }

    common::ScriptedUi ui;
    common::ScriptedHostApplication host;
    common::ScriptedPlatform platform;
    common::ScopedServices services{{&ui, &platform, &host}};
    testsupport::TempDir source, target;
};

} // namespace

TEST_F(CopyFilesTest, LeavesProgramsJobFilesAndDirectoriesBehindAndOverwrites) {
    for (auto name : {"A.NC", "b.nc", "JOB.DAT", "job.idx", "notes.txt"})
        testsupport::writeFile(source.file(name), name);
    fs::create_directories(source.path() / "sub");
    testsupport::writeFile(source.file("sub/inner.txt"), "inner");
    fs::create_directories(source.path() / ".cache"); // hidden: not a plain directory, tried
    testsupport::writeFile(target.file("notes.txt"), "old");

    TdlgExport form;
    boundary::CopyJobFiles(form, source.str(), target.str(), true);
    EXPECT_TRUE(form.FDone);
    EXPECT_THAT(names(target.path()), ElementsAre("notes.txt"));
    EXPECT_EQ(testsupport::readFile(target.file("notes.txt")), "notes.txt");
    EXPECT_EQ(form.txtFileName->text(), "notes.txt");
    EXPECT_EQ(form.txtFromDir->text().toStdString(), source.str());
    const std::string to = target.str() + "/";
    EXPECT_THAT(platform.copies, ElementsAre(source.file(".cache") + " -> " + to + ".cache",
                                             source.file("notes.txt") + " -> " + to + "notes.txt"));

    // A trailing separator changes only what the window shows.
    platform.copies.clear();
    boundary::CopyJobFiles(form, source.str() + "/", target.str(), true);
    EXPECT_EQ(form.txtFromDir->text().toStdString(), source.str() + "/");
    EXPECT_EQ(platform.copies.size(), 2u);

    EXPECT_THAT(boundary::JobFilesToCopy(source.str(), false),
                ElementsAre(".cache", "A.NC", "JOB.DAT", "b.nc", "job.idx", "notes.txt"));
    EXPECT_TRUE(boundary::JobFilesToCopy(source.file("missing"), false).empty());
    EXPECT_TRUE(boundary::IsProgramFile(".nc"));
    EXPECT_FALSE(boundary::IsProgramFile("x.NC.bak"));
    EXPECT_FALSE(boundary::IsProgramFile("dir.nc/file"));
}

TEST_F(CopyFilesTest, MissingDestinationGoesOnAndCancelStopsAfterTheCurrentFile) {
    for (auto name : {"a.txt", "b.txt", "c.txt"})
        testsupport::writeFile(source.file(name), name);
    TdlgExport form;
    boundary::CopyJobFiles(form, source.str(), target.file("missing"), true);
    EXPECT_TRUE(form.FDone);
    EXPECT_EQ(platform.copies.size(), 3u);
    EXPECT_FALSE(fs::exists(target.file("missing")));

    host.onProcessMessages = [&] { form.btnCancel->click(); };
    boundary::CopyJobFiles(form, source.str(), target.str(), true);
    EXPECT_TRUE(form.FDone);
    EXPECT_THAT(names(target.path()), ElementsAre("a.txt"));
}

TEST_F(CopyFilesTest, WindowStaysUpOneSecond) {
    platform.tickStep = 100;
    int shown = 0;
    host.onProcessMessages = [&] { shown += exportShown(); };
    boundary::CopyFiles(source.str(), target.str());
    // One message round after painting, then ten rounds of 100 ms on the fake clock.
    EXPECT_EQ(host.processMessagesCalls, 11);
    EXPECT_EQ(shown, 11);
}

TEST_F(CopyFilesTest, PumpMessagesTakesTheFirstTickAsSigned) {
    platform.clock = 5;
    platform.tickStep = 250;
    boundary::PumpMessages(1000);
    EXPECT_EQ(host.processMessagesCalls, 4);

    host.processMessagesCalls = 0;
    platform.clock = 0x80000000u;
    platform.tickStep = 1;
    boundary::PumpMessages(1000);
    EXPECT_EQ(host.processMessagesCalls, 1);
}
