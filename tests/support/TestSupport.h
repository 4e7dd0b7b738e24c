#pragma once
// Shared test fixtures: temporary directories and database files that vanish with the test.
#include <filesystem>
#include <string>

namespace testsupport {

// A fresh directory under the system's temporary folder, removed with everything in it. When
// QUORVEL_TEST_SERVER names a database server, the folder is a server cell on it: its databases
// are schemas there.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::filesystem::path& path() const { return path_; }
    std::string str() const { return path_.string(); }
    // Path of a file inside the directory.
    std::string file(const std::string& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

// True in the run on the database server (QUORVEL_TEST_SERVER set).
bool onTestServer();

// Writes `text` to `path`, replacing it.
void writeFile(const std::string& path, const std::string& text);
std::string readFile(const std::string& path);

} // namespace testsupport
