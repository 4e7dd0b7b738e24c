#include "common/Format.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

using common::floatToStr;
using common::format;
using common::FormatError;
using common::formatFloat;

namespace {

// The message of the FormatError that formatting `fmt` throws; "" when nothing is thrown.
std::string formatErrorOf(const std::string& fmt, const std::vector<common::FormatArg>& args) {
    try {
        format(fmt, args);
    } catch (const FormatError& e) {
        return e.what();
    }
    return "";
}

} // namespace

TEST(Format, IntegersTakePrecisionAsMinimumDigits) {
    EXPECT_EQ(format("%d", {42}), "42");
    EXPECT_EQ(format("%.0d", {0}), "0");
    EXPECT_EQ(format("%.0d", {5}), "5");
    EXPECT_EQ(format("%.3d", {7}), "007");
    EXPECT_EQ(format("%.3d", {-7}), "-007");
    EXPECT_EQ(format("%.3d", {12345}), "12345");
    EXPECT_EQ(format("%5d", {0}), "    0");
    EXPECT_EQ(format("%-5d|", {12}), "12   |");
    // A leading zero is part of the width, not a fill.
    EXPECT_EQ(format("%05d", {12}), "   12");
    EXPECT_EQ(format("%10.4d|", {-12}), "     -0012|");
    EXPECT_EQ(format("%-10.3d|", {-5}), "-005      |");
    EXPECT_EQ(format("%1.3d", {5}), "005");
    EXPECT_EQ(format("%D", {5}), "5");
    EXPECT_EQ(format("%.100d", {5}), std::string(99, '0') + "5");
    EXPECT_EQ(format("%d", {std::int64_t{123456789012}}), "123456789012");
    EXPECT_EQ(format("%d", {std::numeric_limits<std::int64_t>::min()}), "-9223372036854775808");
    EXPECT_EQ(format("%.3d", {std::numeric_limits<std::int64_t>::max()}), "9223372036854775807");
}

TEST(Format, UnsignedAndHexadecimalFollowTheArgumentWidth) {
    EXPECT_EQ(format("%x", {255}), "FF");
    EXPECT_EQ(format("%X", {255}), "FF");
    EXPECT_EQ(format("%.4x", {255}), "00FF");
    EXPECT_EQ(format("%5x|%-5x|", {255, 255}), "   FF|FF   |");
    EXPECT_EQ(format("%x", {-1}), "FFFFFFFF");
    EXPECT_EQ(format("%.3x", {-1}), "FFFFFFFF");
    EXPECT_EQ(format("%x", {std::int64_t{-1}}), "FFFFFFFFFFFFFFFF");
    EXPECT_EQ(format("%x", {std::int64_t{4294967296}}), "100000000");
    EXPECT_EQ(format("%u", {-1}), "4294967295");
    EXPECT_EQ(format("%u", {std::int64_t{-1}}), "18446744073709551615");
    EXPECT_EQ(format("%.3u", {5}), "005");
    EXPECT_EQ(format("%u", {4294967295u}), "4294967295");
}

TEST(Format, MasksOfTheSystem) {
    EXPECT_EQ(format("%*.*d", {4, 4, 12}), "0012");
    EXPECT_EQ(format("%*.*d", {3, 3, 1234}), "1234");
    EXPECT_EQ(format("O%4.4d (CMS MAIN PROGRAM)", {1}), "O0001 (CMS MAIN PROGRAM)");
    EXPECT_EQ(format("Pal%.5d", {12}), "Pal00012");
    EXPECT_EQ(format("%04.4d    (%s)", {12, "ROUGH"}), "0012    (ROUGH)");
    EXPECT_EQ(format("%2.2d.%2.2d     %s", {1, 3, "Robocut"}), "01.03     Robocut");
    EXPECT_EQ(format("%2.2d.%2.2d     %s", {123, 3, "M"}), "123.03     M");
    EXPECT_EQ(format("N%d G92", {10}), "N10 G92");
    EXPECT_EQ(format("Unable to connect to %s.%s", {"cnc1", "8193"}),
              "Unable to connect to cnc1.8193");
    EXPECT_EQ(format("This template is being used by %d jobs", {2}),
              "This template is being used by 2 jobs");
    EXPECT_EQ(format("update Jobs set %s = '%s', Path = '%s' where Pallet_Number = %d and "
                     "Job_Number = %d and Line_Number = %d",
                     {"Value_3", "1234", "/nc/P1234.NC", 12, 3, 7}),
              "update Jobs set Value_3 = '1234', Path = '/nc/P1234.NC' where Pallet_Number = 12 "
              "and Job_Number = 3 and Line_Number = 7");
    // Lines of the composer: the final pass sees "%s" for every resolved number.
    EXPECT_EQ(format("M98 P%.4d", {12}), "M98 P0012");
    EXPECT_EQ(format("(%s)", {"ROUGH CUT"}), "(ROUGH CUT)");
    EXPECT_EQ(format("%.3f", {0.0}), "0.000");
    EXPECT_EQ(format("X%sd", {"+5"}), "X+5d");
    EXPECT_EQ(format("%d %.2f", {0, 0.0}), "0 0.00");
}

