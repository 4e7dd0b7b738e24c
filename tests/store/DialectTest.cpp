// The dialect adapter: its rewrites on their own, then the statement shapes it rewrites, translated
// and run on the real schema of both databases.
#include "store/Dialect.h"
#include "store/EmbeddedData.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <functional>
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
        {"truncate TemplateCopy", "delete from TemplateCopy"},
        {"  TRUNCATE\r\n   TemplateCopy  ", "  delete from\r\n   TemplateCopy  "},
        {"truncate table TemplateCopy", "delete from TemplateCopy"},
    });
    // Nothing to empty, or the word used otherwise: left for the engine to judge.
    expectUnchanged({"truncate", "truncated TemplateCopy",
                     "select * from TemplateName where Name = 'truncate TemplateCopy'"});
}

TEST(DialectRewrite, InsertOfAParenthesisedSelectLosesTheParentheses) {
    expectRewrites({
        {"insert into TemplateCopy (select * from TemplateData where Template_ID = 3)",
         "insert into TemplateCopy select * from TemplateData where Template_ID = 3"},
        // Inner parentheses and parentheses inside literals stay; the words do not run together.
        {"INSERT INTO TemplateCopy(SELECT * FROM TemplateData WHERE Code IN ('A)', '(B'))",
         "INSERT INTO TemplateCopy SELECT * FROM TemplateData WHERE Code IN ('A)', '(B')"},
        {"insert into TemplateCopy\n(\nselect * from TemplateData\n)\n",
         "insert into TemplateCopy\n\nselect * from TemplateData\n\n"},
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
        {"insert into TemplateDefaults (Template_ID,Value_ID,default) values('4','17','x')",
         "insert into TemplateDefaults (Template_ID,Value_ID,[default]) values('4','17','x')"},
    });
    expectUnchanged({
        "insert into TemplateDefaults (Template_ID, Value_ID, [Default]) values('4', '17', 'x')",
        "insert into ValueType (Value_ID, Description) values('4', 'Default')",
        "select [Default] from ValueType where Value_ID = 17",
    });
}

TEST(DialectRewrite, NumbersPlacedAsValuesAreQuotedAndNowhereElse) {
    expectRewrites({
        {"insert into TemplateName values(5, 'FIX', '', 1, False)",
         "insert into TemplateName values('5', 'FIX', '', '1', False)"},
        {"insert into T values(-0.500, 007, +3, .5, 5., 1e3, 2.5E-3)",
         "insert into T values('-0.500', '007', '+3', '.5', '5.', '1e3', '2.5E-3')"},
        {"insert into T values (1,2), (3, 4)", "insert into T values ('1','2'), ('3', '4')"},
        {"update Jobs set Value_1 = 007, Path = 'x', Image=2\nwhere Line_Number = 0",
         "update Jobs set Value_1 = '007', Path = 'x', Image='2'\nwhere Line_Number = 0"},
        {"update T set A = 1 where B = 2 and C in (select 3)",
         "update T set A = '1' where B = 2 and C in (select 3)"},
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
        "select * from TemplateName\nwhere Fixture = 'truncate TemplateCopy'",
        "update Jobs set Value_1 = 'a = 1, b = 2 where', Path = '(select' where Line_Number = 0",
        "/* truncate TemplateCopy */ select 1",
    });
}

