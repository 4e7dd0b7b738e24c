#include "common/Format.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <optional>

namespace common {

namespace {

// A real as decimal digits: value = 0.d1d2d3... * 10^exponent.
struct Decimal {
    bool negative = false;
    std::string digits; // no leading or trailing zeros; empty for zero
    int exponent = 0;
};

constexpr int kSignificantDigits = 15;

bool continuationByte(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// The number of characters of UTF-8 text (bytes that do not continue a sequence).
std::size_t characterCount(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return !continuationByte(c); }));
}

// The length in bytes of the first `count` characters of UTF-8 text.
std::size_t characterPrefix(std::string_view text, std::size_t count) {
    std::size_t at = 0;
    for (std::size_t n = 0; n < count && at < text.size(); ++n) {
        ++at;
        while (at < text.size() && continuationByte(text[at]))
            ++at;
    }
    return at;
}

void stripTrailingZeros(Decimal& d) {
    while (!d.digits.empty() && d.digits.back() == '0')
        d.digits.pop_back();
    if (d.digits.empty())
        d.exponent = 0;
}

// The finite value rounded to 15 significant digits.
Decimal toDecimal(double value) {
    Decimal d;
    d.negative = value < 0;
    if (value == 0)
        return d;
    char buf[64];
    const auto res = std::to_chars(buf, buf + sizeof buf, std::fabs(value),
                                   std::chars_format::scientific, kSignificantDigits - 1);
    // buf holds "d.ddddddddddddddde[+-]xx".
    const std::string_view text(buf, static_cast<std::size_t>(res.ptr - buf));
    const std::size_t e = text.find('e');
    for (std::size_t i = 0; i < e; ++i)
        if (text[i] != '.')
            d.digits += text[i];
    d.exponent = std::atoi(std::string(text.substr(e + 1)).c_str()) + 1;
    stripTrailingZeros(d);
    return d;
}

// Keeps the first `count` digits, a tie going away from zero; count may be zero or negative.
void roundToDigits(Decimal& d, int count) {
    if (count >= static_cast<int>(d.digits.size()))
        return;
    if (count < 0) {
        d.digits.clear();
        d.exponent = 0;
        return;
    }
    const bool up = d.digits[static_cast<std::size_t>(count)] >= '5';
    d.digits.resize(static_cast<std::size_t>(count));
    if (up) {
        while (!d.digits.empty() && d.digits.back() == '9')
            d.digits.pop_back();
        if (d.digits.empty()) {
            d.digits = "1";
            ++d.exponent;
        } else {
            ++d.digits.back();
        }
    }
    stripTrailingZeros(d);
}

void roundToDecimals(Decimal& d, int decimals) {
    if (!d.digits.empty())
        roundToDigits(d, d.exponent + decimals);
}

// The digit at `index` counted from the first significant digit; '0' outside them.
char digitAt(const Decimal& d, long index) {
    return index >= 0 && index < static_cast<long>(d.digits.size())
               ? d.digits[static_cast<std::size_t>(index)]
               : '0';
}

// Integer digits of a rounded value, without leading zeros ("" below 1).
std::string integerDigits(const Decimal& d) {
    std::string out;
    for (int i = 0; i < d.exponent; ++i)
        out += digitAt(d, i);
    return out;
}

std::string fractionDigits(const Decimal& d, int decimals) {
    std::string out;
    for (int j = 0; j < decimals; ++j)
        out += digitAt(d, static_cast<long>(d.exponent) + j);
    return out;
}

std::string groupThousands(const std::string& digits) {
    std::string out;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        out += digits[i];
        const std::size_t remaining = digits.size() - 1 - i;
        if (remaining > 0 && remaining % 3 == 0)
            out += ',';
    }
    return out;
}

std::optional<std::string> nonFiniteText(double value) {
    if (std::isnan(value))
        return "NAN";
    if (std::isinf(value))
        return value < 0 ? "-INF" : "INF";
    return std::nullopt;
}

std::string fixedText(double value, int decimals, bool thousands) {
    if (auto special = nonFiniteText(value))
        return *special;
    Decimal d = toDecimal(value);
    roundToDecimals(d, decimals);
    std::string ints = integerDigits(d);
    if (ints.empty())
        ints = "0";
    std::string out = d.negative && !d.digits.empty() ? "-" : "";
    out += thousands ? groupThousands(ints) : ints;
    if (decimals > 0)
        out += '.' + fractionDigits(d, decimals);
    return out;
}

