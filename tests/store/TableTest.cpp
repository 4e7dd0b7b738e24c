// Cursor behaviour of tables: moves, flags, filters, seeks, edits and deletes.
#include "store/Table.h"
#include "store/Database.h"
#include "store/FilterTerms.h"
#include "store/Query.h"
#include "support/CellFixture.h"

#include <gtest/gtest.h>

#include <functional>

using store::Database;
using store::Query;
using store::StoreError;
using store::Table;
using store::Value;

namespace {

class TableTest : public ::testing::Test {
protected:
    void SetUp() override {
        db.setFileName(dir.file("t.db"));
        db.open(true);
        db.executeScript(R"(
            create table Jobs(Pallet_Number integer not null, Job_Number integer not null,
                              Line_Number integer not null, Code text, Value_1 text, Value_2 text);
            create unique index "Jobs.Primary" on Jobs(Pallet_Number, Job_Number, Line_Number);
            create table TemplateVersion(Template_ID integer not null, Version integer not null,
                                         Sequence integer not null, Item integer, Action text,
                                         Value text, Number integer);
            create index "TemplateVersion.Primary" on TemplateVersion(Template_ID, Version, Sequence);
            create table TemplateName(Template_ID integer primary key, Fixture text, Name text,
                                      Version integer, "Auto Points" boolean);
            create index "TemplateName.Primary" on TemplateName(Template_ID);
        )");
    }

    // Adds lines 0..count-1 of a job through the table.
    void addLines(int pallet, int job, int count) {
        for (int i = 0; i < count; ++i)
            t.appendRecord({pallet, job, i, "C" + std::to_string(i)});
    }

    // The current line and the flags that are set, as "2 eof".
    std::string here() {
        return std::to_string(t.fieldByName("Line_Number").asInteger()) + (t.bof() ? " bof" : "") +
               (t.eof() ? " eof" : "");
    }

    // Opens Jobs in key order.
    void openJobs() {
        t.open();
        t.setIndexName("Primary");
    }

    testsupport::TempDir dir;
    Database db{"Local", "Default"};
    Table t{db, "Jobs"};
};

std::vector<int> walkLines(Table& t) {
    std::vector<int> lines;
    t.first();
    while (!t.eof()) {
        lines.push_back(t.fieldByName("Line_Number").asInteger());
        t.next();
    }
    return lines;
}

} // namespace

TEST_F(TableTest, MovesSetFlagsOnlyWhenAMoveFails) {
    t.open();
    EXPECT_EQ(here(), "0 bof eof"); // no rows
    t.setIndexName("Primary");
    addLines(1, 1, 3);
    t.first();
    EXPECT_EQ(here(), "0 bof");
    t.next();
    t.next(); // arrives on the last row: neither flag
    EXPECT_EQ(here(), "2");
    t.next(); // fails: end flag, row stays
    EXPECT_EQ(here(), "2 eof");
    t.prior();
    t.prior(); // arrives on the first row: no begin flag
    EXPECT_EQ(here(), "0");
    t.prior();
    EXPECT_EQ(here(), "0 bof");
    t.last();
    EXPECT_EQ(here(), "2 eof");
}

TEST_F(TableTest, KeyOrderNotInsertionOrderAndDuplicatesKeepWriteOrder) {
    Table v(db, "TemplateVersion");
    v.open();
    v.setIndexName("Primary");
    v.appendRecord({1, 2, 1, 10, "ADD"});
    v.appendRecord({1, 2, 1, 11, "DEL"});
    v.appendRecord({1, 1, 1, 12, "MOV"});
    v.appendRecord({1, 2, 1, 13, "ADD"});
    std::vector<int> items;
    for (v.first(); !v.eof(); v.next())
        items.push_back(v.fieldByName("Item").asInteger());
    EXPECT_EQ(items, (std::vector<int>{12, 10, 11, 13}));
    std::vector<int> back;
    for (v.last(); !v.bof(); v.prior())
        back.push_back(v.fieldByName("Item").asInteger());
    EXPECT_EQ(back, (std::vector<int>{13, 11, 10, 12}));
    v.findKey({1, 2, 1});
    EXPECT_EQ(v.fieldByName("Item").asInteger(), 10);
    v.next();
    EXPECT_EQ(v.recNo(), 3);
}

