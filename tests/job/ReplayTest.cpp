// The in-memory line replay against the same operations done row by row on the table.
#include "job/JobReplay.h"
#include "store/Database.h"
#include "store/Engine.h"
#include "store/Statement.h"
#include "store/Table.h"
#include "support/CellFixture.h"

#include <gtest/gtest.h>

#include <random>

namespace {

constexpr int Pallet = 3;

// A fresh line as the test's stand-in for the line an insert makes.
std::vector<store::Value> newLine(int job, int line, const std::string& code, int level) {
    return {
        Pallet, job, line, code, 0, level, "", "new", "", "", "", "", "", 1, level == 2 ? 2 : 0};
}

// The moves done one row at a time on a filtered table.
class RowByRow {
public:
    RowByRow(store::Database& db, int job) : job_(job), table_(db, "Jobs") {
        table_.open();
        table_.setIndexName("Primary");
        table_.setFilter("Pallet_Number = " + std::to_string(Pallet) +
                         " and Job_Number = " + std::to_string(job));
        table_.setFiltered(true);
    }

    void insert(int line, const std::string& code, int level) {
        table_.last();
        while (table_.hasRow() && table_.fieldByName("Line_Number").asInteger() >= line) {
            table_.edit();
            table_.fieldByName("Line_Number")
                .setAsInteger(table_.fieldByName("Line_Number").asInteger() + 1);
            table_.post();
            table_.prior();
            if (table_.bof() && table_.fieldByName("Line_Number").asInteger() >= line)
                break; // the first row: nothing before it
        }
        table_.appendRecord(newLine(job_, line, code, level));
    }

    void remove(int line, int count) {
        for (int n = 0; n < count; ++n) {
            table_.findNearest({Pallet, job_, line});
            table_.next();
            const bool atEnd = table_.eof();
            table_.findNearest({Pallet, job_, line});
            table_.deleteRecord();
            if (atEnd)
                return;
            while (!table_.eof()) {
                table_.edit();
                table_.fieldByName("Line_Number")
                    .setAsInteger(table_.fieldByName("Line_Number").asInteger() - 1);
                table_.post();
                table_.next();
            }
        }
    }

    void move(int from, int to, int count) {
        const int source = from;
        int destination = to > from ? to + count - 1 : to;
        int offset = 0;
        static const char* columns[] = {"Code",    "Syntax_Item", "Script_Line", "Value_1",
                                        "Value_2", "Value_3",     "Value_4",     "Value_5",
                                        "Value_6", "Image",       "State",       "Path"};
        for (int i = 0; i < count; ++i) {
            if (destination < source)
                offset = i;
            table_.findNearest({Pallet, job_, source + offset});
            std::vector<store::Value> saved;
            for (const char* c : columns)
                saved.push_back(table_.fieldByName(c).value());
            const int level = table_.fieldByName("Node_Level").asInteger();
            remove(source + offset, 1);
            insert(destination + offset, "NOP", level);
            table_.findNearest({Pallet, job_, destination + offset});
            table_.edit();
            for (std::size_t k = 0; k < saved.size(); ++k)
                table_.fieldByName(columns[k]).setValue(saved[k]);
            table_.post();
        }
    }

private:
    int job_;
    store::Table table_;
};

std::vector<std::string> jobRows(store::Database& db, int job) {
    auto stmt = db.shared("select Line_Number || '|' || Code || '|' || Node_Level || '|' || "
                          "ifnull(Value_1, 'null') || '|' || State || '|' || Image from Jobs "
                          "where Pallet_Number = " +
                          std::to_string(Pallet) + " and Job_Number = " + std::to_string(job) +
                          " order by Line_Number");
    std::vector<std::string> rows;
    while (stmt->step())
        rows.push_back(stmt->column(0).text());
    stmt->reset();
    return rows;
}

} // namespace