// Words before an open literal are still rewritten, so that the engine's error names the break
// itself; the open literal is never closed.
TEST(DialectRewrite, ABrokenLiteralStaysBroken) {
    expectRewrites({
        {"truncate TemplateCopy where Name = 'x", "delete from TemplateCopy where Name = 'x"},
        {"update ValueType set [Default] = 5 where Value_ID = 'x",
         "update ValueType set [Default] = '5' where Value_ID = 'x"},
        {"insert into TemplateDefaults (Template_ID, Value_ID, Default) values(1, '17', 'it's')",
         "insert into TemplateDefaults (Template_ID, Value_ID, [Default]) values(1, '17', 'it's')"},
        {"update Jobs set Value_1 = 5 where Code = `x",
         "update Jobs set Value_1 = '5' where Code = `x"},
    });
    expectUnchanged({
        "select * from TemplateName\nwhere Fixture = 'O'Brien'",
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
    expectUnchanged({
        "select * from TemplateName\nwhere Fixture = 'x'; delete from Jobs; --'",
        "select 1;",
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
        if (rc != SQLITE_OK)
            throw std::runtime_error("cannot open an in-memory database");
        const std::string_view schema = store::embeddedData(schemaFile);
        if (schema.empty())
            throw std::runtime_error(std::string(schemaFile) + " is not embedded");
        exec(std::string(schema));
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
        while (sqlite3_step(raw) == SQLITE_ROW)
            out.push_back(rowOf(raw));
        return out;
    }

    std::string value(const std::string& sql) const {
        const Rows r = rows(sql);
        return r.empty() || r[0].empty() ? "<no row>" : r[0][0];
    }

    static Row rowOf(sqlite3_stmt* stmt) {
        Row row;
        for (int i = 0; i < sqlite3_column_count(stmt); ++i) {
            const auto* text = sqlite3_column_text(stmt, i);
            row.emplace_back(text ? reinterpret_cast<const char*>(text) : "<null>");
        }
        return row;
    }

private:
    std::unique_ptr<sqlite3, int (*)(sqlite3*)> handle_{nullptr, sqlite3_close};
};

// What became of a statement: prepared as exactly one statement and run, or the engine's error.
struct Outcome {
    std::string error; // empty when it ran
    Rows rows;
};

// Translates, prepares and runs the way the store does: text after the first statement is an
// error, and then nothing runs at all.
Outcome runStatement(const Db& db, const std::string& text) {
    const std::string sql = translateStatement(text);
    sqlite3_stmt* raw = nullptr;
    const char* tail = nullptr;
    if (sqlite3_prepare_v2(db.get(), sql.c_str(), static_cast<int>(sql.size()), &raw, &tail) !=
        SQLITE_OK)
        return {sqlite3_errmsg(db.get()), {}};
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> stmt(raw, sqlite3_finalize);
    if (!raw)
        return {"no statement", {}};
    const std::string_view rest(tail, sql.data() + sql.size() - tail);
    if (rest.find_first_not_of(" \t\r\n") != std::string_view::npos)
        return {"text after the first statement: " + std::string(rest), {}};
    Outcome out;
    int rc = SQLITE_ROW;
    while ((rc = sqlite3_step(raw)) == SQLITE_ROW)
        out.rows.push_back(Db::rowOf(raw));
    if (rc != SQLITE_DONE)
        out.error = sqlite3_errmsg(db.get());
    return out;
}

Row column(const Rows& rows, std::size_t index) {
    Row out;
    for (const Row& r : rows)
        out.push_back(index < r.size() ? r[index] : "<no column>");
    return out;
}

// Both databases with a small cell: three templates, defaults, two jobs.
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
            insert into TemplateDefaults values (1, '17', '0.25'), (1, 'G01', '2'), (2, '17', '1');
            insert into ValueType values (0, 0, 'None', ''), (17, 3, 'Feed', '0.1');
            insert into Jobs (Pallet_Number, Job_Number, Line_Number, Code, Value_1, Value_2, Path)
                values (7, 1, 0, 'HDR', 'Header', '3', ''), (7, 1, 1, 'G92', '0.500', '', ''),
                       (7, 1, 2, 'M98', '', '', ''), (7, 2, 0, 'HDR', 'Header', '1', ''),
                       (8, 1, 0, 'HDR', 'Header', '1', '');
        )");
        shared.exec(R"(
            insert into FixtureList values ('FIX-A', 12.5, 'Vise');
            insert into Config values (1, 0, 'Unit', '3', 'FANUC Robocut'), (1, 0, 'Unit', '4', 'Lathe'),
                (1, 3, 'Unit', 'MachineName', 'Robocut 1'), (1, 3, 'Unit', 'DisplayNumber', '2');
        )");
    }
    Db& on(bool sharedDb) { return sharedDb ? shared : local; }
};

constexpr bool Local = false;
constexpr bool Shared = true;

struct Shape {
    std::string issuedBy;
    bool shared;
    std::string setup;      // run directly before the statement, on the same database
    std::string text;       // as the system formats it; lines joined as a query joins them
    std::string translated; // what the engine is given
    std::function<void(Cell&, const Rows&)> effect;
};

