// Default lookups: local defaults of the current template before global ones.
#include "JobFixture.h"

namespace {

class DefaultsTest : public jobtest::JobFixture {
protected:
    std::string defaultValue(int id) {
        std::string value = "stale";
        form->GetDefaultValue(id, value);
        return value;
    }
};

} // namespace

TEST_F(DefaultsTest, SyntaxesAndValuesLocalBeforeGlobal) {
    // Global: Default_Syntax counts from 0, null means none.
    EXPECT_EQ(form->GetGlobalDefaultSyntax("ACK"), 2);
    EXPECT_EQ(form->GetGlobalDefaultSyntax("NOTE"), 0);
    // A nearest seek: a missing code reads the next code's row ("AAA" gives "ACK").
    EXPECT_EQ(form->GetGlobalDefaultSyntax("AAA"), 2);

    // Local: the number from 1 as stored for the template.
    EXPECT_EQ(form->GetLocalDefaultSyntax("G54"), 2);
    EXPECT_EQ(form->GetLocalDefaultSyntax("ACK"), 0);
    EXPECT_EQ(form->GetDefaultSyntax("ACK"), 2);

    cell.run("Quorvel.db", "insert into TemplateDefaults values (1, 'ACK', '1');"
                           "insert into TemplateDefaults values (2, 'G00', '3');");
    EXPECT_EQ(form->GetDefaultSyntax("ACK"), 1);
    // Another template's default plays no part.
    EXPECT_EQ(form->GetDefaultSyntax("G00"), 1);

    // Two rows for one key are not exactly one: the global default stands.
    cell.run("Quorvel.db", "insert into TemplateDefaults values (1, 'ACK', '2');");
    EXPECT_EQ(form->GetLocalDefaultSyntax("ACK"), 0);
    EXPECT_EQ(form->GetDefaultSyntax("ACK"), 2);

    // Values: the local default over the global one.
    EXPECT_EQ(defaultValue(2005), "2.5");
    EXPECT_EQ(defaultValue(5001), "CHECK WIRE");
    EXPECT_EQ(defaultValue(9999), "");

    // Another template falls back to the global default.
    cell.run("Quorvel.db", "insert into TemplateName values (2, 'FX-200', 'Second', 1, False);"
                           "insert into TemplateDefaults values (2, '5001', 'LOCAL TEXT');");
    DM().PositionTemplate(2);
    EXPECT_EQ(defaultValue(2005), "0.5");
    EXPECT_EQ(defaultValue(5001), "LOCAL TEXT");
    EXPECT_EQ(form->GetDefaultSyntax("G54"), 1);
    // A local default may empty a value that has a global one.
    cell.run("Quorvel.db", "insert into TemplateDefaults values (2, '2001', '');");
    EXPECT_EQ(defaultValue(2001), "");
}
