#include "common/Windows1252.h"

#include <array>
#include <cstdint>

namespace common {

namespace {

// Code points of the bytes 0x80..0x9F; 0 where the code page leaves the byte undefined.
constexpr std::array<char32_t, 32> HighControls = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

char toByte(char32_t code) {
    if (code < 0x80 || (code >= 0xA0 && code <= 0xFF))
        return static_cast<char>(code);
    for (std::size_t i = 0; i < HighControls.size(); ++i)
        if (HighControls[i] != 0 && HighControls[i] == code)
            return static_cast<char>(0x80 + i);
    return '?';
}

} // namespace

std::string toWindows1252(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    std::size_t i = 0;
    while (i < utf8.size()) {
        const auto lead = static_cast<unsigned char>(utf8[i]);
        if (lead < 0x80) {
            out += static_cast<char>(lead);
            ++i;
            continue;
        }
        int length = 0;
        char32_t code = 0;
        if ((lead & 0xE0) == 0xC0) {
            length = 2;
            code = lead & 0x1F;
        } else if ((lead & 0xF0) == 0xE0) {
            length = 3;
            code = lead & 0x0F;
        } else if ((lead & 0xF8) == 0xF0) {
            length = 4;
            code = lead & 0x07;
        }
        bool valid = length > 0 && i + length <= utf8.size();
        for (int k = 1; valid && k < length; ++k) {
            const auto next = static_cast<unsigned char>(utf8[i + k]);
            valid = (next & 0xC0) == 0x80;
            code = (code << 6) | (next & 0x3F);
        }
        // Overlong forms and surrogates are no characters.
        static constexpr char32_t Smallest[] = {0, 0, 0x80, 0x800, 0x10000};
        if (valid &&
            (code < Smallest[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)))
            valid = false;
        if (!valid) {
            out += '?';
            ++i;
            continue;
        }
        out += toByte(code);
        i += length;
    }
    return out;
}

std::string fromWindows1252(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        char32_t code = byte;
        if (byte >= 0x80 && byte < 0xA0)
            code = HighControls[byte - 0x80] != 0 ? HighControls[byte - 0x80] : 0xFFFD;
        if (code < 0x80) {
            out += static_cast<char>(code);
        } else if (code < 0x800) {
            out += static_cast<char>(0xC0 | (code >> 6));
            out += static_cast<char>(0x80 | (code & 0x3F));
        } else {
            out += static_cast<char>(0xE0 | (code >> 12));
            out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (code & 0x3F));
        }
    }
    return out;
}

} // namespace common