TEST(Format, TextsTakePrecisionAsLongestKept) {
    EXPECT_EQ(format("%s", {"abc"}), "abc");
    EXPECT_EQ(format("%s", {""}), "");
    EXPECT_EQ(format("%S", {std::string("up")}), "up");
    EXPECT_EQ(format("%.2s", {"abcdef"}), "ab");
    EXPECT_EQ(format("%.0s|", {"abc"}), "|");
    EXPECT_EQ(format("%5.2s|", {"abcdef"}), "   ab|");
    EXPECT_EQ(format("%-5s|", {"ab"}), "ab   |");
    EXPECT_EQ(format("%3s|", {"abcdef"}), "abcdef|");
    EXPECT_EQ(format("%5.1s|", {""}), "     |");
    EXPECT_EQ(format("%s%s", {'a', std::string_view("bc")}), "abc");
    EXPECT_EQ(format("%s", {static_cast<const char*>(nullptr)}), "");
}

TEST(Format, FixedRealsRoundTiesAwayFromZeroOnTheTypedDigits) {
    EXPECT_EQ(format("%f", {1.5}), "1.50");
    EXPECT_EQ(format("%F", {1.5}), "1.50");
    EXPECT_EQ(format("%f", {1.005}), "1.01");
    EXPECT_EQ(format("%f", {2.675}), "2.68");
    EXPECT_EQ(format("%.2f", {-1.005}), "-1.01");
    EXPECT_EQ(format("%.2f", {1.255}), "1.26");
    EXPECT_EQ(format("%.2f", {0.125}), "0.13");
    EXPECT_EQ(format("%.2f", {-0.125}), "-0.13");
    EXPECT_EQ(format("%.0f", {0.5}), "1");
    EXPECT_EQ(format("%.0f", {1.5}), "2");
    EXPECT_EQ(format("%.0f", {2.5}), "3");
    EXPECT_EQ(format("%.0f", {-2.5}), "-3");
    EXPECT_EQ(format("%.0f", {-0.5}), "-1");
    EXPECT_EQ(format("%.f", {1.5}), "2");
    EXPECT_EQ(format("%.1f", {0.05}), "0.1");
    EXPECT_EQ(format("%.1f", {0.25}), "0.3");
    EXPECT_EQ(format("%.1f", {-0.05}), "-0.1");
    EXPECT_EQ(format("%3.1f|", {99.96}), "100.0|");
    EXPECT_EQ(format("%.2f", {9.995}), "10.00");
    // A number that rounds to nothing loses its sign here.
    EXPECT_EQ(format("%.1f", {-0.04}), "0.0");
    EXPECT_EQ(format("%.3f", {-0.0004}), "0.000");
    EXPECT_EQ(format("%.0f", {-0.4}), "0");
    EXPECT_EQ(format("%f", {-0.0}), "0.00");
    EXPECT_EQ(format("%.2f", {1e-20}), "0.00");
    EXPECT_EQ(format("%8.3f|", {-1.5}), "  -1.500|");
    EXPECT_EQ(format("%-8.3f|", {-1.5}), "-1.500  |");
    EXPECT_EQ(format("%.5f", {123456789.123456789}), "123456789.12346");
    // At most 18 decimals, and no digits beyond the fifteenth significant one.
    EXPECT_EQ(format("%.20f", {0.1}), "0.100000000000000000");
    EXPECT_EQ(format("%.17f", {1.0 / 3.0}), "0.33333333333333300");
    EXPECT_EQ(format("%.0f", {1.5e22}), "15000000000000000000000");
    const std::string huge = format("%f", {1e300});
    EXPECT_EQ(huge, "1" + std::string(300, '0') + ".00");
    EXPECT_EQ(format("%f", {-1e300}), "-" + huge);
}

