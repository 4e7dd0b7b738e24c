// The script line composer: masks and values to lines, by the rules of each specifier kind.
#include "JobFixture.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace {

struct ComposeCase {
    std::string mask;
    int type;
    std::string syntax;
    std::array<std::string, 6> values;
    std::string line;
};

void expectLines(const std::vector<ComposeCase>& cases) {
    for (const auto& c : cases)
        EXPECT_EQ(TdlgJob::ComposeMaskLine(c.mask, c.type, c.syntax, c.values), c.line)
            << "mask '" << c.mask << "' type " << c.type << " value 1 '" << c.values[0] << "'";
}

// The JobError message of composing `mask` as a value syntax; "" when nothing is thrown.
std::string composeError(const std::string& mask) {
    try {
        TdlgJob::ComposeMaskLine(mask, 1, "syntax", {"1", "2", "3", "4", "5", "6"});
    } catch (const JobError& e) {
        return e.what();
    }
    return "";
}

} // namespace

TEST(Composer, WorkedExamples) {
    expectLines({
        {"G01 X%+0.000f Y%+0.000f", 1, "G01", {"12.5", "-3"}, "G01 X+12.500 Y-3.000"},
        {"%000.000f", 1, "", {"1.5"}, "001.500"},
        {"%+000.000f", 1, "", {"-1.5"}, "-001.500"},
        {"%0f", 1, "", {"2.5"}, "3"},
        {"%.3f", 1, "", {"abc"}, "0.000"},
        {"%.3d", 1, "", {"7"}, "007"},
        {"%5d", 1, "", {"1.5"}, "    0"},
        {"(%s)", 1, "", {"ROUGH CUT"}, "(ROUGH CUT)"},
        // A signed specifier that is no picture keeps its letter.
        {"X%+d", 1, "", {""}, "X+0d"},
        {"X%+.3f Y%+0.0f", 1, "", {"2", "-2.25"}, "X+2.000f Y-2.3"},
    });
}

TEST(Composer, EachValueIsConvertedForItsOwnSpecifier) {
    expectLines({
        // Values past the mask's specifiers are never read.
        {"%d %d", 1, "", {"1", "2", "x", "%", "", "1e999"}, "1 2"},
        {"%d %.2f", 1, "", {"1.5", "x"}, "0 0.00"},
        {"%+0.000f", 1, "", {""}, "+0.000"},
        {"%d", 1, "", {" 42"}, "42"},
        {"%d", 1, "", {"$1F"}, "31"},
        // A negative number that rounds to nothing keeps its sign and loses the "+".
        {"%+0.000f", 1, "", {"-0.0004"}, "-0.000"},
        {"%0.##f", 1, "", {"1.005"}, "1.01"},
        {"%0,0.00f", 1, "", {"1234567.891"}, "1,234,567.89"},
        {"#%s=%0.000f", 3, "", {"510", "0.125"}, "#510=0.125"},
        // Upper-case letters do not classify; the formatter still reads them.
        {"%D", 1, "", {"12"}, "12"},
        // Plain text behind the specifier decides: the "d" of "dist" makes it an integer.
        {"%x dist", 1, "", {"255"}, "FF dist"},
    });
}

TEST(Composer, MasksWithoutUsableSpecifiers) {
    const std::array<std::string, 6> v{"1", "2", "3", "4", "5", "6"};
    expectLines({
        {"%s%%", 1, "SYN", v, "Not Handled"},
        {"%s%%", 2, "SYN", v, "SYN"},
        {"G90", 1, "G90 SYN", v, "Not Handled"},
        {"G90", 0, "G90 SYN", v, "G90 SYN"},
        {"X%d%", 1, "SYN", v, "Not Handled"},
        {"%-*.*s", 3, "SYN", v, "Not Handled"},
        {"A%pB", 1, "SYN", v, "Not Handled"},
        {"A%pB", 5, "SYN", v, "SYN"},
        // Seven specifiers: the line is the Syntax column, whatever the type.
        {"%d %d %d %d %d %d %d", 1, "SEVEN", v, "SEVEN"},
        {"%d %d %d %d %d %d", 1, "SIX", v, "1 2 3 4 5 6"},
        // A selection or plain syntax with specifiers is composed like a value syntax.
        {"M98 P%.4d", 2, "M98", v, "M98 P0001"},
    });
}

TEST(Composer, CountsSpecifiersAsPercentAndNextCharacter) {
    const struct {
        std::string mask;
        bool strict;
        int count;
    } cases[] = {
        {"G01 X%+0.000f Y%+0.000f", false, 2},
        {"G90", false, 0},
        {"X%d%", false, 0},
        {"X%d%", true, 0},
        {"%%%d", true, 2},
        {"%s%%", false, 0},
        {"%-*.*s", false, 1},
        {"%-*.*s", true, 0},
        {"A%pB %d", false, 2},
        {"A%pB %d", true, 0},
        {"%d %d %d %d %d %d %d", true, 7},
    };
    for (const auto& c : cases)
        EXPECT_EQ(TdlgJob::CountFormatSpecs(c.mask, c.strict), c.count)
            << c.mask << (c.strict ? " strict" : "");
}