std::string exponentText(double value, int digits) {
    if (auto special = nonFiniteText(value))
        return *special;
    Decimal d = toDecimal(value);
    roundToDigits(d, digits);
    std::string out = d.negative && !d.digits.empty() ? "-" : "";
    out += digitAt(d, 0);
    if (digits > 1) {
        out += '.';
        for (int i = 1; i < digits; ++i)
            out += digitAt(d, i);
    }
    const int exp = d.digits.empty() ? 0 : d.exponent - 1;
    std::string expDigits = std::to_string(std::abs(exp));
    if (expDigits.size() < 3)
        expDigits.insert(0, 3 - expDigits.size(), '0');
    out += exp < 0 ? "E-" : "E+";
    return out + expDigits;
}

std::string generalText(double value, int precision) {
    if (auto special = nonFiniteText(value))
        return *special;
    Decimal d = toDecimal(value);
    roundToDigits(d, precision);
    if (d.digits.empty())
        return "0";
    std::string out = d.negative ? "-" : "";
    const int size = static_cast<int>(d.digits.size());
    if (d.exponent > precision || d.exponent < -4) {
        out += d.digits[0];
        if (size > 1)
            out += '.' + d.digits.substr(1);
        return out + 'E' + std::to_string(d.exponent - 1);
    }
    if (d.exponent <= 0)
        return out + "0." + std::string(static_cast<std::size_t>(-d.exponent), '0') + d.digits;
    out += integerDigits(d);
    if (size > d.exponent)
        out += '.' + d.digits.substr(static_cast<std::size_t>(d.exponent));
    return out;
}

// ---- format ----

constexpr int kMaxWidth = 1 << 20;

class Formatter {
public:
    Formatter(std::string_view fmt, const std::vector<FormatArg>& args) : fmt_(fmt), args_(args) {}

    std::string run() {
        std::string out;
        while (pos_ < fmt_.size()) {
            const char c = fmt_[pos_++];
            if (c != '%') {
                out += c;
                continue;
            }
            if (peek() == '%') {
                ++pos_;
                out += '%';
                continue;
            }
            out += specifier();
        }
        return out;
    }

private:
    [[noreturn]] void fail() const { throw FormatError(fmt_); }

    char peek() const { return pos_ < fmt_.size() ? fmt_[pos_] : '\0'; }

    const FormatArg& nextArg() {
        if (next_ >= args_.size())
            fail();
        return args_[next_++];
    }

    // Digits or "*"; nullopt when neither stands here.
    std::optional<long> number() {
        if (peek() == '*') {
            ++pos_;
            const FormatArg& arg = nextArg();
            if (!arg.isInteger())
                fail();
            return static_cast<long>(
                std::clamp<std::int64_t>(arg.integer(), -kMaxWidth - 1L, kMaxWidth + 1L));
        }
        if (peek() < '0' || peek() > '9')
            return std::nullopt;
        long value = 0;
        while (peek() >= '0' && peek() <= '9') {
            value = std::min<long>(value * 10 + (fmt_[pos_++] - '0'), kMaxWidth + 1L);
        }
        return value;
    }

    std::string specifier() {
        std::optional<long> first = number();
        if (first && peek() == ':') {
            ++pos_;
            if (*first < 0)
                fail();
            next_ = static_cast<std::size_t>(*first);
            first.reset();
        }
        bool left = false;
        if (!first && peek() == '-') {
            ++pos_;
            left = true;
        }
        long width = 0;
        if (first)
            width = *first;
        else if (auto w = number())
            width = *w;
        width = std::labs(width);
        std::optional<long> precision;
        if (peek() == '.') {
            ++pos_;
            precision = std::max(0L, number().value_or(0));
        }
        if (width > kMaxWidth || precision.value_or(0) > kMaxWidth)
            fail();
        if (pos_ >= fmt_.size())
            fail();
        const char type = static_cast<char>(fmt_[pos_++] | 0x20);
        std::string text = convert(type, precision);
        // Width counts characters, not the bytes of their UTF-8 form.
        const auto pad = static_cast<std::size_t>(width);
        const std::size_t length = characterCount(text);
        if (length < pad)
            text.insert(left ? text.size() : 0, pad - length, ' ');
        return text;
    }

    std::string convert(char type, std::optional<long> precision) {
        const int prec = static_cast<int>(precision.value_or(-1));
        switch (type) {
        case 'd':
        case 'u':
        case 'x': {
            const FormatArg& arg = nextArg();
            if (!arg.isInteger())
                fail();
            return integerText(type, arg, prec);
        }
        case 's': {
            const FormatArg& arg = nextArg();
            if (arg.kind() != FormatArg::Kind::Text)
                fail();
            // Precision keeps whole characters: a cut never splits a UTF-8 sequence.
            if (precision)
                return arg.text().substr(
                    0, characterPrefix(arg.text(), static_cast<std::size_t>(*precision)));
            return arg.text();
        }
        case 'f':
        case 'n':
        case 'e':
        case 'g': {
            const FormatArg& arg = nextArg();
            if (arg.kind() != FormatArg::Kind::Real)
                fail();
            if (type == 'e')
                return exponentText(arg.real(), precision ? std::clamp(prec, 1, 18) : 15);
            if (type == 'g')
                return generalText(arg.real(), precision ? std::clamp(prec, 1, 18) : 15);
            return fixedText(arg.real(), precision ? std::min(prec, 18) : 2, type == 'n');
        }
        default:
            fail();
        }
    }

