#pragma once
// File name helpers with the classic meanings, on the native separator.
#include <string>
#include <string_view>

namespace common {

inline constexpr char PathDelimiter = '/';

// The directory with one separator at its end ("" stays "" + separator).
std::string includeTrailingPathDelimiter(std::string_view directory);
// The part after the last separator: the bare file name.
std::string extractFileName(std::string_view path);
// The extension from the last dot of the bare name on ("." included), or "".
std::string extractFileExt(std::string_view path);
// The part up to and including the last separator.
std::string extractFilePath(std::string_view path);

} // namespace common
