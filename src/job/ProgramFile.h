#pragma once
// The master program as it is written: lines in Windows-1252, each ended by CR LF, gathered under
// a temporary name beside the file and put in its place only when complete, so that a failed
// write never leaves a partial program (an older file of that name stays as it was).
#include <cstdio>
#include <string>

namespace job {

class ProgramFile {
public:
    // Creates the temporary file; raises a JobError naming the file when it cannot.
    explicit ProgramFile(std::string path);
    // Removes the temporary file unless the program was completed.
    ~ProgramFile();
    ProgramFile(const ProgramFile&) = delete;
    ProgramFile& operator=(const ProgramFile&) = delete;

    // One line of UTF-8 text.
    void writeLine(const std::string& text);
    // Closes the file and puts it in place of the program.
    void complete();
    const std::string& path() const { return path_; }

private:
    [[noreturn]] void fail(const char* what);

    std::string path_;
    std::string temporary_;
    std::FILE* file_ = nullptr;
    bool completed_ = false;
};

} // namespace job
