#pragma once
// Text formatting with the classic Object Pascal rules: Format, FormatFloat and FloatToStr.
//
// Numbers are always written with a decimal point, whatever the process locale. Rounding is
// decimal: a real is first taken to 15 significant digits (the number as it was typed), and a tie
// at the wanted place goes away from zero, so 1.005 to two decimals is 1.01 and -2.5 to none is -3.
#include <concepts>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace common {

// A format string that is invalid, or whose specifiers do not match the arguments given.
class FormatError : public std::runtime_error {
public:
    explicit FormatError(std::string_view formatText);
};

// One argument of format(): an integer (32 or 64 bits wide), a real or a text.
class FormatArg {
public:
    enum class Kind { Int32, Int64, Real, Text };

    // Signed integers up to 32 bits are 32 bits wide for %u and %x; all others are 64 bits.
    template <std::integral T>
    requires(!std::same_as<T, bool> && !std::same_as<T, char>) FormatArg(T value)
        : kind_(std::is_signed_v<T> && sizeof(T) <= 4 ? Kind::Int32 : Kind::Int64),
          integer_(static_cast<std::int64_t>(value)) {}
    FormatArg(double value) : kind_(Kind::Real), real_(value) {}
    FormatArg(char value) : kind_(Kind::Text), text_(1, value) {}
    FormatArg(const char* value) : kind_(Kind::Text), text_(value ? value : "") {}
    FormatArg(std::string value) : kind_(Kind::Text), text_(std::move(value)) {}
    FormatArg(std::string_view value) : kind_(Kind::Text), text_(value) {}
    FormatArg(bool) = delete;

    Kind kind() const { return kind_; }
    bool isInteger() const { return kind_ == Kind::Int32 || kind_ == Kind::Int64; }
    std::int64_t integer() const { return integer_; }
    double real() const { return real_; }
    const std::string& text() const { return text_; }

private:
    Kind kind_;
    std::int64_t integer_ = 0;
    double real_ = 0;
    std::string text_;
};

// Format: "%" [index ":"] ["-"] [width] ["." precision] type, where index, width and precision
// are digits or "*" (taken from the next argument, which must be an integer); "%%" is a percent.
// Types, upper or lower case:
//   d  integer; precision is the minimum number of digits, filled with zeros
//   u  integer read as unsigned; x  the same in upper-case hexadecimal
//   s  text; precision is the longest text kept
//   f  real, fixed; precision is the number of decimals (2 if absent, at most 18)
//   n  like f, with thousands separators ","
//   e  real, "d.ddd E+ddd"; precision is the number of digits (15 if absent)
//   g  real, shortest of fixed and scientific; precision is significant digits (15 if absent)
// Width pads with blanks on the left, on the right with "-"; a leading 0 is only part of the
// width. An unknown or incomplete specifier, a missing argument or one of the wrong kind throws
// FormatError.
std::string format(std::string_view formatText, const std::vector<FormatArg>& args);

// FormatFloat: a numeric picture of up to three sections "positive;negative;zero".
// "0" digit or zero, "#" digit or nothing, "." decimal point, "," thousands separators,
// "E+" "E-" "e+" "e-" scientific with up to four exponent digits, '...' and "..." literal text;
// any other character stands as it is. A negative number without a negative section gets "-" in
// front of the whole text, also when it rounds to zero. An empty section, and a number of 1e17 or
// more under a picture without exponent, give floatToStr's text. Never throws.
std::string formatFloat(std::string_view picture, double value);

// FloatToStr: 15 significant digits, fixed unless the number needs more than 15 integer digits or
// is below 0.00001, then "1.5E-10" style.
std::string floatToStr(double value);

} // namespace common