TEST_F(TableTest, FiltersLandOnFirstRowAndBoundEveryMoveAcrossJobBorders) {
    openJobs();
    addLines(1, 1, 4);
    addLines(1, 2, 3);
    addLines(2, 1, 2);
    t.findKey({1, 1, 3});
    t.setFiltered(false); // same state again: still back to the first row
    EXPECT_EQ(t.fieldByName("Line_Number").asInteger(), 0);
    t.setFilter("Pallet_Number = 1 and Job_Number = 2");
    t.setFiltered(true);
    EXPECT_EQ(t.recordCount(), 3);
    EXPECT_EQ(walkLines(t), (std::vector<int>{0, 1, 2}));
    t.last();
    EXPECT_EQ(t.recNo(), 3);
    t.prior();
    EXPECT_EQ(t.recNo(), 2);
    // A seek sees only filtered rows: the first filtered row at or after the key.
    t.findNearest({1, 1, 2});
    EXPECT_EQ(t.fieldByName("Job_Number").asInteger(), 2);
    EXPECT_EQ(t.fieldByName("Line_Number").asInteger(), 0);
    EXPECT_FALSE(t.findKey({1, 1, 2}));
    EXPECT_EQ(t.fieldByName("Job_Number").asInteger(), 2);
    // Past the last key: the last row, end flag clear.
    t.findNearest({9});
    EXPECT_EQ(here(), "2");
    // An or-filter over a non-key column.
    t.refilter("Code = 'C1' or Code = 'C3'");
    EXPECT_EQ(walkLines(t), (std::vector<int>{1, 3, 1, 1}));
    // No matching row: end flag right after First.
    t.refilter("Pallet_Number = 7");
    EXPECT_EQ(here(), "0 bof eof");
    EXPECT_EQ(t.recordCount(), 0);
    EXPECT_EQ(t.recNo(), 0);
    // A filter stays on until someone changes it.
    t.appendRecord({7, 1, 0, "X"});
    t.appendRecord({8, 1, 0, "Y"});
    EXPECT_EQ(t.recordCount(), 1);
    // The current row moved out of the filtered set by a key change: steps still find the set.
    t.setFilter("Pallet_Number = 1 and Job_Number = 2");
    t.findKey({1, 2, 1});
    t.edit();
    t.fieldByName("Job_Number").setAsInteger(1);
    t.fieldByName("Line_Number").setAsInteger(20);
    t.post();
    EXPECT_EQ(t.fieldByName("Job_Number").asInteger(), 1);
    t.next();
    EXPECT_EQ(t.fieldByName("Job_Number").asInteger(), 2);
    EXPECT_EQ(t.fieldByName("Line_Number").asInteger(), 0);
    t.setFilter("[Pallet_Number] = 2");
    EXPECT_EQ(walkLines(t), (std::vector<int>{0, 1}));
    t.setFiltered(false);
    EXPECT_EQ(t.recordCount(), 11);
}

TEST_F(TableTest, SeeksOnLeadingKeyColumns) {
    t.open();
    EXPECT_THROW(t.findKey({1}), StoreError); // no index selected yet
    t.setIndexName("Primary");
    addLines(3, 1, 3);
    addLines(5, 2, 3);
    EXPECT_TRUE(t.findKey({5}));
    EXPECT_EQ(t.fieldByName("Line_Number").asInteger(), 0);
    EXPECT_TRUE(t.findKey({"3", "1", "2"})); // text values meet an integer key
    EXPECT_EQ(t.fieldByName("Line_Number").asInteger(), 2);
    EXPECT_FALSE(t.findKey({4}));
    EXPECT_EQ(t.fieldByName("Pallet_Number").asInteger(), 3); // stayed where it was
    t.findNearest({4});
    EXPECT_EQ(t.fieldByName("Pallet_Number").asInteger(), 5);
    t.findNearest({3, 1, 1});
    EXPECT_EQ(t.fieldByName("Line_Number").asInteger(), 1);
    EXPECT_THROW(t.findKey({1, 2, 3, 4}), StoreError);
}

TEST_F(TableTest, EditPostWritesChangedColumnsAndFollowsKey) {
    openJobs();
    addLines(1, 1, 3);
    t.findKey({1, 1, 1});
    t.edit();
    t.fieldByName("Value_1").setAsString("0.500");
    // Meanwhile a statement changes another column of the same row.
    db.execute("update Jobs set Value_2 = 'kept' where Line_Number = 1");
    t.post();
    EXPECT_EQ(t.fieldByName("Value_1").asString(), "0.500");
    EXPECT_EQ(t.fieldByName("Value_2").asString(), "kept");
    // A key change moves the cursor with the row.
    t.edit();
    t.fieldByName("Line_Number").setAsInteger(9);
    t.post();
    EXPECT_EQ(t.fieldByName("Line_Number").asInteger(), 9);
    t.prior();
    EXPECT_EQ(t.fieldByName("Line_Number").asInteger(), 2);
    // A move posts a changed edit and drops an unchanged one.
    t.edit();
    t.fieldByName("Code").setAsString("NEW");
    t.first();
    t.findKey({1, 1, 2});
    EXPECT_EQ(t.fieldByName("Code").asString(), "NEW");
    // Writing needs edit state.
    EXPECT_THROW(t.fieldByName("Code").setAsString("x"), StoreError);
}

