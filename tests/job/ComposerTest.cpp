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

// Number pictures and conversions themselves are common's (FormatTest, ConvertTest).
TEST(Composer, EachValueIsConvertedForItsOwnSpecifierOrTheMaskIsNotComposed) {
    expectLines({
        {"G01 X%+0.000f Y%+0.000f", 1, "G01", {"12.5", "-3"}, "G01 X+12.500 Y-3.000"},
        {"%.3d", 1, "", {"7"}, "007"},
        {"(%s)", 1, "", {"ROUGH CUT"}, "(ROUGH CUT)"},
        // A signed specifier that is no picture keeps its letter.
        {"X%+d", 1, "", {""}, "X+0d"},
        {"X%+.3f Y%+0.0f", 1, "", {"2", "-2.25"}, "X+2.000f Y-2.3"},
        // Values past the mask's specifiers are never read; a value that is no number is 0.
        {"%d %d", 1, "", {"1", "2", "x", "%", "", "1e999"}, "1 2"},
        {"%d %.2f", 1, "", {"1.5", "x"}, "0 0.00"},
        {"%+0.000f", 1, "", {""}, "+0.000"},
        // A negative number that rounds to nothing keeps its sign and loses the "+".
        {"%+0.000f", 1, "", {"-0.0004"}, "-0.000"},
        {"#%s=%0.000f", 3, "", {"510", "0.125"}, "#510=0.125"},
        // Upper-case letters do not classify; the formatter still reads them.
        {"%D", 1, "", {"12"}, "12"},
        // Plain text behind the specifier decides: the "d" of "dist" makes it an integer.
        {"%x dist", 1, "", {"255"}, "FF dist"},
    });

    // Masks without usable specifiers give "Not Handled" or the Syntax column, by type.
    const std::array<std::string, 6> v{"1", "2", "3", "4", "5", "6"};
    expectLines({
        {"%s%%", 1, "SYN", v, "Not Handled"},
        {"%s%%", 2, "SYN", v, "SYN"},
        {"G90", 0, "G90 SYN", v, "G90 SYN"},
        {"%-*.*s", 3, "SYN", v, "Not Handled"},
        {"A%pB", 5, "SYN", v, "SYN"},
        // Seven specifiers: the line is the Syntax column, whatever the type.
        {"%d %d %d %d %d %d %d", 1, "SEVEN", v, "SEVEN"},
        {"%d %d %d %d %d %d", 1, "SIX", v, "1 2 3 4 5 6"},
        // A selection or plain syntax with specifiers is composed like a value syntax.
        {"M98 P%.4d", 2, "M98", v, "M98 P0001"},
    });
    // The count for the value boxes: a "%" and the character behind it; the strict count of
    // the composer also refuses "%-*.*s" and "%p".
    const std::pair<const char*, std::array<int, 2>> counts[] = {
        {"X%d%", {0, 0}}, {"%%%d", {2, 2}}, {"%-*.*s", {1, 0}}, {"A%pB %d", {2, 0}}};
    for (const auto& [mask, count] : counts)
        for (bool strict : {false, true})
            EXPECT_EQ(TdlgJob::CountFormatSpecs(mask, strict), count[strict]) << mask << strict;

    // Masks the formatter cannot read raise errors that name the mask.
    EXPECT_NE(composeError("").find("empty mask"), std::string::npos);
    // No closing letter: the whole rest is an integer specifier the formatter cannot read.
    EXPECT_NE(composeError("X%5").find("'X%5'"), std::string::npos);
    EXPECT_NE(composeError("%5.1 mm feed").find("'%5.1 mm feed'"), std::string::npos);
    // The final pass meets a specifier that wants a number.
    EXPECT_NE(composeError("%s %*s").find("'%s %*s'"), std::string::npos);
}

TEST(Composer, StringWidthAndPrecisionCountCharactersNotBytes) {
    expectLines({
        {"(%-6s)", 1, "", {"\u00e9t\u00e9"}, "(\u00e9t\u00e9   )"},
        {"(%6s)", 1, "", {"\u00e9t\u00e9"}, "(   \u00e9t\u00e9)"},
        {"(%.1s)", 1, "", {"\u00e9t\u00e9"}, "(\u00e9)"},
        {"(%-4.2s)", 1, "", {"\u20acx!"}, "(\u20acx  )"},
    });
}

// ComposeScriptLine reads the current Syntax row and the six value boxes of the current job row.
class ComposeScriptLineTest : public jobtest::JobFixture {
protected:
    void SetUp() override {
        JobFixture::SetUp();
        build();
    }
    void on(int line, const std::string& code, int item) {
        ASSERT_TRUE(DM().tableJobs.findKey({form->PalletNumber(), form->JobNumber(), line}));
        ASSERT_TRUE(DM().tableSyntax.findKey({code, item}));
    }
};

TEST_F(ComposeScriptLineTest, ReadsTheBoxesOfTheCurrentRowAndStoresOnRequest) {
    // The text in the box counts before anything is posted.
    on(9, "G92", 1);
    form->dbeValue1->setText("-12.5");
    EXPECT_EQ(form->ComposeScriptLine(false), "G92 X-12.500 Y+5.000");
    EXPECT_EQ(jobField(9, "Script_Line"), "G92 X+10.000 Y+5.000");
    on(9, "G92", 1);
    form->dbeValue1->setText("-12.5");
    EXPECT_EQ(form->ComposeScriptLine(true), "G92 X-12.500 Y+5.000");
    EXPECT_EQ(jobField(9, "Script_Line"), "G92 X-12.500 Y+5.000");

    // While the program is written the composer is shut out.
    on(16, "G54", 3);
    form->FWriting = true;
    EXPECT_EQ(form->ComposeScriptLine(true), "Program Error!");
    EXPECT_EQ(form->ComposeSyntaxLine(true), "Program Error!");
    EXPECT_NE(jobField(16, "Script_Line"), "Program Error!");
    form->FWriting = false;
    EXPECT_EQ(form->ComposeSyntaxLine(true), "G56");
    EXPECT_EQ(jobField(16, "Script_Line"), "G56");
}

TEST_F(ComposeScriptLineTest, AValueBoxTakesAValueLongerThanALineEditsDefaultLimit) {
    cell.run("Quorvel.db", "insert into Syntax values ('TXT', 1, 'ALL', 'TXT', 1, '(%s)', 'x', "
                           "0, 0, 0, 0, 0, 0);");
    const std::string value(40000, 'A');
    on(9, "TXT", 1);
    form->dbeValue1->setText(QString::fromStdString(value));
    EXPECT_EQ(form->ComposeScriptLine(false).size(), value.size() + 2);
    // A value that the row holds is shown whole.
    auto& jobs = DM().tableJobs;
    jobs.edit();
    jobs.fieldByName("Value_2").setAsString(value + "B");
    jobs.post();
    on(16, "TXT", 1);
    on(9, "TXT", 1);
    EXPECT_EQ(form->dbeValue2->text().size(), 40001);
}