TEST(Format, NumbersWithThousandsSeparators) {
    EXPECT_EQ(format("%n", {1234567.891}), "1,234,567.89");
    EXPECT_EQ(format("%.3n", {-1234.5}), "-1,234.500");
    EXPECT_EQ(format("%n", {0.5}), "0.50");
    EXPECT_EQ(format("%n", {123.0}), "123.00");
    EXPECT_EQ(format("%.0n", {999.5}), "1,000");
    EXPECT_EQ(format("%.0n", {-999.5}), "-1,000");
    EXPECT_EQ(format("%.2n", {-0.001}), "0.00");
    EXPECT_EQ(format("%.0n", {1e15}), "1,000,000,000,000,000");
}

TEST(Format, ScientificAndGeneralReals) {
    EXPECT_EQ(format("%e", {1234.5}), "1.23450000000000E+003");
    EXPECT_EQ(format("%.3e", {-1234.5}), "-1.23E+003");
    EXPECT_EQ(format("%.3e", {0.00012345}), "1.23E-004");
    EXPECT_EQ(format("%.1e", {5.5}), "6E+000");
    EXPECT_EQ(format("%10.3e|", {1.5}), " 1.50E+000|");
    EXPECT_EQ(format("%e", {0.0}), "0.00000000000000E+000");
    EXPECT_EQ(format("%.3e", {9.9999}), "1.00E+001");
    EXPECT_EQ(format("%e", {1e300}), "1.00000000000000E+300");
    EXPECT_EQ(format("%g", {1234.5}), "1234.5");
    EXPECT_EQ(format("%g", {-1.5}), "-1.5");
    EXPECT_EQ(format("%g", {1e-5}), "0.00001");
    EXPECT_EQ(format("%g", {1.5e-5}), "0.000015");
    EXPECT_EQ(format("%g", {1e300}), "1E300");
    EXPECT_EQ(format("%.3g", {1234.5}), "1.23E3");
    EXPECT_EQ(format("%.3g", {0.000123456}), "0.000123");
    EXPECT_EQ(format("%f|%e|%g", {std::nan(""), std::numeric_limits<double>::infinity(),
                                  -std::numeric_limits<double>::infinity()}),
              "NAN|INF|-INF");
}

TEST(Format, ArgumentIndexAndStarArguments) {
    EXPECT_EQ(format("%1:s %0:s", {"a", "b"}), "b a");
    // After an indexed argument the next one follows it.
    EXPECT_EQ(format("%1:s %s", {"a", "b", "c"}), "b c");
    EXPECT_EQ(format("%0:s%0:s%s", {"a", "b"}), "aab");
    EXPECT_EQ(format("%1:-4d|", {1, 2}), "2   |");
    EXPECT_EQ(format("%-*d|", {5, 3}), "3    |");
    EXPECT_EQ(format("%*d|", {-5, 3}), "    3|");
    EXPECT_EQ(format("%*s|", {3, "a"}), "  a|");
    EXPECT_EQ(format("%.*s|", {1, "abc"}), "a|");
    EXPECT_EQ(format("%.*s|", {-1, "abc"}), "|");
    EXPECT_EQ(format("%*.*s|", {5, 2, "abc"}), "   ab|");
    EXPECT_EQ(format("%.*f", {1, 2.25}), "2.3");
    EXPECT_EQ(format("%.*f", {-1, 2.75}), "3");
    EXPECT_EQ(format("%2:*d|", {1, 5, 4, 7}), "   7|");
    EXPECT_EQ(format("%*:s", {2, "x", "y"}), "y");
    EXPECT_EQ(format("100%% of %d%%", {5}), "100% of 5%");
    EXPECT_EQ(format("%%d", {}), "%d");
    EXPECT_EQ(format("", {}), "");
    EXPECT_EQ(format("no specifier", {1, 2}), "no specifier");
}

