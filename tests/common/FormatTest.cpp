#include "common/Format.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

using common::floatToStr;
using common::format;
using common::FormatArg;
using common::FormatError;
using common::formatFloat;

namespace {

struct FormatCase {
    std::string fmt;
    std::vector<FormatArg> args;
    std::string text;
};

void expectFormats(const std::vector<FormatCase>& cases) {
    for (const auto& c : cases)
        EXPECT_EQ(format(c.fmt, c.args), c.text) << c.fmt;
}

struct PictureCase {
    std::string picture;
    double value;
    std::string text;
};

void expectPictures(const std::vector<PictureCase>& cases) {
    for (const auto& c : cases)
        EXPECT_EQ(formatFloat(c.picture, c.value), c.text) << c.picture << " with " << c.value;
}

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr std::int64_t kMin64 = std::numeric_limits<std::int64_t>::min();

} // namespace

TEST(Format, IntegersTakePrecisionAsMinimumDigits) {
    expectFormats({
        {"%.0d", {0}, "0"},
        {"%-5d|", {12}, "12   |"},
        {"%05d", {12}, "   12"}, // a leading 0 is only width
        {"%10.4d|", {-12}, "     -0012|"},
        {"%d", {kMin64}, "-9223372036854775808"},
        // 32-bit arguments stay 32 bits wide for %u and %x.
        {"%x", {-1}, "FFFFFFFF"},
        {"%x", {std::int64_t{-1}}, "FFFFFFFFFFFFFFFF"},
        {"%u", {-1}, "4294967295"},
    });
}

TEST(Format, TextsTakePrecisionAsLongestKept) {
    expectFormats({
        {"%S", {std::string("up")}, "up"},
        // Width and precision count characters, not the bytes of their UTF-8 form.
        {"%5.2s|", {"\u00e9t\u00e9"}, "   \u00e9t|"},
        {"%s%s", {'a', std::string_view("bc")}, "abc"},
        {"%s", {static_cast<const char*>(nullptr)}, ""},
    });
}

TEST(Format, RealsRoundTiesAwayFromZeroOnTheTypedDigits) {
    expectFormats({
        {"%f", {1.5}, "1.50"},
        {"%.2f", {-1.005}, "-1.01"},
        // A number that rounds to nothing loses its sign here.
        {"%.1f", {-0.04}, "0.0"},
        // At most 18 decimals.
        {"%.20f", {0.1}, "0.100000000000000000"},
        {"%.0n", {-999.5}, "-1,000"}, // thousands, after the carry
        {"%.3e", {0.00012345}, "1.23E-004"},
        {"%.3e", {9.9999}, "1.00E+001"},
        {"%e", {0.0}, "0.00000000000000E+000"},
        {"%g", {1234.5}, "1234.5"},
        {"%g", {1.5e-5}, "0.000015"},
        {"%.3g", {1234.5}, "1.23E3"},
        {"%f|%e|%g", {std::nan(""), kInf, -kInf}, "NAN|INF|-INF"},
    });
}

TEST(Format, ArgumentIndexStarArgumentsAndPercent) {
    expectFormats({
        {"%1:s %s", {"a", "b", "c"}, "b c"}, // the next argument follows the indexed one
        {"%1:-4d|", {1, 2}, "2   |"},
        {"%*.*d", {4, 4, 12}, "0012"},
        {"%*d|", {-5, 3}, "    3|"},
        {"%.*s|", {-1, "abc"}, "|"},
        {"%2:*d|", {1, 5, 4, 7}, "   7|"},
        {"100%% of %d%%", {5}, "100% of 5%"},
        {"no specifier", {1, 2}, "no specifier"},
    });
}

TEST(Format, InvalidOrIncompatibleSpecifiersThrowNamingTheFormat) {
    const std::vector<FormatCase> bad = {
        {"X%+d", {5}, ""},
        {"%d", {"a"}, ""},
        {"%f", {5}, ""},
        {"%s", {1.5}, ""},
        {"%d", {}, ""},
        {"%*d", {"a", 1}, ""},
        {"100%", {}, ""},
        {"%*:d", {-1, 1}, ""},
        {"%9999999999d", {1}, ""},
        {"%.9999999999f", {1.5}, ""},
    };
    for (const auto& c : bad)
        EXPECT_THAT([&] { format(c.fmt, c.args); },
                    testing::ThrowsMessage<FormatError>("Format '" + c.fmt +
                                                        "' invalid or incompatible with argument"));
}

