// The dialect adapter: its rewrites on their own, then the statement shapes it rewrites, translated
// and run on the real schema of both databases.
#include "store/Dialect.h"
#include "store/EmbeddedData.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using store::translateStatement;

// ---------------------------------------------------------------------------------------------
// Rewrites on their own

struct Rewrite {
    std::string text;
    std::string expected;
};

void expectRewrites(const std::vector<Rewrite>& cases) {
    for (const Rewrite& c : cases)
        EXPECT_EQ(translateStatement(c.text), c.expected) << "from: " << c.text;
}

void expectUnchanged(const std::vector<std::string>& texts) {
    for (const std::string& t : texts)
        EXPECT_EQ(translateStatement(t), t);
}

TEST(DialectRewrite, TruncateBecomesDeleteWhateverTheCaseAndSpacing) {
    expectRewrites({
        {"  TRUNCATE\r\n   TemplateCopy  ", "  delete from\r\n   TemplateCopy  "},
        {"truncate table TemplateCopy", "delete from TemplateCopy"},
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

TEST(DialectRewrite, KeywordColumnNamesOfAnInsertAreBracketed) {
    expectRewrites({
        {"insert into TemplateDefaults (Template_ID, Value_ID, Default) values(4, 'G01', '2')",
         "insert into TemplateDefaults (Template_ID, Value_ID, [Default]) values('4', 'G01', '2')"},
    });
    expectUnchanged(
        {"insert into TemplateDefaults (Template_ID, Value_ID, [Default]) values('4', '17', 'x')"});
}

TEST(DialectRewrite, NumbersPlacedAsValuesAreQuotedAndNowhereElse) {
    expectRewrites({
        {"insert into T values(-0.500, 007, +3, .5, 5., 1e3, 2.5E-3)",
         "insert into T values('-0.500', '007', '+3', '.5', '5.', '1e3', '2.5E-3')"},
        {"insert into T values (1,2), (3, 4)", "insert into T values ('1','2'), ('3', '4')"},
        {"update Jobs set Value_1 = 007, Path = 'x', Image=2\nwhere Line_Number = 0",
         "update Jobs set Value_1 = '007', Path = 'x', Image='2'\nwhere Line_Number = 0"},
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

TEST(DialectRewrite, LiteralsAndCommentsAreNeverTouched) {
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

TEST(DialectRewrite, TextAfterTheFirstStatementIsKeptAsWritten) {
    expectRewrites({
        {"truncate TemplateCopy; truncate TemplateData",
         "delete from TemplateCopy; truncate TemplateData"},
        {"update ValueType set [Default] = 1; update ValueType set [Default] = 2",
         "update ValueType set [Default] = '1'; update ValueType set [Default] = 2"},
    });
}

// ---------------------------------------------------------------------------------------------
// Statements of the system on the real schema

using Row = std::vector<std::string>;
using Rows = std::vector<Row>;

// One in-memory database made from an embedded schema file. Setup and checks use the engine
// directly; only the statements under test go through the adapter.
class Db {
public:
    explicit Db(std::string_view schemaFile) {
        sqlite3* raw = nullptr;
        const int rc = sqlite3_open(":memory:", &raw);
        handle_.reset(raw);
        if (rc != SQLITE_OK || store::embeddedData(schemaFile).empty())
            throw std::runtime_error("cannot make a database from " + std::string(schemaFile));
        exec(std::string(store::embeddedData(schemaFile)));
    }

    sqlite3* get() const { return handle_.get(); }

    void exec(const std::string& sql) {
        char* error = nullptr;
        if (sqlite3_exec(get(), sql.c_str(), nullptr, nullptr, &error) != SQLITE_OK) {
            const std::string message = error ? error : "unknown error";
            sqlite3_free(error);
            throw std::runtime_error(message + " in: " + sql);
        }
    }

    Rows rows(const std::string& sql) const {
        Rows out;
        sqlite3_stmt* raw = nullptr;
        if (sqlite3_prepare_v2(get(), sql.c_str(), -1, &raw, nullptr) != SQLITE_OK)
            throw std::runtime_error(std::string(sqlite3_errmsg(get())) + " in: " + sql);
        const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> stmt(raw, sqlite3_finalize);
        while (sqlite3_step(raw) == SQLITE_ROW) {
            Row& row = out.emplace_back();
            for (int i = 0; i < sqlite3_column_count(raw); ++i) {
                const auto* text = sqlite3_column_text(raw, i);
                row.emplace_back(text ? reinterpret_cast<const char*>(text) : "<null>");
            }
        }
        return out;
    }

private:
    std::unique_ptr<sqlite3, int (*)(sqlite3*)> handle_{nullptr, sqlite3_close};
};

// Translates, prepares and runs the way the store does: text after the first statement is an
// error, and then nothing runs at all. The engine's error, or "" when it ran.
std::string runStatement(const Db& db, const std::string& text) {
    const std::string sql = translateStatement(text);
    sqlite3_stmt* raw = nullptr;
    const char* tail = nullptr;
    if (sqlite3_prepare_v2(db.get(), sql.c_str(), static_cast<int>(sql.size()), &raw, &tail) !=
        SQLITE_OK)
        return sqlite3_errmsg(db.get());
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> stmt(raw, sqlite3_finalize);
    const std::string_view rest(tail, sql.data() + sql.size() - tail);
    if (!raw || rest.find_first_not_of(" \t\r\n") != std::string_view::npos)
        return "not exactly one statement: " + sql;
    int rc = SQLITE_ROW;
    while (rc == SQLITE_ROW)
        rc = sqlite3_step(raw);
    return rc == SQLITE_DONE ? "" : sqlite3_errmsg(db.get());
}

// Both databases with a small cell: templates, a leftover row in the copy table, two jobs.
struct Cell {
    Db local{"schema_local.sql"};
    Db shared{"schema_shared.sql"};

    Cell() {
        local.exec(R"(
            insert into TemplateName values (1, 'FIX-A', 'Alpha', 3, 0), (2, 'FIX-B', 'Beta', 1, 1),
                                            (4, 'FIX-A', 'Delta', 1, 0);
            insert into TemplateData (Template_ID, Item, Node_Level, Code, Syntax, Value_1, Value_2,
                                      Locked, Special)
                values (1, 0, 0, 'HDR', null, 'Header', '', 0, 0),
                       (1, 1, 1, 'G92', 2, '0.500', '007', 1, 3),
                       (1, 2, 0, 'WRK', null, '', '', 0, 0), (1, 3, 0, 'FTR', null, '', '', 0, 0),
                       (2, 0, 0, 'HDR', null, '', '', 0, 0), (2, 1, 0, 'WRK', null, '', '', 0, 0);
            insert into TemplateCopy (Template_ID, Item, Code) values (9, 0, 'HDR');
            insert into Jobs (Pallet_Number, Job_Number, Line_Number, Code, Value_1, Value_2, Path)
                values (7, 1, 0, 'HDR', 'Header', '3', ''), (7, 1, 1, 'G92', '0.500', '', '');
        )");
    }
};

// The five statements of a template copy, twice over: the second copy relies on the truncate
// emptying the work table (which holds a leftover row), whose key would refuse the rows otherwise.
TEST(StatementCatalogue, TemplateCopyReplacesTheTargetsRowsEachTime) {
    Cell cell;
    const auto copy = [&](int source, int target) {
        const std::string s = std::to_string(source);
        const std::string d = std::to_string(target);
        for (const std::string& text :
             {"delete from TemplateData where Template_ID = " + d,
              std::string("truncate TemplateCopy"),
              "insert into TemplateCopy (select * from TemplateData where Template_ID = " + s + ")",
              "update TemplateCopy set Template_ID = " + d,
              std::string("insert into TemplateData (select * from TemplateCopy)")}) {
            SCOPED_TRACE(text);
            ASSERT_EQ(runStatement(cell.local, text), "");
        }
    };
    const auto codes = [&](int id) {
        Row out;
        for (const Row& r : cell.local.rows("select Code from TemplateData where Template_ID = " +
                                            std::to_string(id) + " order by Item"))
            out.push_back(r[0]);
        return out;
    };
    copy(1, 4);
    EXPECT_EQ(codes(4), (Row{"HDR", "G92", "WRK", "FTR"}));
    copy(2, 4);
    EXPECT_EQ(codes(4), (Row{"HDR", "WRK"}));
    EXPECT_EQ(codes(1), (Row{"HDR", "G92", "WRK", "FTR"}));
    EXPECT_EQ(cell.local.rows("select typeof(Template_ID) from TemplateData where Item = 1 and "
                              "Template_ID = 4"),
              (Rows{{"integer"}}));
}

// The inserts and updates of the system run on the columns as the schema declares them: a quoted
// number keeps the exact text in a text column and becomes a number again in a numeric one.
TEST(StatementCatalogue, QuotedNumbersTakeTheTypeOfTheirColumn) {
    Cell cell;
    for (const char* text :
         {"insert into TemplateName values(3, 'FIX-C', '', 1, False)",
          "insert into TemplateDefaults (Template_ID, Value_ID, Default) values(3, '17', '0.500')",
          "update Jobs set Value_1 = 0.500, Value_2 = 007, Image = 2, State = 007, Node_Level = -1 "
          "where Pallet_Number = 7 and Job_Number = 1 and Line_Number = 1",
          "update TemplateData set Locked = 1, Special = +3 where Template_ID = 2 and Item = 1"}) {
        SCOPED_TRACE(text);
        ASSERT_EQ(runStatement(cell.local, text), "");
    }
    ASSERT_EQ(runStatement(cell.shared, "insert into FixtureList values(1234, 12.50, 007)"), "");
    EXPECT_EQ(cell.local.rows("select typeof(Template_ID), typeof(Version), \"Auto Points\" from "
                              "TemplateName where Template_ID = 3"),
              (Rows{{"integer", "integer", "0"}}));
    EXPECT_EQ(cell.local.rows("select typeof(Template_ID), Value_ID, [Default] from "
                              "TemplateDefaults where Template_ID = 3"),
              (Rows{{"integer", "17", "0.500"}}));
    EXPECT_EQ(
        cell.local.rows("select typeof(Value_1), Value_1, typeof(Value_2), Value_2, "
                        "typeof(Image), Image, typeof(State), State, typeof(Node_Level), "
                        "Node_Level from Jobs where Pallet_Number = 7 and Job_Number = 1 "
                        "and Line_Number = 1"),
        (Rows{{"text", "0.500", "text", "007", "integer", "2", "integer", "7", "integer", "-1"}}));
    EXPECT_EQ(cell.local.rows("select typeof(Locked), Locked, typeof(Special), Special from "
                              "TemplateData where Template_ID = 2 and Item = 1"),
              (Rows{{"integer", "1", "integer", "3"}}));
    EXPECT_EQ(cell.shared.rows("select typeof(Part_Number), Part_Number, typeof(Z), Z, "
                               "Description from FixtureList where Part_Number = '1234'"),
              (Rows{{"text", "1234", "real", "12.5", "007"}}));
}

} // namespace