TEST_F(TableTest, PostAndDeleteNeverReachARowThatReusedTheRowid) {
    openJobs();
    addLines(1, 1, 3);
    // The last row is deleted behind the cursor and its rowid given to a new row.
    const auto reuseLastRowid = [&] {
        db.execute("delete from Jobs where Line_Number = 2");
        db.execute("insert into Jobs values (1, 1, 7, 'NEW', null, null)");
    };
    // The row on line 7, and how many rows the lost edit wrote.
    const auto state = [&] {
        Query read(db);
        read.setSql("select Code, (select count(*) from Jobs where Code = 'LOST') from Jobs "
                    "where Line_Number = 7");
        read.open();
        return read.fields(0).asString() + "|" + read.fields(1).asString();
    };
    t.findKey({1, 1, 2});
    t.edit();
    t.fieldByName("Code").setAsString("LOST");
    reuseLastRowid();
    const std::string error = testsupport::storeErrorText([&] { t.post(); });
    EXPECT_NE(error.find("Record not found"), std::string::npos) << error;
    EXPECT_NE(error.find("Jobs"), std::string::npos) << error;
    EXPECT_EQ(state(), "NEW|0");

    db.execute("delete from Jobs where Line_Number = 7");
    t.appendRecord({1, 1, 2, "C2"});
    t.findKey({1, 1, 2});
    reuseLastRowid();
    t.deleteRecord();
    EXPECT_EQ(state(), "NEW|0");
}

TEST_F(TableTest, FilterWithAnEngineParameterIsRefusedAndChangesNothing) {
    openJobs();
    addLines(1, 1, 3);
    t.setFilter("Code = ?");
    for (const auto& attempt : std::vector<std::function<void()>>{
             [&] { t.setFiltered(true); }, [&] { t.refilter("Line_Number = :line"); },
             [&] { t.refilter("Code = @code"); }, [&] { t.refilter("Code = $code or 1"); }}) {
        const std::string error = testsupport::storeErrorText(attempt);
        EXPECT_NE(error.find("filter of table Jobs"), std::string::npos) << error;
        // The table stays unfiltered and usable.
        EXPECT_FALSE(t.filtered());
        EXPECT_EQ(walkLines(t), (std::vector<int>{0, 1, 2}));
    }
    // Marks inside literals and bracketed names are no parameters.
    t.refilter("Code <> '?' and [Code] <> ':p'");
    EXPECT_EQ(t.recordCount(), 3);
}

TEST_F(TableTest, IntegerPrimaryKeyChangeMovesCursor) {
    Table t(db, "TemplateName");
    t.open();
    t.setIndexName("Primary");
    t.appendRecord({1, "F", "one", 1, false});
    t.appendRecord({2, "F", "two", 1, false});
    t.findKey({1});
    t.edit();
    t.fieldByName("Template_ID").setAsInteger(5);
    t.post();
    EXPECT_EQ(t.fieldByName("Name").asString(), "one");
    t.prior();
    EXPECT_EQ(t.fieldByName("Name").asString(), "two");
    EXPECT_EQ(t.fieldByName("Auto Points").asString(), "False");
    EXPECT_FALSE(t.fieldByName("auto points").asBoolean());
}

TEST_F(TableTest, DeleteMovesToNextOrNewLast) {
    openJobs();
    addLines(1, 1, 4);
    t.findKey({1, 1, 1});
    t.deleteRecord();
    EXPECT_EQ(here(), "2");
    t.last();
    t.deleteRecord();
    EXPECT_EQ(here(), "2");
    t.deleteRecord();
    t.deleteRecord();
    EXPECT_EQ(here(), "0 bof eof");
    EXPECT_THROW(t.deleteRecord(), StoreError);
}

