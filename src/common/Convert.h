#pragma once
// Number conversions with the classic Object Pascal rules, used everywhere values are converted.
//
// Integers: leading blanks allowed, trailing not; optional sign; "$1F" (and "0x1F") is hexadecimal;
// the value must fit 32 bits signed ("$FFFFFFFF" fills them: -1). Reals: blanks around, then the
// whole text must parse, decimal point whatever the locale, optional exponent, ".5" and "5." valid;
// no hex, inf or nan; a number too small for a real reads as 0, one too large is no number.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace common {

std::optional<std::int32_t> tryStrToInt(std::string_view text);
std::int32_t strToIntDef(std::string_view text, std::int32_t fallback);
std::optional<double> tryStrToFloat(std::string_view text);
double strToFloatDef(std::string_view text, double fallback);

std::string intToStr(std::int64_t value);

// Upper-cases ASCII a to z only.
std::string upperCase(std::string_view text);
// Case-insensitive equality over ASCII letters.
bool sameText(std::string_view a, std::string_view b);
// Removes leading and trailing characters at or below blank.
std::string trim(std::string_view text);

} // namespace common
