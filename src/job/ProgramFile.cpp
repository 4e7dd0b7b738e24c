#include "job/ProgramFile.h"

#include "common/Windows1252.h"
#include "job/Job.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace job {

ProgramFile::ProgramFile(std::string path)
    : path_(std::move(path)), temporary_(path_ + ".partial") {
    file_ = std::fopen(temporary_.c_str(), "wb");
    if (!file_)
        fail("Cannot create the master program");
}

ProgramFile::~ProgramFile() {
    if (file_)
        std::fclose(file_);
    if (!completed_) {
        std::error_code ec;
        std::filesystem::remove(temporary_, ec);
    }
}

void ProgramFile::writeLine(const std::string& text) {
    const std::string bytes = common::toWindows1252(text) + "\r\n";
    if (std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size())
        fail("Cannot write the master program");
}

void ProgramFile::complete() {
    const int closed = std::fclose(file_);
    file_ = nullptr;
    if (closed != 0)
        fail("Cannot write the master program");
    std::error_code ec;
    std::filesystem::rename(temporary_, path_, ec);
    if (ec)
        throw JobError("Cannot put the master program in place as " + path_ + ": " + ec.message());
    completed_ = true;
}

void ProgramFile::fail(const char* what) {
    throw JobError(std::string(what) + " " + path_ + ": " + std::strerror(errno));
}

} // namespace job
