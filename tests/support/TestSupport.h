#pragma once
// Shared test fixtures: temporary directories and database files that vanish with the test.
#include <filesystem>
#include <string>

namespace testsupport {

// A fresh directory under the system's temporary folder, removed with everything in it.
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

// Writes `text` to `path`, replacing it.
void writeFile(const std::string& path, const std::string& text);
std::string readFile(const std::string& path);

} // namespace testsupport
