// Queries: one statement per call, reading results, errors that name the statement.
#include "store/Query.h"
#include "store/Database.h"
#include "store/Table.h"
#include "support/CellFixture.h"

#include "store/Engine.h"
#include <gtest/gtest.h>

using store::Database;
using store::Query;
using store::StoreError;

namespace {

class QueryTest : public ::testing::Test {
protected:
    void SetUp() override {
        db.setFileName(dir.file("q.db"));
        db.open(true);
        db.executeScript("create table T(A integer, B text);"
                         "insert into T values (1, 'x'); insert into T values (2, null);");
    }
    testsupport::TempDir dir;
    Database db{"Local", "Default"};
};

} // namespace

TEST_F(QueryTest, SecondStatementIsRefusedAndNothingRuns) {
    Query q(db);
    q.setSql("delete from T where A = 1; delete from T");
    auto text = testsupport::storeErrorText([&] { q.execSQL(); });
    EXPECT_NE(text.find("delete from T where A = 1; delete from T"), std::string::npos) << text;
    q.setSql("select count(*) from T");
    q.open();
    EXPECT_EQ(q.fields(0).asInteger(), 2);
    // A quote in a value breaks the statement; the error names it and the table is intact.
    q.setSql("delete from T where B = 'it's'");
    text = testsupport::storeErrorText([&] { q.execSQL(); });
    EXPECT_EQ(text.rfind("Statement failed: ", 0), 0u) << text; // words first, statement after
    EXPECT_NE(text.find("where B = 'it's'"), std::string::npos) << text;
    // So for an error the engine finds only when the statement runs.
    db.executeScript("create table U(A integer not null)");
    q.setSql("insert into U values (null)");
    text = testsupport::storeErrorText([&] { q.execSQL(); });
    EXPECT_EQ(text.rfind("Statement failed: ", 0), 0u) << text;
    q.setSql("delete from T where B = 'x'; --");
    q.execSQL(); // a trailing comment is not a statement
    EXPECT_EQ(q.rowsAffected(), 1);
}

TEST_F(QueryTest, EngineParametersAreRefusedAndNothingRuns) {
    Query q(db);
    for (const char* text :
         {"delete from T where A = ?", "delete from T where A = ?1", "delete from T where B = :b",
          "delete from T where B = @b", "delete from T where B = $b"}) {
        q.setSql(text);
        const auto error = testsupport::storeErrorText([&] { q.execSQL(); });
        EXPECT_NE(error.find(std::string("nothing was run of: ") + text), std::string::npos)
            << error;
    }
    q.setSql("select * from T where B = ?");
    EXPECT_NE(testsupport::storeErrorText([&] { q.open(); }).find("parameter"), std::string::npos);
    EXPECT_FALSE(q.active());
    // Marks inside a literal are text.
    q.setSql("select count(*) from T where B <> '?' and B <> ':b'");
    q.open();
    EXPECT_EQ(q.fields(0).asInteger(), 1);
    q.setSql("select count(*) from T");
    q.open();
    EXPECT_EQ(q.fields(0).asInteger(), 2);
}

TEST_F(QueryTest, TransactionsRollBackUnlessCommittedAndTakeTheWriteLockAtTheStart) {
    {
        store::Transaction dropped(db);
        db.execute("delete from T");
    }
    Database other("Local", "Default");
    other.setFileName(dir.file("q.db"));
    other.open();
    other.connection().setBusyTimeout(0);
    {
        store::Transaction tx(db);
        // A second writer finds the lock taken at once (and waits the busy timeout for it).
        try {
            other.execute("insert into T values (3, 'other')");
            FAIL() << "expected the write lock to be held";
        } catch (const StoreError& e) {
            EXPECT_EQ(e.engineCode() & 0xff, store::code::Busy) << e.what();
        }
        {
            store::Transaction inner(db);
            db.execute("delete from T where A = 2");
        }
        store::Transaction committed(db);
        db.execute("delete from T where A = 1");
        committed.commit();
        tx.commit();
    }
    // Only the committed inner change stays; the other connection may write again.
    other.execute("insert into T values (3, 'other')");
    Query q(db);
    q.setSql("select A from T order by A");
    q.open();
    EXPECT_EQ(q.fields(0).asInteger(), 2);
    q.next();
    EXPECT_EQ(q.fields(0).asInteger(), 3);
    EXPECT_EQ(q.recordCount(), 2);
}

TEST_F(QueryTest, LinesJoinAndResultsReadWithNullDefaults) {
    Query q(db);
    q.setSql("select * from T");
    q.addLine("where A = 2");
    q.open();
    ASSERT_EQ(q.recordCount(), 1);
    EXPECT_EQ(q.fieldByName("B").asString(), "");
    EXPECT_TRUE(q.fieldByName("B").isNull());
    EXPECT_EQ(q.fieldNames(), (std::vector<std::string>{"A", "B"}));
    q.next();
    EXPECT_TRUE(q.eof());
    q.setSql("select * from T where A > 5");
    q.open();
    EXPECT_TRUE(q.eof());
    EXPECT_EQ(q.fields(0).asInteger(), 0);
    q.setSql("select B from T where A = 1");
    q.open();
    EXPECT_THROW(q.fields(0).asInteger(), StoreError); // 'x' is no integer
}

TEST_F(QueryTest, BrokenFilesGiveClearErrors) {
    Database missing("ZEL", "ZEL");
    missing.setFileName(dir.file("absent.db"));
    auto text = testsupport::storeErrorText([&] { missing.open(); });
    EXPECT_NE(text.find("absent.db"), std::string::npos) << text;
    testsupport::writeFile(dir.file("junk.db"), std::string(4096, 'j'));
    Database junk("ZEL", "ZEL");
    junk.setFileName(dir.file("junk.db"));
    text = testsupport::storeErrorText([&] { junk.open(); });
    EXPECT_NE(text.find("junk.db"), std::string::npos) << text;
    EXPECT_FALSE(junk.connected());
}

// A number placed in a text column keeps the digits typed; a quoted one in a number column is a
// number. On both engines.
TEST_F(QueryTest, NumbersPlacedInTextColumnsKeepTheDigitsTyped) {
    Query q(db);
    for (const char* sql : {"insert into T values (3, 007)", "update T set B = 0.500 where A = 1",
                            "insert into T (A, B) values ('4', -1.50)"}) {
        q.setSql(sql);
        q.execSQL();
    }
    q.setSql("select A, B from T where A <> 2 order by A");
    q.open();
    std::vector<std::string> read;
    for (; !q.eof(); q.next())
        read.push_back(q.fields(0).asString() + "|" + q.fields(1).asString());
    EXPECT_EQ(read, (std::vector<std::string>{"1|0.500", "3|007", "4|-1.50"}));
}
