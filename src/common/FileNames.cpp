#include "common/FileNames.h"

namespace common {

std::string includeTrailingPathDelimiter(std::string_view directory) {
    std::string result(directory);
    if (result.empty() || result.back() != PathDelimiter)
        result += PathDelimiter;
    return result;
}

std::string extractFileName(std::string_view path) {
    const auto at = path.rfind(PathDelimiter);
    return std::string(at == std::string_view::npos ? path : path.substr(at + 1));
}

std::string extractFileExt(std::string_view path) {
    const auto at = path.find_last_of(std::string(".") + PathDelimiter);
    if (at == std::string_view::npos || path[at] != '.')
        return {};
    return std::string(path.substr(at));
}

std::string extractFilePath(std::string_view path) {
    const auto at = path.rfind(PathDelimiter);
    return at == std::string_view::npos ? std::string() : std::string(path.substr(0, at + 1));
}

} // namespace common
