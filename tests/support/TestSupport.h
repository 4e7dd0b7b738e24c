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

#include "common/Scripted.h"
#include "common/Services.h"
#include "store/CellInit.h"

#include <memory>

namespace testsupport {

// A cell directory with both database files, and scripted services installed for the test.
class CellFixture {
public:
    explicit CellFixture(bool demoData = false);
    // Runs a script on one of the cell's files ("ZEL.db" or "Quorvel.db"), outside the module.
    void run(const std::string& file, const std::string& sql) const;
    std::string dir() const { return tmp.str(); }

    TempDir tmp;
    common::ScriptedUi ui;
    common::ScriptedHostApplication host;
    common::ScriptedPlatform platform;

private:
    std::unique_ptr<common::ScopedServices> services_;
};

} // namespace testsupport