TEST(Format, InvalidOrIncompatibleSpecifiersThrowNamingTheFormat) {
    EXPECT_EQ(formatErrorOf("X%+d", {5}), "Format 'X%+d' invalid or incompatible with argument");
    EXPECT_EQ(formatErrorOf("%s", {5}), "Format '%s' invalid or incompatible with argument");
    EXPECT_EQ(formatErrorOf("%d", {"a"}), "Format '%d' invalid or incompatible with argument");
    EXPECT_EQ(formatErrorOf("%d", {1.5}), "Format '%d' invalid or incompatible with argument");
    EXPECT_EQ(formatErrorOf("%f", {5}), "Format '%f' invalid or incompatible with argument");
    EXPECT_EQ(formatErrorOf("%x", {1.5}), "Format '%x' invalid or incompatible with argument");
    EXPECT_EQ(formatErrorOf("%d %d", {5}), "Format '%d %d' invalid or incompatible with argument");
    EXPECT_EQ(formatErrorOf("%d", {}), "Format '%d' invalid or incompatible with argument");
    EXPECT_EQ(formatErrorOf("%3:d", {1}), "Format '%3:d' invalid or incompatible with argument");
    EXPECT_EQ(formatErrorOf("%0:d %d %d", {1, 2}),
              "Format '%0:d %d %d' invalid or incompatible with argument");
    EXPECT_EQ(formatErrorOf("%*d", {"a", 1}), "Format '%*d' invalid or incompatible with argument");
    EXPECT_EQ(formatErrorOf("%*:d", {-1, 1}),
              "Format '%*:d' invalid or incompatible with argument");
    EXPECT_EQ(formatErrorOf("100%", {}), "Format '100%' invalid or incompatible with argument");
    for (const char* bad : {"%5", "%-", "%.", "%1:", "% d", "%#d", "%-0:d", "%.3.3d", "%--5d", "%m",
                            "%p", "%-*.*s", "%9999999999d", "%.9999999999f"})
        EXPECT_NE(formatErrorOf(bad, {1, 2, 3, 1.5}), "") << bad;
    EXPECT_THROW(format("%s", {std::nan("")}), std::runtime_error);
}

TEST(FormatFloat, PicturesOfTheComposer) {
    EXPECT_EQ(formatFloat("+0.000", 12.5), "+12.500");
    EXPECT_EQ(formatFloat("+0.000", -3), "-+3.000");
    EXPECT_EQ(formatFloat("+0.000", -1.5), "-+1.500");
    EXPECT_EQ(formatFloat("+0.000", 0), "+0.000");
    EXPECT_EQ(formatFloat("000.000", 1.5), "001.500");
    EXPECT_EQ(formatFloat("+000.000", -1.5), "-+001.500");
    EXPECT_EQ(formatFloat("0", 2.5), "3");
    EXPECT_EQ(formatFloat("0+", 5), "5+");
    EXPECT_EQ(formatFloat("-0", 5), "-5");
    EXPECT_EQ(formatFloat("-0", -5), "--5");
    EXPECT_EQ(formatFloat("0-", -5), "-5-");
}

TEST(FormatFloat, TiesGoAwayFromZeroOnTheTypedDigits) {
    EXPECT_EQ(formatFloat("0.00", 1.005), "1.01");
    EXPECT_EQ(formatFloat("0.00", -1.005), "-1.01");
    EXPECT_EQ(formatFloat("0.00", 2.675), "2.68");
    EXPECT_EQ(formatFloat("0.00", 1.255), "1.26");
    EXPECT_EQ(formatFloat("0.00", 1.245), "1.25");
    EXPECT_EQ(formatFloat("0.00", 8.345), "8.35");
    EXPECT_EQ(formatFloat("0.00", 0.045), "0.05");
    EXPECT_EQ(formatFloat("0.00", 0.125), "0.13");
    EXPECT_EQ(formatFloat("0.00", -0.125), "-0.13");
    EXPECT_EQ(formatFloat("0.00", 0.995), "1.00");
    EXPECT_EQ(formatFloat("0.00", 9.995), "10.00");
    EXPECT_EQ(formatFloat("0.00", 99.995), "100.00");
    EXPECT_EQ(formatFloat("0.00", 1.0049999999), "1.00");
    EXPECT_EQ(formatFloat("0.00", 1.0000000000000002), "1.00");
    EXPECT_EQ(formatFloat("0", 0.5), "1");
    EXPECT_EQ(formatFloat("0", 1.5), "2");
    EXPECT_EQ(formatFloat("0", 2.5), "3");
    EXPECT_EQ(formatFloat("0", -0.5), "-1");
    EXPECT_EQ(formatFloat("0", -2.5), "-3");
    EXPECT_EQ(formatFloat("0", 0.4), "0");
    EXPECT_EQ(formatFloat("0.0", 0.05), "0.1");
    EXPECT_EQ(formatFloat("0.0", -0.25), "-0.3");
    EXPECT_EQ(formatFloat("0.0##", 2.0005), "2.001");
    EXPECT_EQ(formatFloat("0.0##", 2.00049), "2.0");
    EXPECT_EQ(formatFloat("#,##0.00", 999.999), "1,000.00");
    EXPECT_EQ(formatFloat("#", 0.6), "1");
}

