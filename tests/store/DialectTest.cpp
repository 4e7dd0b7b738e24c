// The dialect adapter's rewrites of the system's statements for the embedded engine. The rewritten
// statements run on the real schema in the template copy tests and in the store's query tests.
#include "store/Dialect.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using store::translateStatement;

void expectRewrites(const std::vector<std::pair<std::string, std::string>>& cases) {
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(translateStatement(text), expected) << "from: " << text;
}

void expectUnchanged(const std::vector<std::string>& texts) {
    for (const std::string& t : texts)
        EXPECT_EQ(translateStatement(t), t);
}

TEST(DialectRewrite, TruncateBecomesDeleteWhateverTheCaseAndSpacing) {
    expectRewrites({
        {"  TRUNCATE\r\n   TemplateCopy  ", "  delete from\r\n   TemplateCopy  "},
        {"truncate table TemplateCopy", "delete from TemplateCopy"},
        // Text after the first statement is kept as written.
        {"truncate TemplateCopy; truncate TemplateData",
         "delete from TemplateCopy; truncate TemplateData"},
    });
    // Nothing to empty, or the word used otherwise: left for the engine to judge.
    expectUnchanged({"truncate", "truncated TemplateCopy"});
}

TEST(DialectRewrite, InsertOfAParenthesisedSelectLosesTheParentheses) {
    expectRewrites({
        {"insert into TemplateCopy (select * from TemplateData where Template_ID = 3)",
         "insert into TemplateCopy select * from TemplateData where Template_ID = 3"},
        // Inner parentheses and parentheses inside literals stay; the words do not run together.
        {"INSERT INTO TemplateCopy(SELECT * FROM TemplateData WHERE Code IN ('A)', '(B'))",
         "INSERT INTO TemplateCopy SELECT * FROM TemplateData WHERE Code IN ('A)', '(B')"},
        {"insert into Jobs (Pallet_Number, Job_Number) (select Pallet_Number, 2 from Jobs)",
         "insert into Jobs (Pallet_Number, Job_Number) select Pallet_Number, 2 from Jobs"},
    });
    expectUnchanged({
        "insert into TemplateCopy select * from TemplateData",
        "insert into TemplateCopy (select * from TemplateData where Template_ID = 3",
        "select * from TemplateData where Item in (select Item from TemplateCopy)",
    });
}

TEST(DialectRewrite, NumbersPlacedAsValuesAreQuotedAndNowhereElse) {
    expectRewrites({
        {"insert into T values(-0.500, 007, +3, .5, 5., 1e3, 2.5E-3)",
         "insert into T values('-0.500', '007', '+3', '.5', '5.', '1e3', '2.5E-3')"},
        {"insert into T values (1,2), (3, 4)", "insert into T values ('1','2'), ('3', '4')"},
        {"update Jobs set Value_1 = 007, Path = 'x', Image=2\nwhere Line_Number = 0",
         "update Jobs set Value_1 = '007', Path = 'x', Image='2'\nwhere Line_Number = 0"},
        // Only the first statement's: the rest is kept as written.
        {"update ValueType set [Default] = 1; update ValueType set [Default] = 2",
         "update ValueType set [Default] = '1'; update ValueType set [Default] = 2"},
    });
    expectUnchanged({
        // Not a number standing alone: expressions, names, hexadecimal, a number run into a name.
        "insert into T values(1 + 2, 12abc, 0x1F, - 5, (7), abs(-3), True, null, Default)",
        "update ValueType set [Default] = G54 where Value_ID = 3",
        "update T set A = (select max(B) from U where C = 1)",
        // Conditions and selected numbers stay numbers.
        "select * from Jobs where Pallet_Number = 007 and Job_Number = 1",
    });
}

// Keyword column names of an insert are bracketed; literals and comments are never touched.
TEST(DialectRewrite, KeywordColumnsAreBracketedLiteralsAndCommentsNeverTouched) {
    expectRewrites({
        {"insert into TemplateDefaults (Template_ID, Value_ID, Default) values(4, '17', "
         "'insert into X (select 1); 0.5, Default')",
         "insert into TemplateDefaults (Template_ID, Value_ID, [Default]) values('4', '17', "
         "'insert into X (select 1); 0.5, Default')"},
        {"update Jobs set Value_1 = 'it''s 5', Value_2 = 5 where Line_Number = 0",
         "update Jobs set Value_1 = 'it''s 5', Value_2 = '5' where Line_Number = 0"},
        {"update Jobs set \"Value_1\" = 5 -- , Value_2 = 6\nwhere Line_Number = 0",
         "update Jobs set \"Value_1\" = '5' -- , Value_2 = 6\nwhere Line_Number = 0"},
    });
    expectUnchanged({
        "insert into TemplateDefaults (Template_ID, Value_ID, [Default]) values('4', '17', 'x')",
        "update Jobs set Value_1 = 'a = 1, b = 2 where', Path = '(select' where Line_Number = 0",
        "/* truncate TemplateCopy */ select 1",
    });
}

// Words before an open literal are still rewritten, so that the engine's error names the break
// itself; the open literal is never closed.
TEST(DialectRewrite, ABrokenLiteralStaysBroken) {
    expectRewrites({
        {"truncate TemplateCopy where Name = 'x", "delete from TemplateCopy where Name = 'x"},
        {"insert into TemplateDefaults (Template_ID, Value_ID, Default) values(1, '17', 'it's')",
         "insert into TemplateDefaults (Template_ID, Value_ID, [Default]) values(1, '17', 'it's')"},
        {"update Jobs set Value_1 = 5 where Code = `x",
         "update Jobs set Value_1 = '5' where Code = `x"},
    });
    expectUnchanged({
        "insert into TemplateCopy (select * from TemplateData where Code = 'x)",
        "insert into TemplateCopy ([Default) values(1)",
        "update Jobs set \"Value_1 = 5",
    });
}

} // namespace
