// The in-memory line replay: inserts, deletes and moves as they come out done row by row.
#include "job/JobReplay.h"
#include "store/StoreError.h"

#include <gtest/gtest.h>

// A fixed session whose moves cross the gap that an insert past the end leaves; the lines expected
// are what the same steps give done row by row on the table. Writing the result back is the job
// update's (UpdateTest, EditSessions).
TEST(JobLineReplay, MovesAcrossAGapMatchRowByRowMoves) {
    const int levels[] = {0, 1, 2, 1, 2, 1, 1};
    std::vector<job::ReplaySlot> rows;
    for (int i = 0; i < 7; ++i)
        rows.push_back({i, levels[i], i, -1});
    job::JobLineReplay replay(rows);
    replay.DeleteJobLines(9, 3);      // past the end: the last line, C6, and no more
    replay.InsertJobLine(9, "N0", 1); // lines 6 to 8 are a gap
    replay.MoveJobLines(2, 8, 2);     // C2 and C3 go past the gap
    replay.MoveJobLines(5, 1, 1);     // a line in the gap moves the next one, N0
    replay.DeleteJobLines(6, 1);      // and deletes the next one, C2
    replay.InsertJobLine(6, "N1", 2); // the line after it moves up
    replay.MoveJobLines(2, 2, 1);     // onto its own place: nothing changes
    // Inserting at line 0 is refused instead of renumbering forever.
    EXPECT_THROW(replay.InsertJobLine(0, "G00", 1), store::StoreError);
    // Each line as "number|what it carries|level": a row "C<rowid>" or a new line's code.
    std::vector<std::string> lines;
    for (const auto& slot : replay.lines())
        lines.push_back(std::to_string(slot.lineNumber) + "|" +
                        (slot.created < 0
                             ? "C" + std::to_string(slot.rowid)
                             : replay.created()[static_cast<std::size_t>(slot.created)].code) +
                        "|" + std::to_string(slot.level));
    EXPECT_EQ(lines, (std::vector<std::string>{"0|C0|0", "1|N0|1", "2|C1|1", "3|C4|2", "4|C5|1",
                                               "6|N1|2", "9|C3|1"}));
    job::JobLineReplay empty({});
    EXPECT_THROW(empty.DeleteJobLines(0, 1), store::StoreError);
}
