// Files chosen as values: the "~" backup copy and the program number read from the file.
#include "job/Job.h"
#include "support/CellFixture.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

class JobFilesTest : public ::testing::Test {
protected:
    std::string write(const std::string& name, const std::string& bytes) {
        const std::string path = cell.tmp.file(name);
        testsupport::writeFile(path, bytes);
        return path;
    }
    std::string errorOf(const std::string& path) {
        try {
            TdlgJob::ReadProgramNumber(path);
        } catch (const JobError& e) {
            return e.what();
        }
        return "";
    }
    testsupport::CellFixture cell;
};

} // namespace

TEST_F(JobFilesTest, ReadsTheDigitsOfTheFirstProgramLineAndRepairsLineEnds) {
    const std::pair<std::string, std::string> cases[] = {
        {"O12345 (LONG)\r\nM30\r\n", "1234"},
        {";123\r\n", "123"},
        {"o77\r\n", "77"},
        {"O12X4\r\n", "12"},
        {"%\r\n\r\n\r\nO55\r\nM30\r\n", "55"},
        {"(NO TRAILING END)\r\nO4321", "4321"},
        // Without an "O" or ";" line the last line read stands.
        {"G90\r\nG91\r\n", "91"},
        // A lone carriage return ends a line; the rest up to the line feed is passed over.
        {"G90\rO9\r\nO8\r\n", "8"},
        {"\xA7\xE9\r\nO66\r\n", "66"},
    };
    int n = 0;
    for (const auto& [bytes, number] : cases) {
        const std::string path = write("p" + std::to_string(n++) + ".NC", bytes);
        EXPECT_EQ(TdlgJob::ReadProgramNumber(path), number) << bytes;
        // Files with proper line ends are left alone.
        EXPECT_EQ(testsupport::readFile(path), bytes);
    }

    // Bare line feeds are repaired from a "~" copy of the original.
    const std::string original = "%\nO1234 (SUB)\r\nG90\nM99\n";
    const std::string path = write("sub.nc", original);
    EXPECT_EQ(TdlgJob::ReadProgramNumber(path), "1234");
    EXPECT_EQ(testsupport::readFile(path), "%\r\nO1234 (SUB)\r\nG90\r\nM99\r\n");
    EXPECT_EQ(testsupport::readFile(cell.tmp.file("sub.~nc")), original);
    EXPECT_EQ(cell.platform.copies.size(), 1u); // the only copy made
}

TEST_F(JobFilesTest, BackupNamesPutATildeBehindTheExtensionDotAndErrorsNameTheFile) {
    std::filesystem::create_directory(cell.tmp.file("d.ir"));
    const std::pair<std::string, std::string> cases[] = {
        {"prog.NC", "prog.~NC"},
        {"prog", "prog~"},
        {"d.ir/prog", "d.ir/prog~"},
        {"d.ir/p.x", "d.ir/p.~x"},
    };
    for (const auto& [name, backup] : cases) {
        const std::string path = write(name, "O1\r\n" + name);
        EXPECT_EQ(TdlgJob::BackupFileName(path), cell.tmp.file(backup));
        EXPECT_EQ(testsupport::readFile(cell.tmp.file(backup)), "O1\r\n" + name);
    }
    // An existing copy is overwritten.
    const std::string path = write("prog.NC", "new");
    TdlgJob::BackupFileName(path);
    EXPECT_EQ(testsupport::readFile(cell.tmp.file("prog.~NC")), "new");
    EXPECT_THROW(TdlgJob::BackupFileName(cell.tmp.file("none.NC")), JobError);

    // Files that cannot be read: the error names the file.
    const std::string missing = cell.tmp.file("missing.NC");
    EXPECT_NE(errorOf(missing).find(missing), std::string::npos);

    // An empty last line with no program line before it.
    const std::string emptyLast = write("emptylast.NC", "G90\r\n\r\n");
    EXPECT_NE(errorOf(emptyLast).find("emptylast.NC"), std::string::npos);

    // The backup copy fails: the file is left as it was.
    const std::string bare = write("bare.NC", "O1\nG90\n");
    cell.platform.failCopies.insert(bare);
    EXPECT_NE(errorOf(bare).find("bare.NC"), std::string::npos);
    EXPECT_EQ(testsupport::readFile(bare), "O1\nG90\n");
}
