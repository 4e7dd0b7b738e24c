#pragma once
// Text for the machine's files: one byte per character in Windows-1252.
#include <string>
#include <string_view>

namespace common {

// UTF-8 text as Windows-1252 bytes; a character the code page cannot hold, and a byte that is no
// valid UTF-8, becomes '?'.
std::string toWindows1252(std::string_view utf8);

// Windows-1252 bytes as UTF-8 text; a byte the code page leaves undefined becomes U+FFFD.
std::string fromWindows1252(std::string_view bytes);

} // namespace common