TEST(JobLineReplay, MatchesRowByRowMovesOnRandomSessions) {
    testsupport::CellFixture cell;
    store::Database db("Local", "Default");
    db.setFileName(cell.tmp.file("Quorvel.db"));
    db.open();
    std::mt19937 random(20261123);
    int compared = 0;
    for (int session = 0; session < 60; ++session) {
        db.execute("delete from Jobs");
        const int lines = 6 + static_cast<int>(random() % 30);
        std::vector<int> levels{0};
        for (int i = 1; i < lines; ++i)
            levels.push_back(1 + static_cast<int>(random() % 2));
        std::string sql;
        for (int job : {1, 2})
            for (int i = 0; i < lines; ++i)
                sql +=
                    "insert into Jobs (Pallet_Number, Job_Number, Line_Number, Code, Node_Level, "
                    "Value_1, Image, State) values (" +
                    std::to_string(Pallet) + ", " + std::to_string(job) + ", " + std::to_string(i) +
                    ", 'C" + std::to_string(i) + "', " +
                    std::to_string(levels[static_cast<std::size_t>(i)]) + ", 'v" +
                    std::to_string(i) + "', 2, 1);";
        db.executeScript("begin;" + sql + "commit;");
        RowByRow slow(db, 2);
        const auto original = job::loadJobLines(db, Pallet, 1);
        job::JobLineReplay fast(original);
        for (int op = 0; op < 25; ++op) {
            const int count = static_cast<int>(fast.lines().size());
            const int first = fast.lines().front().lineNumber;
            const int last = fast.lines().back().lineNumber;
            const int kind = count < 6 ? 0 : static_cast<int>(random() % 3);
            if (kind == 0) {
                const int line = first + 1 + static_cast<int>(random() % (last - first + 3));
                const std::string code = "N" + std::to_string(op);
                const int level = 1 + static_cast<int>(random() % 2);
                fast.InsertJobLine(line, code, level);
                slow.insert(line, code, level);
            } else if (kind == 1) {
                const int line = static_cast<int>(random() % (last + 3));
                const int n = 1 + static_cast<int>(random() % 4);
                fast.DeleteJobLines(line, n);
                slow.remove(line, n);
            } else {
                const int n = 1 + static_cast<int>(random() % 3);
                const int from = 1 + static_cast<int>(random() % (last - n + 1));
                const int to = 1 + static_cast<int>(random() % (last - n + 1));
                fast.MoveJobLines(from, to, n);
                slow.move(from, to, n);
            }
        }
        {
            store::Transaction tx(db);
            job::writeJobLines(db, Pallet, 1, original, fast,
                               [&](int line, const job::CreatedLine& created) {
                                   store::Table jobs(db, "Jobs");
                                   jobs.open();
                                   jobs.appendRecord(newLine(1, line, created.code, created.level));
                               });
            tx.commit();
        }
        const auto expected = jobRows(db, 2);
        ASSERT_EQ(jobRows(db, 1), expected) << "session " << session;
        compared += static_cast<int>(expected.size());
    }
    EXPECT_GT(compared, 600);
}

TEST(JobLineReplay, EdgesOfDeleteInsertAndMove) {
    std::vector<job::ReplaySlot> lines;
    for (int i = 0; i < 5; ++i)
        lines.push_back({i, 1, 100 + i, -1});
    job::JobLineReplay replay(lines);
    // Deleting the last line stops there, whatever the count.
    replay.DeleteJobLines(4, 3);
    ASSERT_EQ(replay.lines().size(), 4u);
    // A line past the end deletes the last line.
    replay.DeleteJobLines(9, 1);
    ASSERT_EQ(replay.lines().size(), 3u);
    EXPECT_EQ(replay.lines().back().rowid, 102);
    // A move onto its own place changes nothing.
    replay.MoveJobLines(1, 1, 1);
    EXPECT_EQ(replay.lines()[1].rowid, 101);
    EXPECT_EQ(replay.lines()[1].created, -1);
    // Inserting at line 0 is refused instead of renumbering forever.
    EXPECT_THROW(replay.InsertJobLine(0, "G00", 1), store::StoreError);
    // Inserting past the end leaves a gap; a delete in the gap takes the next line.
    replay.InsertJobLine(6, "G01", 1);
    EXPECT_EQ(replay.lines().back().lineNumber, 6);
    replay.DeleteJobLines(4, 1);
    ASSERT_EQ(replay.lines().size(), 3u);
    job::JobLineReplay empty({});
    EXPECT_THROW(empty.DeleteJobLines(0, 1), store::StoreError);
}
