// Rows kept in memory inside transactions (small sets, the last nearest search, edits that change
// nothing) give what the engine gives, and never hide a change made since.
#include "store/Database.h"
#include "store/Query.h"
#include "store/Table.h"
#include "support/CellFixture.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

using store::Database;
using store::Table;
using store::Value;

namespace {

class CursorCacheTest : public ::testing::Test {
protected:
    void SetUp() override {
        db.setFileName(dir.file("c.db"));
        db.open(true);
        db.executeScript(R"(
            create table Syntax(Code text not null, Item integer not null, Command text not null,
                                Description text);
            create unique index "Syntax.Primary" on Syntax(Code, Item, Command);
        )");
        for (const char* code : {"A", "B", "G92", "g92", "M98"})
            for (int item = 1; item <= 3; ++item)
                for (const char* command : {"ALL", "UV"})
                    db.execute(std::string("insert into Syntax values ('") + code + "', " +
                               std::to_string(item) + ", '" + command + "', '" + code + "." +
                               std::to_string(item) + "." + command + "')");
        t.open();
        t.setIndexName("Primary");
    }

    std::string here() {
        return t.fieldByName("Description").asString() + (t.bof() ? " bof" : "") +
               (t.eof() ? " eof" : "") + "; ";
    }

    testsupport::TempDir dir;
    Database db{"Local", "Default"};
    Table t{db, "Syntax"};
};

} // namespace

TEST_F(CursorCacheTest, MovesAndSearchesInATransactionMatchTheEngine) {
    using Step = std::function<void()>;
    const Step first = [&] { t.first(); }, last = [&] { t.last(); };
    const Step next = [&] { t.next(); }, prior = [&] { t.prior(); };
    const auto nearest = [&](auto... key) {
        return Step([&, k = std::vector<Value>{Value(key)...}] { t.findNearest(k); });
    };
    const auto filter = [&](bool on) {
        return Step([&, on] {
            t.setFilter("Command = 'UV'");
            t.setFiltered(on);
        });
    };
    // Steps past either end; nearest keys between codes, in another case, past the last key, with
    // text for a number column; the same under a filter.
    const std::vector<Step> steps{first,
                                  next,
                                  prior,
                                  prior,
                                  nearest("B"),
                                  nearest("B", 2),
                                  nearest("B", "3", "UV"),
                                  nearest("B", 2, ""),
                                  nearest("C"),
                                  nearest("G92"),
                                  nearest("Z"),
                                  next,
                                  nearest(""),
                                  filter(true),
                                  nearest("G92", 2),
                                  next,
                                  next,
                                  filter(false),
                                  next,
                                  nearest("M98", 3, "UV"),
                                  next,
                                  last,
                                  prior};
    const auto walk = [&] {
        std::string trace;
        for (const auto& step : steps) {
            step();
            trace += here();
        }
        return trace;
    };
    const std::string engine = walk();
    std::string cached;
    {
        store::Transaction tx(db);
        cached = walk();
        tx.commit();
    }
    EXPECT_EQ(cached, engine);
    EXPECT_NE(engine.find("g92.3.UV eof"), std::string::npos) << engine;
}

TEST_F(CursorCacheTest, ChangesSinceTheRowsWereReadAreSeen) {
    Database other{"Local", "Default"};
    other.setFileName(dir.file("c.db"));
    other.open();
    const auto description = [&] { return t.fieldByName("Description").asString(); };
    {
        store::Transaction tx(db);
        t.findNearest({"B", 1, "UV"});
        t.next();
        // A write of this connection, past the table, inside the same transaction.
        store::Query q(db);
        q.setSql("update Syntax set Description = 'mine' where Code = 'B' and Item = 2");
        q.execSQL();
        t.findNearest({"B", 2, "ALL"});
        EXPECT_EQ(description(), "mine");
        // An edit that changes nothing writes nothing and keeps the row current.
        t.edit();
        t.fieldByName("Description").setAsString("mine");
        t.post();
        EXPECT_EQ(db.changes(), 2); // still the update's two rows: no statement ran
        tx.commit();
    }
    // Another connection commits between two transactions of this one.
    store::Bookmark mark;
    other.execute("update Syntax set Description = 'theirs' where Code = 'B' and Item = 2");
    other.execute("insert into Syntax values ('B', 1, 'VV', 'new')");
    {
        store::Transaction tx(db);
        t.findNearest({"B", 2, "ALL"});
        EXPECT_EQ(description(), "theirs");
        t.findNearest({"B", 1, "V"});
        EXPECT_EQ(description(), "new");
        t.prior();
        EXPECT_EQ(description(), "B.1.UV");
        mark = t.getBookmark();
        tx.commit();
    }
    // The row a bookmark stands on, deleted meanwhile, is not found again from memory.
    other.execute("delete from Syntax where Code = 'B' and Item = 1 and Command = 'UV'");
    {
        store::Transaction tx(db);
        EXPECT_THROW(t.gotoBookmark(mark), store::StoreError);
    }
    // A row deleted by the other connection is not posted to, even by an edit that changes
    // nothing: outside the transaction the edit is written and finds the row gone.
    t.findNearest({"B", 1, "VV"});
    other.execute("delete from Syntax where Command = 'VV'");
    t.edit();
    t.fieldByName("Description").setAsString("new");
    EXPECT_THROW(t.post(), store::StoreError);
}