std::vector<Shape> catalogue() {
    std::vector<Shape> shapes;
    const auto add = [&](std::string by, bool sharedDb, std::string setup, std::string text,
                         std::string translated, std::function<void(Cell&, const Rows&)> effect) {
        shapes.push_back({std::move(by), sharedDb, std::move(setup), std::move(text),
                          std::move(translated), std::move(effect)});
    };
    // Statements passed on as written run only if the schema has what they name.
    const std::string unit = "select [Value] from Config where Cell_Number = 1 and Unit_Number = "
                             "3 and [Section] = 'Unit' and Item = 'MachineName'";
    add("ReadUnitValue", Shared, "", unit, unit,
        [](Cell&, const Rows& r) { EXPECT_EQ(r, (Rows{{"Robocut 1"}})); });
    add("NewTemplate, fresh row", Local, "",
        "insert into TemplateName values(3, 'FIX-C', '', 1, False)",
        "insert into TemplateName values('3', 'FIX-C', '', '1', False)", [](Cell& c, const Rows&) {
            EXPECT_EQ(c.local.rows("select typeof(Template_ID), Fixture, Name, typeof(Version), "
                                   "Version, typeof(\"Auto Points\"), \"Auto Points\" "
                                   "from TemplateName where Template_ID = 3"),
                      (Rows{{"integer", "FIX-C", "", "integer", "1", "integer", "0"}}));
        });
    add("SetLocalDefaultValue", Local, "delete from TemplateDefaults where Value_ID = '17'",
        "insert into TemplateDefaults (Template_ID, Value_ID, Default) values(1, '17', '0.500')",
        "insert into TemplateDefaults (Template_ID, Value_ID, [Default]) values('1', '17', "
        "'0.500')",
        [](Cell& c, const Rows&) {
            EXPECT_EQ(c.local.rows("select typeof(Template_ID), Value_ID, [Default] from "
                                   "TemplateDefaults where Template_ID = 1 order by rowid"),
                      (Rows{{"integer", "G01", "2"}, {"integer", "17", "0.500"}}));
        });
    for (const std::string typed : {"0.500", "007"}) {
        add("SetGlobalDefaultValue, " + typed, Local, "",
            "update ValueType set [Default] = " + typed + " where Value_ID = 17",
            "update ValueType set [Default] = '" + typed + "' where Value_ID = 17",
            [typed](Cell& c, const Rows&) {
                EXPECT_EQ(c.local.rows("select typeof([Default]), [Default] from ValueType"),
                          (Rows{{"text", ""}, {"text", typed}}));
            });
    }
    return shapes;
}

TEST(StatementCatalogue, EveryShapeRunsOnTheSchemaWithItsEffect) {
    for (const Shape& shape : catalogue()) {
        SCOPED_TRACE(shape.issuedBy + ": " + shape.text);
        Cell cell;
        Db& db = cell.on(shape.shared);
        if (!shape.setup.empty())
            db.exec(shape.setup);
        EXPECT_EQ(translateStatement(shape.text), shape.translated);
        const Outcome out = runStatement(db, shape.text);
        ASSERT_EQ(out.error, "");
        shape.effect(cell, out.rows);
    }
}

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
            ASSERT_EQ(runStatement(cell.local, text).error, "");
        }
    };
    const auto codes = [&](int id) {
        return column(cell.local.rows("select Code from TemplateData where Template_ID = " +
                                      std::to_string(id) + " order by Item"),
                      0);
    };
    copy(1, 4);
    EXPECT_EQ(codes(4), (Row{"HDR", "G92", "WRK", "FTR"}));
    copy(2, 4);
    EXPECT_EQ(codes(4), (Row{"HDR", "WRK"}));
    EXPECT_EQ(codes(1), (Row{"HDR", "G92", "WRK", "FTR"}));
    EXPECT_EQ(cell.local.value("select typeof(Template_ID) from TemplateData where Item = 1 and "
                               "Template_ID = 4"),
              "integer");
}

// A quoted number keeps the exact text in a text column and becomes a number again in a
// numeric one, on the columns as the schema declares them.
TEST(StatementCatalogue, QuotedNumbersTakeTheTypeOfTheirColumn) {
    Cell cell;
    ASSERT_EQ(runStatement(cell.local, "update Jobs set Value_1 = 0.500, Value_2 = 007, Image = 2, "
                                       "State = 007, Node_Level = -1 where Pallet_Number = 7 and "
                                       "Job_Number = 1 and Line_Number = 1")
                  .error,
              "");
    EXPECT_EQ(
        cell.local.rows("select typeof(Value_1), Value_1, typeof(Value_2), Value_2, "
                        "typeof(Image), Image, typeof(State), State, typeof(Node_Level), "
                        "Node_Level from Jobs where Pallet_Number = 7 and Job_Number = 1 "
                        "and Line_Number = 1"),
        (Rows{{"text", "0.500", "text", "007", "integer", "2", "integer", "7", "integer", "-1"}}));
    ASSERT_EQ(runStatement(cell.local, "update TemplateData set Locked = 1, Special = +3 where "
                                       "Template_ID = 2 and Item = 1")
                  .error,
              "");
    EXPECT_EQ(cell.local.rows("select typeof(Locked), Locked, typeof(Special), Special from "
                              "TemplateData where Template_ID = 2 and Item = 1"),
              (Rows{{"integer", "1", "integer", "3"}}));
    ASSERT_EQ(runStatement(cell.shared, "insert into FixtureList values(1234, 12.50, 007)").error,
              "");
    EXPECT_EQ(cell.shared.rows("select typeof(Part_Number), Part_Number, typeof(Z), Z, "
                               "Description from FixtureList where Part_Number = '1234'"),
              (Rows{{"text", "1234", "real", "12.5", "007"}}));
}

} // namespace