TEST(FormatFloat, TiesGoAwayFromZeroOnTheTypedDigitsAndSignsStay) {
    expectPictures({
        {"0.00", 1.005, "1.01"},
        {"0.00", 1.0049999999, "1.00"},
        {"0.0##", 2.0005, "2.001"},
        // A negative rounding to zero keeps its sign; negative zero has none.
        {"0.000", -0.0004, "-0.000"},
        {"0.000", -0.0, "0.000"},
        {"0.00;(0.00);\"z\"", -0.0, "z"},
        {"0.00;(0.00);\"z\"", -0.001, "(0.00)"},
    });
}

TEST(FormatFloat, DigitPlacesPointThousandsAndLiterals) {
    expectPictures({
        {"+0.000", -3, "-+3.000"}, // the composer's picture; the sign goes first
        {"#", 0, ""},
        {"0.", 1.5, "2"},
        {"00.#0", 1.5, "01.50"},
        {"#.00", 0.5, ".50"},
        {".00", 12.5, "12.50"},
        {"00-00", 123456, "1234-56"},
        {"0.0,0", 1234.5, "1,234.50"},
        {"\"0.00", 1.5, "0.00"},
    });
}

TEST(FormatFloat, SectionsForPositiveNegativeAndZero) {
    const char* pictures[] = {"#.##", "#,##0.00;(#,##0.00)", "#,##0.00;;Zero"};
    const char* expected[][4] = {
        {"1234", "-1234", ".5", ""},
        {"1,234.00", "(1,234.00)", "0.50", "0.00"},
        {"1,234.00", "-1,234.00", "0.50", "Zero"},
    };
    const double values[] = {1234, -1234, 0.5, 0};
    for (std::size_t p = 0; p < std::size(pictures); ++p)
        for (std::size_t v = 0; v < 4; ++v)
            EXPECT_EQ(formatFloat(pictures[p], values[v]), expected[p][v])
                << pictures[p] << " with " << values[v];
    expectPictures({
        {";0.00", -1.5, "1.50"},
        {";0.00", 1.5, "1.5"},
        {"0;1;2;3", 0, "2"},
        {"\"a;b\"0;\"c;d\"0", -1, "c;d1"},
    });
}

TEST(FormatFloat, ScientificHugeValuesAndLongPictures) {
    const std::string zeros(5000, '0');
    expectPictures({
        {"0.00E-00", 1234.5, "1.23E03"},
        {"0.00E-00", 0.00012345, "1.23E-04"},
        {"0.###E+0", 1234.5, "1.235E+3"},
        {"#.###E-0", 0, "0E0"},
        {"00.00E+00", 1234.5, "12.35E+02"},
        {"0E+0", 9.5, "1E+1"},
        {"0.0e+0", 1.5, "1.5e+0"},
        {"0", 12345678901234567.0, "12345678901234600"},
        {"0", 1e17, "1E17"},
        {zeros, 12, std::string(4998, '0') + "12"},
        {"0." + zeros, 0.5, "0.5" + std::string(4999, '0')},
        {std::string(5000, ';'), 3, "3"},
        {"0.00", std::nan(""), "NAN"},
    });
}

TEST(FloatToStr, FifteenSignificantDigitsInGeneralForm) {
    const std::pair<double, const char*> cases[] = {
        {-0.0, "0"},
        {2.0 / 3, "0.666666666666667"},
        {123456789012345, "123456789012345"},
        {1234567890123456, "1.23456789012346E15"},
        {999999999999999.9, "1E15"},
        {0.000009, "9E-6"},
        {5e-324, "4.94065645841247E-324"},
        {kInf, "INF"},
    };
    for (const auto& [value, text] : cases)
        EXPECT_EQ(floatToStr(value), text) << text;
}
