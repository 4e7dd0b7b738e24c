// Files the operator picks as a value: the backup copy, and the program number inside the file.
// Files are read and written as bytes (Windows-1252), with carriage return and line feed ends.
#include "job/Job.h"

#include "common/Services.h"

#include <fstream>
#include <iterator>

namespace {

std::string readBytes(const std::string& fileName) {
    std::ifstream in(fileName, std::ios::binary);
    if (!in)
        throw JobError("Cannot open the file '" + fileName + "'");
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad())
        throw JobError("Cannot read the file '" + fileName + "'");
    return bytes;
}

void writeBytes(const std::string& fileName, const std::string& bytes) {
    std::ofstream out(fileName, std::ios::binary | std::ios::trunc);
    if (!out)
        throw JobError("Cannot write the file '" + fileName + "'");
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.flush();
    if (!out)
        throw JobError("Cannot write the file '" + fileName + "'");
}

// True when a line feed stands without a carriage return before it.
bool hasBareLineFeed(const std::string& bytes) {
    bool afterReturn = false;
    for (char c : bytes) {
        if (c == '\n' && !afterReturn)
            return true;
        afterReturn = c == '\r';
    }
    return false;
}

// The lines of a text file as a classic text reader gives them: a line ends at a carriage return
// or a line feed, and the rest up to and including the next line feed is passed over.
class LineReader {
public:
    explicit LineReader(const std::string& bytes) : bytes_(bytes) {}
    bool eof() const { return pos_ >= bytes_.size(); }
    std::string readLine() {
        const auto end = bytes_.find_first_of("\r\n", pos_);
        std::string line = bytes_.substr(pos_, end == std::string::npos ? end : end - pos_);
        if (end == std::string::npos) {
            pos_ = bytes_.size();
        } else {
            const auto feed = bytes_.find('\n', end);
            pos_ = feed == std::string::npos ? bytes_.size() : feed + 1;
        }
        return line;
    }

private:
    const std::string& bytes_;
    std::size_t pos_ = 0;
};

} // namespace

std::string TdlgJob::BackupFileName(const std::string& FileName) {
    // The extension is the text from the last dot of the name part on.
    const auto slash = FileName.find_last_of('/');
    const auto dot = FileName.find_last_of('.');
    const bool hasExt = dot != std::string::npos && (slash == std::string::npos || dot > slash);
    const std::string stem = hasExt ? FileName.substr(0, dot) : FileName;
    const std::string ext = hasExt ? ".~" + FileName.substr(dot + 1) : "~";
    const std::string backup = stem + ext;
    if (!common::platform().copyFile(FileName, backup, false))
        throw JobError("Cannot copy the file '" + FileName + "' to '" + backup + "'");
    return backup;
}

std::string TdlgJob::ReadProgramNumber(const std::string& FileName) {
    std::string bytes = readBytes(FileName);
    if (hasBareLineFeed(bytes)) {
        // Rewritten from the copy with a carriage return before every bare line feed; the copy
        // stays on disk.
        const std::string copy = readBytes(BackupFileName(FileName));
        bytes.clear();
        bytes.reserve(copy.size() + copy.size() / 16);
        char previous = '\0';
        for (char c : copy) {
            if (c == '\n' && previous != '\r')
                bytes += '\r';
            bytes += c;
            previous = c;
        }
        writeBytes(FileName, bytes);
    }

    // The first line that starts with "O" (any case) or ";"; empty lines are passed over, and at
    // the end of the file the last line read stands.
    LineReader reader(bytes);
    std::string line = reader.readLine();
    while (!reader.eof()) {
        if (!line.empty() && (line[0] == 'O' || line[0] == 'o'))
            break;
        if (!line.empty() && line[0] == ';')
            break;
        line = reader.readLine();
    }
    if (line.empty())
        throw JobError("The file '" + FileName + "' has no program number line");

    // Characters 2 to 5, up to the first that is no digit.
    std::string digits;
    for (std::size_t i = 1; i < line.size() && i <= 4; ++i) {
        if (line[i] < '0' || line[i] > '9')
            break;
        digits += line[i];
    }
    return digits;
}