TEST(FormatFloat, NegativeRoundingToZeroKeepsItsSignButNegativeZeroHasNone) {
    EXPECT_EQ(formatFloat("0.000", -0.0004), "-0.000");
    EXPECT_EQ(formatFloat("+0.000", -0.0004), "-+0.000");
    EXPECT_EQ(formatFloat("0", -0.4), "-0");
    EXPECT_EQ(formatFloat("#,##0", -0.4), "-0");
    EXPECT_EQ(formatFloat("#", -0.4), "-");
    EXPECT_EQ(formatFloat("0.00", -5e-324), "-0.00");
    EXPECT_EQ(formatFloat("0.000", -0.0), "0.000");
    EXPECT_EQ(formatFloat("0", -0.0), "0");
    EXPECT_EQ(formatFloat("0.00;(0.00);\"z\"", -0.0), "z");
    EXPECT_EQ(formatFloat("0.00;(0.00)", -0.0), "0.00");
    EXPECT_EQ(formatFloat("0.00;(0.00);\"z\"", -0.001), "(0.00)");
    EXPECT_EQ(formatFloat("0.00;(0.00);z", 0.001), "0.00");
}

TEST(FormatFloat, DigitPlacesPointAndThousands) {
    EXPECT_EQ(formatFloat("#", 0), "");
    EXPECT_EQ(formatFloat("#.##", 0), "");
    EXPECT_EQ(formatFloat("#.##", 1.5), "1.5");
    EXPECT_EQ(formatFloat("#.##", 0.5), ".5");
    EXPECT_EQ(formatFloat("0.0##", 1.5), "1.5");
    EXPECT_EQ(formatFloat("0.0##", 1.23456), "1.235");
    EXPECT_EQ(formatFloat("0.###", 1), "1");
    EXPECT_EQ(formatFloat("0.#", 1), "1");
    EXPECT_EQ(formatFloat("0.", 1.5), "2");
    EXPECT_EQ(formatFloat("00.#0", 1.5), "01.50");
    EXPECT_EQ(formatFloat(".00", 0.5), ".50");
    EXPECT_EQ(formatFloat("#.00", 0.5), ".50");
    EXPECT_EQ(formatFloat(".00", 12.5), "12.50");
    EXPECT_EQ(formatFloat("0.0.0", 1.25), "1.25");
    EXPECT_EQ(formatFloat("#0#", 5), "05");
    EXPECT_EQ(formatFloat("##0", 5), "5");
    EXPECT_EQ(formatFloat("00-00", 1234), "12-34");
    EXPECT_EQ(formatFloat("00-00", 123456), "1234-56");
    EXPECT_EQ(formatFloat("00-00", 5), "00-05");
    EXPECT_EQ(formatFloat("#-#", 5), "-5");
    EXPECT_EQ(formatFloat("a0b0c", 1234), "a123b4c");
    EXPECT_EQ(formatFloat("0a0", 5), "0a5");
    EXPECT_EQ(formatFloat("x", 5), "x");
    EXPECT_EQ(formatFloat("x", -5), "-x");
    EXPECT_EQ(formatFloat("#,##0.00", 1234567.891), "1,234,567.89");
    EXPECT_EQ(formatFloat("#,##0.00", -1234567.891), "-1,234,567.89");
    EXPECT_EQ(formatFloat("#,##0.00", 0.5), "0.50");
    EXPECT_EQ(formatFloat("#,##0", 1234567.5), "1,234,568");
    EXPECT_EQ(formatFloat("0,000", 12), "0,012");
    EXPECT_EQ(formatFloat("0,00", 1234567), "1,234,567");
    EXPECT_EQ(formatFloat("#,#", 1234567), "1,234,567");
    EXPECT_EQ(formatFloat("0,0.0", 1234.5), "1,234.5");
    EXPECT_EQ(formatFloat("0.0,0", 1234.5), "1,234.50");
}

