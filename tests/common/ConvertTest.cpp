#include "common/Convert.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>

using namespace common;

TEST(Convert, IntegersAcceptLeadingBlanksSignAndHexadecimal) {
    EXPECT_EQ(tryStrToInt("  12"), 12);
    EXPECT_EQ(tryStrToInt("00000000000000000000012"), 12);
    EXPECT_EQ(tryStrToInt("$1F"), 31);
    EXPECT_EQ(tryStrToInt("-$1F"), -31);
    EXPECT_EQ(tryStrToInt("0x1F"), 31);
    EXPECT_EQ(tryStrToInt("$0000000000000001F"), 31);
}

TEST(Convert, IntegersMustFitThirtyTwoBits) {
    EXPECT_EQ(tryStrToInt("2147483647"), 2147483647);
    EXPECT_EQ(tryStrToInt("-2147483648"), -2147483647 - 1);
    EXPECT_EQ(tryStrToInt("2147483648"), std::nullopt);
    EXPECT_EQ(tryStrToInt("-2147483649"), std::nullopt);
    // Hexadecimal fills all 32 bits.
    EXPECT_EQ(tryStrToInt("$FFFFFFFF"), -1);
    EXPECT_EQ(tryStrToInt("-$80000000"), -2147483647 - 1);
    EXPECT_EQ(tryStrToInt("$100000000"), std::nullopt);
}

TEST(Convert, AnythingElseIsNoInteger) {
    for (const char* text :
         {"",     " ",   "+",   "-",   "$",   "0x",   "12 ", "12abc", "1.5",   "1e3",
          "- 12", "+-1", "$-1", "$ 1", "&17", "%101", "x1F", "\n5",   "1,000", "\xd9\xa3"})
        EXPECT_EQ(tryStrToInt(text), std::nullopt) << text;
    EXPECT_EQ(strToIntDef("12abc", 0), 0);
    EXPECT_EQ(strToIntDef(" 42", 7), 42);
}

TEST(Convert, RealsParseTheWholeTextWithADecimalPoint) {
    EXPECT_EQ(tryStrToFloat("  -.5e-1  "), -0.05);
    EXPECT_EQ(tryStrToFloat("5.e3"), 5000.0);
    EXPECT_EQ(tryStrToFloat("1e0005"), 100000.0);
    EXPECT_EQ(tryStrToFloat("4.9e-324"), 5e-324);
    // Too small for a real is zero, keeping its sign; too large is no number.
    EXPECT_EQ(tryStrToFloat("1e-400"), 0.0);
    auto tiny = tryStrToFloat("-1e-400");
    ASSERT_TRUE(tiny.has_value());
    EXPECT_TRUE(*tiny == 0 && std::signbit(*tiny));
    EXPECT_EQ(tryStrToFloat("1.8e308"), std::nullopt);
    EXPECT_EQ(tryStrToFloat("0.001e309"), 1e306);
    EXPECT_EQ(tryStrToFloat("1e99999999999999999999"), std::nullopt);
    EXPECT_EQ(tryStrToFloat("1e-99999999999999999999"), 0.0);
}

TEST(Convert, AnythingElseIsNoReal) {
    for (const char* text : {"",    " ",     ".",     "+",    "-",    "e5",  ".e5", "1e",  "1e+",
                             "1,5", "$1F",   "0x1F",  "inf",  "Inf",  "nan", "NaN", "1d5", "1_000",
                             "--1", "1.5.5", "12abc", "1 e5", "1e 5", "+-1", "- 1"})
        EXPECT_EQ(tryStrToFloat(text), std::nullopt) << text;
    EXPECT_EQ(strToFloatDef("abc", 0), 0.0);
    EXPECT_EQ(strToFloatDef("1.25", 2.5), 1.25);
}

TEST(Convert, TextHelpersTouchAsciiOnly) {
    EXPECT_EQ(intToStr(9223372036854775807), "9223372036854775807");
    EXPECT_EQ(upperCase("g01 x1.5 ;abz"), "G01 X1.5 ;ABZ");
    EXPECT_EQ(upperCase("caf\xc3\xa9 \xe9"), "CAF\xc3\xa9 \xe9");
    EXPECT_TRUE(sameText("Fixture", "fIXTURE"));
    EXPECT_FALSE(sameText("abc", "abcd"));
    EXPECT_FALSE(sameText("\xc3\xa9", "\xc3\x89"));
    EXPECT_EQ(trim("  a b \t\r\n"), "a b");
    EXPECT_EQ(trim("\x01x\x1f"), "x");
    EXPECT_EQ(trim("\xe9 "), "\xe9");
}
