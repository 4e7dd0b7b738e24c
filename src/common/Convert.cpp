#include "common/Convert.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <limits>

namespace common {

std::optional<std::int32_t> tryStrToInt(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && text[i] == ' ')
        ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
        negative = text[i] == '-';
        ++i;
    }
    int base = 10;
    if (i < text.size() && text[i] == '$') {
        base = 16;
        ++i;
    } else if (i + 1 < text.size() && text[i] == '0' &&
               (text[i + 1] == 'x' || text[i + 1] == 'X')) {
        base = 16;
        i += 2;
    }
    if (i >= text.size())
        return std::nullopt;
    std::uint64_t value = 0;
    for (; i < text.size(); ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        int digit;
        if (c >= '0' && c <= '9')
            digit = c - '0';
        else if (base == 16 && c >= 'a' && c <= 'f')
            digit = c - 'a' + 10;
        else if (base == 16 && c >= 'A' && c <= 'F')
            digit = c - 'A' + 10;
        else
            return std::nullopt;
        value = value * static_cast<unsigned>(base) + static_cast<unsigned>(digit);
        if (value > 0xFFFFFFFFull)
            return std::nullopt;
    }
    if (base == 16) {
        // Hexadecimal fills the 32 bits: $FFFFFFFF is -1.
        auto bits = static_cast<std::uint32_t>(value);
        if (negative)
            bits = 0u - bits;
        return static_cast<std::int32_t>(bits);
    }
    const std::uint64_t limit = negative ? 2147483648ull : 2147483647ull;
    if (value > limit)
        return std::nullopt;
    return negative ? static_cast<std::int32_t>(-static_cast<std::int64_t>(value))
                    : static_cast<std::int32_t>(value);
}

std::int32_t strToIntDef(std::string_view text, std::int32_t fallback) {
    auto v = tryStrToInt(text);
    return v ? *v : fallback;
}

std::optional<double> tryStrToFloat(std::string_view text) {
    std::size_t b = 0, e = text.size();
    while (b < e && text[b] == ' ')
        ++b;
    while (e > b && text[e - 1] == ' ')
        --e;
    if (b == e)
        return std::nullopt;
    auto isDigit = [&](std::size_t at) { return at < e && text[at] >= '0' && text[at] <= '9'; };
    // Check the shape: [sign] digits [. digits] [e [sign] digits], with at least one digit.
    // Along the way note the decimal magnitude: the power of ten just above the number.
    std::size_t i = b;
    const bool negative = text[i] == '-';
    if (text[i] == '+' || text[i] == '-')
        ++i;
    std::size_t digits = 0;
    bool significant = false;
    long magnitude = 0;
    for (; isDigit(i); ++i, ++digits) {
        significant = significant || text[i] != '0';
        if (significant)
            ++magnitude;
    }
    if (i < e && text[i] == '.') {
        for (++i; isDigit(i); ++i, ++digits) {
            significant = significant || text[i] != '0';
            if (!significant)
                --magnitude;
        }
    }
    if (digits == 0)
        return std::nullopt;
    if (i < e && (text[i] == 'e' || text[i] == 'E')) {
        ++i;
        const bool expNegative = i < e && text[i] == '-';
        if (i < e && (text[i] == '+' || text[i] == '-'))
            ++i;
        if (!isDigit(i))
            return std::nullopt;
        long exponent = 0;
        for (; isDigit(i); ++i)
            exponent = std::min(exponent * 10 + (text[i] - '0'), 100000L);
        magnitude += expNegative ? -exponent : exponent;
    }
    if (i != e)
        return std::nullopt;
    // from_chars always reads a decimal point, whatever the process locale.
    std::string copy(text.substr(b, e - b));
    if (copy[0] == '+')
        copy.erase(0, 1);
    double value = 0;
    auto [ptr, ec] = std::from_chars(copy.data(), copy.data() + copy.size(), value);
    if (ec == std::errc::result_out_of_range) {
        // Too small for a real reads as zero; too large is no number.
        if (magnitude > 0)
            return std::nullopt;
        return negative ? -0.0 : 0.0;
    }
    if (ec != std::errc() || ptr != copy.data() + copy.size())
        return std::nullopt;
    return value;
}

double strToFloatDef(std::string_view text, double fallback) {
    auto v = tryStrToFloat(text);
    return v ? *v : fallback;
}

std::string intToStr(std::int64_t value) {
    return std::to_string(value);
}

std::string upperCase(std::string_view text) {
    std::string out(text);
    for (auto& c : out)
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    return out;
}

bool sameText(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        char x = a[i], y = b[i];
        if (x >= 'a' && x <= 'z')
            x = static_cast<char>(x - 'a' + 'A');
        if (y >= 'a' && y <= 'z')
            y = static_cast<char>(y - 'a' + 'A');
        if (x != y)
            return false;
    }
    return true;
}

std::string trim(std::string_view text) {
    std::size_t b = 0, e = text.size();
    while (b < e && static_cast<unsigned char>(text[b]) <= ' ')
        ++b;
    while (e > b && static_cast<unsigned char>(text[e - 1]) <= ' ')
        --e;
    return std::string(text.substr(b, e - b));
}

} // namespace common