TEST(FormatFloat, SectionsAndQuotedLiterals) {
    // Positive, negative and zero, and how empty sections fall back.
    const char* pictures[] = {
        "", "0", "0.00", "#.##", "#,##0.00", "#,##0.00;(#,##0.00)", "#,##0.00;;Zero"};
    const char* expected[][4] = {
        {"1234", "-1234", "0.5", "0"},
        {"1234", "-1234", "1", "0"},
        {"1234.00", "-1234.00", "0.50", "0.00"},
        {"1234", "-1234", ".5", ""},
        {"1,234.00", "-1,234.00", "0.50", "0.00"},
        {"1,234.00", "(1,234.00)", "0.50", "0.00"},
        {"1,234.00", "-1,234.00", "0.50", "Zero"},
    };
    const double values[] = {1234, -1234, 0.5, 0};
    for (std::size_t p = 0; p < std::size(pictures); ++p)
        for (std::size_t v = 0; v < 4; ++v)
            EXPECT_EQ(formatFloat(pictures[p], values[v]), expected[p][v])
                << pictures[p] << " " << values[v];
    EXPECT_EQ(formatFloat("0.00;", -1.5), "-1.50");
    EXPECT_EQ(formatFloat(";0.00", -1.5), "1.50");
    EXPECT_EQ(formatFloat(";0.00", 1.5), "1.5");
    EXPECT_EQ(formatFloat(";", 1.5), "1.5");
    EXPECT_EQ(formatFloat("0;1;2;3", 0), "2");
    EXPECT_EQ(formatFloat("\"a;b\"0;\"c;d\"0", -1), "c;d1");
    EXPECT_EQ(formatFloat("\"abc\"0.00", 1.5), "abc1.50");
    EXPECT_EQ(formatFloat("'abc'0.00", -1.5), "-abc1.50");
    EXPECT_EQ(formatFloat("'0.#,'0", 5), "0.#,5");
    EXPECT_EQ(formatFloat("'a''b'0", 5), "ab5");
    EXPECT_EQ(formatFloat("0 \"mm\"", 5), "5 mm");
    EXPECT_EQ(formatFloat("0.00\"x", 1.5), "1.50x");
    EXPECT_EQ(formatFloat("\"0.00", 1.5), "0.00");
}

TEST(FormatFloat, ScientificPictures) {
    EXPECT_EQ(formatFloat("0.00E+00", 1234.5), "1.23E+03");
    EXPECT_EQ(formatFloat("0.00E-00", 1234.5), "1.23E03");
    EXPECT_EQ(formatFloat("0.00E+00", 0.00012345), "1.23E-04");
    EXPECT_EQ(formatFloat("0.00E-00", 0.00012345), "1.23E-04");
    EXPECT_EQ(formatFloat("0.00E+00", 0.5), "5.00E-01");
    EXPECT_EQ(formatFloat("0.###E+0", 1234.5), "1.235E+3");
    EXPECT_EQ(formatFloat("0.000E+00", 1234), "1.234E+03");
    EXPECT_EQ(formatFloat("0.000E+00", -1234), "-1.234E+03");
    EXPECT_EQ(formatFloat("0.000E+00", 0), "0.000E+00");
    EXPECT_EQ(formatFloat("#.###E-0", 1234), "1.234E3");
    EXPECT_EQ(formatFloat("#.###E-0", 0.5), "5E-1");
    EXPECT_EQ(formatFloat("#.###E-0", 0), "0E0");
    EXPECT_EQ(formatFloat("00.00E+00", 1234.5), "12.35E+02");
    EXPECT_EQ(formatFloat("#0.0E+0", 1234.5), "12.3E+2");
    EXPECT_EQ(formatFloat("##0.0E+0", 0), "000.0E+0");
    EXPECT_EQ(formatFloat("0E+0", 9.5), "1E+1");
    EXPECT_EQ(formatFloat("0.0E+0", 9.96), "1.0E+1");
    EXPECT_EQ(formatFloat(".0E+0", 1.5), ".2E+1");
    EXPECT_EQ(formatFloat("0.0E+00000", 1.5), "1.5E+0000");
    EXPECT_EQ(formatFloat("0.0e+0", 1.5), "1.5e+0");
    EXPECT_EQ(formatFloat("0.0E0", 1.5), "1.5E0");
    EXPECT_EQ(formatFloat("0.0E+0", 1e300), "1.0E+300");
    EXPECT_EQ(formatFloat("0.0E+0", 1.7976931348623157e308), "1.8E+308");
    EXPECT_EQ(formatFloat("0.0E+0", 5e-324), "4.9E-324");
}

