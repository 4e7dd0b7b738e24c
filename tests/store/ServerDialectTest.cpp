// The PostgreSQL text layer: statement rewrites and refusals, parameter numbering, and what the
// scripts refuse.
#include "store/ServerDialect.h"
#include "store/EmbeddedData.h"
#include "store/StoreError.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace store::server;

TEST(ServerDialect, StatementsAreRewrittenOrRefusedByName) {
    const std::vector<std::pair<std::string, std::string>> rewrites = {
        {"insert into TemplateDefaults (Template_ID, Default) values(1, False)",
         "insert into TemplateDefaults (Template_ID, \"default\") values('1', 0)"},
        {"Locked == TRUE and `Auto \"Points` = true and \"A\"\"b\" like 'G%'",
         "Locked = 1 and \"auto \"\"points\" = 1 and \"a\"\"b\" ilike 'G%'"},
        {"select IFNULL(Code, 'true') from Jobs -- like [X]\n where Code <= 'a'",
         "select coalesce(Code, 'true') from Jobs -- like [X]\n where Code <= 'a'"},
        // The row id lives in the base table only.
        {"delete from Jobs where RowID = ?",
         "delete from \"jobs__rows\" as \"jobs\" where _rowid_ = ?"},
        {"select j.oid from [Jobs] j join Syntax on 1 = 1",
         "select j._rowid_ from \"jobs__rows\" j join \"syntax__rows\" as \"syntax\" on 1 = 1"},
        // An open literal or name stays open for the server to refuse.
        {"select 'glob", "select 'glob"},
        {"select [Jobs", "select [Jobs"},
    };
    for (const auto& [text, expected] : rewrites)
        EXPECT_EQ(translateStatement(text), expected) << "from: " << text;

    const std::vector<std::pair<std::string, std::string>> refused = {
        {"PRAGMA user_version = 2", "pragma"},
        {"select * from \"SQLITE_SEQUENCE\"", "sqlite_sequence"},
        {"select * from Jobs where Code glob 'G*'", "glob"},
        {"insert or replace into Jobs values (1)", "insert or replace"},
        {"replace into Jobs values (1)", "replace into"},
        {"select * from Jobs limit 10, 5", "limit with an offset before a comma"},
        {"select rowid, * from Jobs", "a row id beside *"},
    };
    for (const auto& [text, what] : refused) {
        try {
            translateStatement(text);
            ADD_FAILURE() << "not refused: " << text;
        } catch (const store::StoreError& e) {
            EXPECT_EQ(e.what(), "The statement cannot run on the database server: " + what +
                                    " belongs to the embedded engine; nothing was run of: " + text);
            EXPECT_EQ(e.engineCode(), 21);
        }
    }
    // A limit inside a subquery followed by a comma of the outer select is no comma form.
    EXPECT_NO_THROW(translateStatement("select (select a from T limit 1), b from T limit 2"));

    int count = -1;
    EXPECT_EQ(numberParameters("select '?', \"?\" /* ? */ from T where a = ? and b = ?", count),
              "select '?', \"?\" /* ? */ from T where a = $1 and b = $2");
    EXPECT_EQ(count, 2);
    EXPECT_EQ(numberParameters("a = ?3 or b = ? or c = ?1", count), "a = $3 or b = $4 or c = $1");
    EXPECT_EQ(count, 4);
}

// The shapes the scripts produce run on the server in the server run of the store's tests; here,
// what that run cannot reach.
TEST(ServerDialect, ScriptsBecomeBaseTablesViewsIndexesAndCatalogRows) {
    const auto dropped = translateScript("drop table if exists T");
    EXPECT_EQ(dropped.back(), "delete from quorvel_columns where lower(table_name) = 't'");
    EXPECT_EQ(translateScript("create table if not exists T (A)")[1],
              "do $view$ begin if to_regclass('\"t\"') is null then create view \"t\" as select "
              "\"a\" from \"t__rows\" order by _rowid_; end if; end $view$");
    for (const char* text : {"create table T (A text collate nocase)",
                             "create table T (A integer primary key autoincrement)",
                             "create index I on T (A desc)", "create temp table T (A)"}) {
        EXPECT_THROW(translateScript(text), store::StoreError) << text;
    }
    // The system's own schema and demo scripts translate whole.
    for (const char* file :
         {"schema_local.sql", "demo_local.sql", "schema_shared.sql", "demo_shared.sql"})
        EXPECT_NO_THROW(translateScript(store::embeddedData(file))) << file;
}

} // namespace