    static std::string integerText(char type, const FormatArg& arg, int precision) {
        std::string digits;
        bool negative = false;
        const bool narrow = arg.kind() == FormatArg::Kind::Int32;
        const std::int64_t value = arg.integer();
        if (type == 'd') {
            negative = value < 0;
            // Through unsigned, so that the lowest 64-bit value has a magnitude too.
            const std::uint64_t magnitude = negative ? 0 - static_cast<std::uint64_t>(value)
                                                     : static_cast<std::uint64_t>(value);
            digits = std::to_string(magnitude);
        } else {
            const std::uint64_t bits =
                narrow ? static_cast<std::uint32_t>(value) : static_cast<std::uint64_t>(value);
            char buf[32];
            const auto res = std::to_chars(buf, buf + sizeof buf, bits, type == 'x' ? 16 : 10);
            digits.assign(buf, res.ptr);
            if (type == 'x')
                for (auto& c : digits)
                    if (c >= 'a' && c <= 'f')
                        c = static_cast<char>(c - 'a' + 'A');
        }
        if (precision > 0 && digits.size() < static_cast<std::size_t>(precision))
            digits.insert(0, static_cast<std::size_t>(precision) - digits.size(), '0');
        return negative ? "-" + digits : digits;
    }

    std::string_view fmt_;
    const std::vector<FormatArg>& args_;
    std::size_t pos_ = 0;
    std::size_t next_ = 0;
};

// ---- formatFloat ----

// What one section of a picture asks for.
struct Picture {
    int intCount = 0;      // digit places before the point
    int firstIntZero = -1; // index of the first '0' among them
    int decCount = 0;      // digit places behind the point
    int lastDecZero = 0;   // places behind the point up to and including the last '0'
    bool thousands = false;
    bool scientific = false;
};

// Calls `literal(text)` for quoted text and plain characters, `special(index)` for the
// characters that have a meaning: 0 # . , and the scientific marker "E+" (index at the E).
template <typename Literal, typename Special>
void walkSection(std::string_view section, Literal literal, Special special) {
    std::size_t i = 0;
    while (i < section.size()) {
        const char c = section[i];
        if (c == '\'' || c == '"') {
            const std::size_t end = section.find(c, i + 1);
            const std::size_t stop = end == std::string_view::npos ? section.size() : end;
            literal(section.substr(i + 1, stop - i - 1));
            i = stop == section.size() ? stop : stop + 1;
        } else if (c == '0' || c == '#' || c == '.' || c == ',') {
            special(i++);
        } else if ((c == 'E' || c == 'e') && i + 1 < section.size() &&
                   (section[i + 1] == '+' || section[i + 1] == '-')) {
            i = special(i);
        } else {
            literal(section.substr(i++, 1));
        }
    }
}

// Splits at ';' outside quotes; at most three sections count.
std::vector<std::string_view> splitSections(std::string_view picture) {
    std::vector<std::string_view> sections;
    std::size_t start = 0;
    char quote = 0;
    for (std::size_t i = 0; i < picture.size(); ++i) {
        const char c = picture[i];
        if (quote) {
            if (c == quote)
                quote = 0;
        } else if (c == '\'' || c == '"') {
            quote = c;
        } else if (c == ';') {
            sections.push_back(picture.substr(start, i - start));
            start = i + 1;
        }
    }
    sections.push_back(picture.substr(start));
    if (sections.size() > 3)
        sections.resize(3);
    return sections;
}

// Index past the exponent marker at `at`: the E, its sign and the zeros after it.
std::size_t exponentEnd(std::string_view section, std::size_t at) {
    std::size_t i = at + 2;
    while (i < section.size() && section[i] == '0')
        ++i;
    return i;
}

Picture scanSection(std::string_view section) {
    Picture p;
    bool afterPoint = false;
    bool done = false; // digit places after the exponent belong to it
    walkSection(
        section, [](std::string_view) {},
        [&](std::size_t i) -> std::size_t {
            const char c = section[i];
            if (done)
                return c == 'E' || c == 'e' ? i + 2 : i + 1;
            if (c == 'E' || c == 'e') {
                p.scientific = true;
                done = true;
                return exponentEnd(section, i);
            }
            if (c == '.')
                afterPoint = true;
            else if (c == ',')
                p.thousands = true;
            else if (!afterPoint) {
                if (c == '0' && p.firstIntZero < 0)
                    p.firstIntZero = p.intCount;
                ++p.intCount;
            } else {
                ++p.decCount;
                if (c == '0')
                    p.lastDecZero = p.decCount;
            }
            return i + 1;
        });
    if (p.scientific)
        p.thousands = false;
    return p;
}