TEST(FormatFloat, HugeTinyAndLongPicturesAndEmptyPicture) {
    EXPECT_EQ(formatFloat("", 1234.5), "1234.5");
    EXPECT_EQ(formatFloat("", -1234.5), "-1234.5");
    EXPECT_EQ(formatFloat("0", 1e16), "10000000000000000");
    EXPECT_EQ(formatFloat("0", 12345678901234567.0), "12345678901234600");
    EXPECT_EQ(formatFloat("0", 1e17), "1E17");
    EXPECT_EQ(formatFloat("0.00", 1e300), "1E300");
    EXPECT_EQ(formatFloat("#,##0", -1e20), "-1E20");
    EXPECT_EQ(formatFloat("0", 1.7976931348623157e308), "1.79769313486232E308");
    EXPECT_EQ(formatFloat("0.00", 5e-324), "0.00");
    EXPECT_EQ(formatFloat("0.00", 1234567890123456), "1234567890123460.00");
    EXPECT_EQ(formatFloat("0.00000000000000000000", 1.1), "1.10000000000000000000");
    EXPECT_EQ(formatFloat("00000000000000000000", 1.1), "00000000000000000001");
    const std::string manyZeros(5000, '0');
    EXPECT_EQ(formatFloat(manyZeros, 12), std::string(4998, '0') + "12");
    EXPECT_EQ(formatFloat("0." + manyZeros, 0.5), "0.5" + std::string(4999, '0'));
    EXPECT_EQ(formatFloat("0." + std::string(5000, '#'), 0.5), "0.5");
    EXPECT_EQ(formatFloat(std::string(5000, ';'), 3), "3");
    EXPECT_EQ(formatFloat("0.00", std::nan("")), "NAN");
    EXPECT_EQ(formatFloat("0.00", -std::numeric_limits<double>::infinity()), "-INF");
}

TEST(FloatToStr, FifteenSignificantDigitsInGeneralForm) {
    EXPECT_EQ(floatToStr(0), "0");
    EXPECT_EQ(floatToStr(-0.0), "0");
    EXPECT_EQ(floatToStr(100), "100");
    EXPECT_EQ(floatToStr(-2.5), "-2.5");
    EXPECT_EQ(floatToStr(0.1), "0.1");
    EXPECT_EQ(floatToStr(2.675), "2.675");
    EXPECT_EQ(floatToStr(1.0 / 3.0), "0.333333333333333");
    EXPECT_EQ(floatToStr(2.0 / 3.0), "0.666666666666667");
    EXPECT_EQ(floatToStr(123456789012345), "123456789012345");
    EXPECT_EQ(floatToStr(1234567890123456), "1.23456789012346E15");
    EXPECT_EQ(floatToStr(999999999999999.9), "1E15");
    EXPECT_EQ(floatToStr(1e15), "1E15");
    EXPECT_EQ(floatToStr(0.0001), "0.0001");
    EXPECT_EQ(floatToStr(0.00001), "0.00001");
    EXPECT_EQ(floatToStr(0.00001234), "0.00001234");
    EXPECT_EQ(floatToStr(0.000009), "9E-6");
    EXPECT_EQ(floatToStr(-1.5e-10), "-1.5E-10");
    EXPECT_EQ(floatToStr(5e-324), "4.94065645841247E-324");
    EXPECT_EQ(floatToStr(1.7976931348623157e308), "1.79769313486232E308");
    EXPECT_EQ(floatToStr(std::nan("")), "NAN");
    EXPECT_EQ(floatToStr(std::numeric_limits<double>::infinity()), "INF");
}
