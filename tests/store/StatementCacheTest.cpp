// The database's statement cache: bounded, and statements held by a table or a caller outlive
// their eviction from it.
#include "store/Database.h"
#include "store/Table.h"
#include "support/TestSupport.h"

#include "store/Engine.h"
#include <gtest/gtest.h>

#include <string>

namespace {

class StatementCacheTest : public ::testing::Test {
protected:
    void SetUp() override {
        db.setFileName(dir.file("c.db"));
        db.open(true);
        db.executeScript("create table Loose(A integer, B text);"
                         "create index \"Loose.ByA\" on Loose(A);");
    }

    // Runs `count` statement texts not seen before through the cache.
    void flood(int count) {
        for (int i = 0; i < count; ++i) {
            auto& stmt = db.cached("select " + std::to_string(next++));
            stmt.step();
            stmt.reset();
        }
    }

    testsupport::TempDir dir;
    store::Database db{"Local", "Default"};
    int next = 0;
};

} // namespace

TEST_F(StatementCacheTest, KeepsABoundedNumberOfStatements) {
    flood(3 * static_cast<int>(store::Database::CacheBound));
    EXPECT_LE(db.connection().liveStatements(), static_cast<int>(store::Database::CacheBound));
}

TEST_F(StatementCacheTest, HeldStatementsOutliveTheirEviction) {
    store::Table table(db, "Loose");
    table.open();
    table.setIndexName("ByA");
    for (int a = 1; a <= 3; ++a)
        table.appendRecord({a, "b" + std::to_string(a)});
    const auto held = db.shared("select count(*) from Loose");
    table.first();

    flood(2 * static_cast<int>(store::Database::CacheBound));

    // The table's moves and writes run on the statements it holds.
    table.next();
    EXPECT_EQ(table.fieldByName("A").asInteger(), 2);
    table.findNearest({3});
    EXPECT_EQ(table.fieldByName("B").asString(), "b3");
    table.edit();
    table.fieldByName("B").setAsString("x");
    table.post();
    table.deleteRecord();
    EXPECT_EQ(table.fieldByName("A").asInteger(), 2);
    EXPECT_EQ(table.recordCount(), 2);
    ASSERT_TRUE(held->step());
    EXPECT_EQ(held->columnInteger(0), 2);
    held->reset();
}