TEST_F(TableTest, InsertByPositionLeavesNullsAndStandsOnNewRow) {
    openJobs();
    addLines(1, 1, 3);
    t.insertRecord({1, 1, 10, "G01"});
    EXPECT_EQ(t.fieldByName("Line_Number").asInteger(), 10);
    EXPECT_TRUE(t.fieldByName("Value_1").isNull());
    EXPECT_NE(testsupport::storeErrorText([&] { t.fieldByName("Colour"); }).find("Colour"),
              std::string::npos);
    EXPECT_THROW(t.insertRecord({1, 1, 1}), StoreError); // key violation
    EXPECT_EQ(t.fieldByName("Line_Number").asInteger(), 10);
    std::vector<Value> tooMany(7, Value(1));
    EXPECT_THROW(t.insertRecord(tooMany), StoreError);
    // Before-insert and before-delete may refuse silently.
    t.beforeInsert = [] { return false; };
    t.beforeDelete = [] { return false; };
    t.insertRecord({1, 1, 11});
    t.deleteRecord();
    EXPECT_EQ(t.recordCount(), 4);
}

TEST_F(TableTest, LongScansSeeWritesMadeDuringThem) {
    openJobs();
    addLines(1, 1, 80);
    addLines(1, 2, 3);
    t.refilter("Pallet_Number = 1 and Job_Number = 1");
    std::vector<int> expected(80);
    for (int i = 0; i < 80; ++i)
        expected[static_cast<std::size_t>(i)] = i;
    EXPECT_EQ(walkLines(t), expected);

    // Rows read ahead must not hide a write on the connection, a post of the table or another
    // filter met halfway.
    t.first();
    for (int i = 0; i < 40; ++i)
        t.next();
    db.execute("update Jobs set Code = 'U' where Line_Number = 42");
    db.execute("delete from Jobs where Line_Number = 41 and Job_Number = 1");
    t.next();
    EXPECT_EQ(t.fieldByName("Line_Number").asInteger(), 42);
    EXPECT_EQ(t.fieldByName("Code").asString(), "U");
    t.next();
    t.edit();
    t.fieldByName("Code").setAsString("P");
    t.post();
    for (int i = 0; i < 3; ++i)
        t.next();
    t.refilter("Pallet_Number = 1 and Job_Number = 2");
    t.next();
    EXPECT_EQ(t.fieldByName("Line_Number").asInteger(), 1);
    t.refilter("Pallet_Number = 1 and Job_Number = 1");
    std::string codes;
    for (t.findKey({1, 1, 43}); !t.eof(); t.next())
        codes += t.fieldByName("Code").asString() + " ";
    EXPECT_EQ(codes.substr(0, 12), "P C44 C45 C4");
    EXPECT_EQ(t.fieldByName("Line_Number").asInteger(), 79);
}

TEST_F(TableTest, StatementInsertSeenAtNextMoveAndBookmarks) {
    openJobs();
    addLines(1, 1, 5);
    t.findKey({1, 1, 1});
    auto mark = t.getBookmark();
    db.execute("insert into Jobs values (1, 1, 7, 'Q', null, null)");
    t.last();
    EXPECT_EQ(t.fieldByName("Code").asString(), "Q");
    t.gotoBookmark(mark);
    EXPECT_EQ(t.fieldByName("Line_Number").asInteger(), 1);
    t.freeBookmark(mark);
    EXPECT_THROW(t.gotoBookmark(mark), StoreError);
    t.findKey({1, 1, 4});
    auto gone = t.getBookmark();
    db.execute("delete from Jobs where Line_Number = 4");
    EXPECT_THROW(t.gotoBookmark(gone), StoreError);
}

TEST_F(TableTest, MissingTableIsNamed) {
    Table missing(db, "Nowhere");
    EXPECT_NE(testsupport::storeErrorText([&] { missing.open(); }).find("Nowhere"),
              std::string::npos);
    EXPECT_FALSE(missing.active());
}

TEST(FilterTerms, OnlyPlainConjunctionsOfEqualities) {
    auto terms = store::equalityTerms("Pallet_Number = 5 and [Job_Number]=-2 AND Code = 'it''s'");
    ASSERT_TRUE(terms);
    ASSERT_EQ(terms->size(), 3u);
    EXPECT_EQ((*terms)[1].first, "Job_Number");
    EXPECT_EQ((*terms)[1].second, store::Value(-2));
    EXPECT_EQ((*terms)[2].second, store::Value("it's"));
    for (const char* other : {"A = 1 or B = 2", "A > 1", "A = 1 and", "A = B", "A = '1", "A = 1.5",
                              "", "Command = 'ALL' or Command = 'G01'"})
        EXPECT_FALSE(store::equalityTerms(other)) << other;
}