std::string pictureText(std::string_view section, double value, bool minus) {
    const Picture p = scanSection(section);
    // Numbers of 18 integer digits and more, beyond the digits a real holds, read as general.
    if (!p.scientific && std::fabs(value) >= 1e17)
        return floatToStr(value);
    Decimal d = toDecimal(value);
    std::string ints;
    std::string frac;
    int exp = 0;
    if (p.scientific) {
        roundToDigits(d, std::max(1, p.intCount + p.decCount));
        exp = d.digits.empty() ? 0 : d.exponent - p.intCount;
        for (int i = 0; i < p.intCount; ++i)
            ints += digitAt(d, i);
        for (int j = 0; j < p.decCount; ++j)
            frac += digitAt(d, p.intCount + j);
    } else {
        roundToDecimals(d, p.decCount);
        ints = integerDigits(d);
        const int minInt = p.firstIntZero < 0 ? 0 : p.intCount - p.firstIntZero;
        if (static_cast<int>(ints.size()) < minInt)
            ints.insert(0, static_cast<std::size_t>(minInt) - ints.size(), '0');
        frac = fractionDigits(d, p.decCount);
    }
    int keep = p.decCount;
    while (keep > p.lastDecZero && frac[static_cast<std::size_t>(keep) - 1] == '0')
        --keep;

    std::string out = minus ? "-" : "";
    const int intSize = static_cast<int>(ints.size());
    auto emitInts = [&](int from, int to) {
        for (int k = from; k < to; ++k) {
            out += ints[static_cast<std::size_t>(k)];
            const int remaining = intSize - 1 - k;
            if (p.thousands && remaining > 0 && remaining % 3 == 0)
                out += ',';
        }
    };
    int intSeen = 0;
    int decSeen = 0;
    bool afterPoint = false;
    bool done = false;
    walkSection(
        section, [&](std::string_view text) { out += text; },
        [&](std::size_t i) -> std::size_t {
            const char c = section[i];
            if (done)
                return c == 'E' || c == 'e' ? i + 2 : i + 1;
            if (c == 'E' || c == 'e') {
                done = true;
                const std::size_t end = exponentEnd(section, i);
                std::string expDigits = std::to_string(std::abs(exp));
                const std::size_t minDigits = std::min<std::size_t>(end - i - 2, 4);
                if (expDigits.size() < minDigits)
                    expDigits.insert(0, minDigits - expDigits.size(), '0');
                out += c;
                if (exp < 0 || section[i + 1] == '+')
                    out += exp < 0 ? '-' : '+';
                out += expDigits;
                return end;
            }
            if (c == '.') {
                if (!afterPoint) {
                    afterPoint = true;
                    if (p.intCount == 0)
                        emitInts(0, intSize);
                    if (keep > 0)
                        out += '.';
                }
            } else if (c == ',') {
                // Only switches the separators on.
            } else if (!afterPoint) {
                if (intSeen == 0) {
                    emitInts(0, std::max(0, intSize - (p.intCount - 1)));
                } else {
                    const int fromRight = p.intCount - 1 - intSeen;
                    if (fromRight < intSize)
                        emitInts(intSize - 1 - fromRight, intSize - fromRight);
                }
                ++intSeen;
            } else {
                if (decSeen < keep)
                    out += frac[static_cast<std::size_t>(decSeen)];
                ++decSeen;
            }
            return i + 1;
        });
    return out;
}

} // namespace

FormatError::FormatError(std::string_view formatText)
    : std::runtime_error("Format '" + std::string(formatText) +
                         "' invalid or incompatible with argument") {}

std::string format(std::string_view formatText, const std::vector<FormatArg>& args) {
    return Formatter(formatText, args).run();
}

std::string formatFloat(std::string_view picture, double value) {
    if (!std::isfinite(value))
        return floatToStr(value);
    const std::vector<std::string_view> sections = splitSections(picture);
    std::string_view section = sections[0];
    bool minus = false;
    if (value == 0 && sections.size() > 2 && !sections[2].empty())
        section = sections[2];
    else if (value < 0 && sections.size() > 1 && !sections[1].empty())
        section = sections[1];
    else
        minus = value < 0;
    if (section.empty())
        return floatToStr(value);
    return pictureText(section, value, minus);
}

std::string floatToStr(double value) { return generalText(value, kSignificantDigits); }

} // namespace common