TEST(Composer, FormatValueForMaskRewritesOneSpecifierPerCall) {
    std::string mask = "G01 X%+0.000f Y%+0.000f";
    EXPECT_EQ(TdlgJob::FormatValueForMask(mask, 1, "12.5"), "+12.500");
    EXPECT_EQ(mask, "G01 X%s Y%+0.000f");
    EXPECT_EQ(TdlgJob::FormatValueForMask(mask, 2, "-3"), "-3.000");
    EXPECT_EQ(mask, "G01 X%s Y%s");
    EXPECT_EQ(TdlgJob::FormatValueForMask(mask, 3, "9"), "");

    // A string is returned as it stands and its specifier, width and all, stays.
    mask = "(%-8s) %d";
    EXPECT_EQ(TdlgJob::FormatValueForMask(mask, 1, "A B"), "A B");
    EXPECT_EQ(mask, "(%-8s) %d");
    EXPECT_EQ(TdlgJob::FormatValueForMask(mask, 2, "-4"), "-4");
    EXPECT_EQ(mask, "(%-8s) %s");
}

TEST(Composer, UnusableMasksRaiseErrorsNamingTheMask) {
    EXPECT_NE(composeError("").find("empty mask"), std::string::npos);
    EXPECT_THROW(TdlgJob::CountFormatSpecs("", false), JobError);
    // No closing letter: the whole rest is an integer specifier the formatter cannot read.
    EXPECT_NE(composeError("X%5").find("'X%5'"), std::string::npos);
    EXPECT_NE(composeError("%5.1 mm feed").find("'%5.1 mm feed'"), std::string::npos);
    // The final pass meets a specifier that wants a number.
    EXPECT_NE(composeError("%s %*s").find("'%s %*s'"), std::string::npos);
    EXPECT_EQ(composeError("X%d"), "");
}

TEST(Composer, StringWidthAndPrecisionCountCharactersNotBytes) {
    expectLines({
        {"(%-6s)", 1, "", {"\u00e9t\u00e9"}, "(\u00e9t\u00e9   )"},
        {"(%6s)", 1, "", {"\u00e9t\u00e9"}, "(   \u00e9t\u00e9)"},
        {"(%.1s)", 1, "", {"\u00e9t\u00e9"}, "(\u00e9)"},
        {"(%-4.2s)", 1, "", {"\u20acx!"}, "(\u20acx  )"},
        {"(%.9s)", 1, "", {"\u00e9t\u00e9"}, "(\u00e9t\u00e9)"},
    });
}

// ComposeScriptLine reads the current Syntax row and the six value boxes of the current job row.
class ComposeScriptLineTest : public jobtest::JobFixture {
protected:
    void SetUp() override {
        JobFixture::SetUp();
        build();
    }
    void onSyntax(const std::string& code, int item) {
        ASSERT_TRUE(DM().tableSyntax.findKey({code, item}));
    }
    void onLine(int line) {
        ASSERT_TRUE(DM().tableJobs.findKey({form->PalletNumber(), form->JobNumber(), line}));
    }
};

TEST_F(ComposeScriptLineTest, ReadsTheBoxesOfTheCurrentRowAndStoresOnRequest) {
    onLine(9);
    onSyntax("G92", 1);
    EXPECT_EQ(form->ComposeScriptLine(false), "G92 X+10.000 Y+5.000");

    // The text in the box counts before anything is posted.
    form->dbeValue1->setText("-12.5");
    EXPECT_EQ(form->ComposeScriptLine(false), "G92 X-12.500 Y+5.000");
    EXPECT_EQ(jobField(9, "Script_Line"), "G92 X+10.000 Y+5.000");
    onLine(9);
    form->dbeValue1->setText("-12.5");
    EXPECT_EQ(form->ComposeScriptLine(true), "G92 X-12.500 Y+5.000");
    EXPECT_EQ(jobField(9, "Script_Line"), "G92 X-12.500 Y+5.000");

    // Moving the row moves the values the composer sees.
    onLine(16);
    onSyntax("G92", 1);
    EXPECT_EQ(form->ComposeScriptLine(false), "G92 X+60.000 Y+5.000");

    onSyntax("G54", 3);
    EXPECT_EQ(form->ComposeSyntaxLine(true), "G56");
    EXPECT_EQ(jobField(16, "Script_Line"), "G56");
}

TEST_F(ComposeScriptLineTest, WritingTheProgramShutsTheComposerOut) {
    onLine(9);
    onSyntax("G92", 1);
    form->FWriting = true;
    EXPECT_EQ(form->ComposeScriptLine(true), "Program Error!");
    EXPECT_EQ(form->ComposeSyntaxLine(true), "Program Error!");
    EXPECT_EQ(jobField(9, "Script_Line"), "G92 X+10.000 Y+5.000");
}

TEST_F(ComposeScriptLineTest, AValueBoxTakesAValueLongerThanALineEditsDefaultLimit) {
    cell.run("Quorvel.db", "insert into Syntax values ('TXT', 1, 'ALL', 'TXT', 1, '(%s)', 'x', "
                           "0, 0, 0, 0, 0, 0);");
    const std::string value(40000, 'A');
    onLine(9);
    onSyntax("TXT", 1);
    form->dbeValue1->setText(QString::fromStdString(value));
    EXPECT_EQ(form->dbeValue1->text().size(), 40000);
    EXPECT_EQ(form->ComposeScriptLine(false).size(), value.size() + 2);
    // A value that the row holds is shown whole.
    auto& jobs = DM().tableJobs;
    jobs.edit();
    jobs.fieldByName("Value_2").setAsString(value + "B");
    jobs.post();
    onLine(16);
    onLine(9);
    EXPECT_EQ(form->dbeValue2->text().size(), 40001);
}
