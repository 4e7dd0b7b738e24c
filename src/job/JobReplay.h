#pragma once
// The line moves of a job update, done on a picture of the job's lines in memory and written back
// in one pass. The result is row for row what inserting, deleting and moving the rows one at a
// time gives: new lines open a gap and renumber every line after them, deleting closes the gap,
// a move deletes and re-inserts each line of a block and copies its columns back.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace store {
class Database;
}

namespace job {

// A line during a replay: its number, its node level, and whose columns it carries.
struct ReplaySlot {
    int lineNumber = 0;
    int level = 0;
    std::int64_t rowid = 0; // the Jobs row whose columns the line carries, 0 for a new line
    int created = -1;       // the new line it carries (index into created()), -1 for a row
};

// A line made by an insert: the code and level it was appended with, and for a workpiece section
// line the workpiece number it took when its insert was replayed (0 for any other line).
struct CreatedLine {
    std::string code;
    int level = 0;
    int workpiece = 0;
};

class JobLineReplay {
public:
    // The job's lines in Line_Number order.
    explicit JobLineReplay(std::vector<ReplaySlot> lines) : lines_(std::move(lines)) {}

    // Opens a gap at `line` (every line from there on moves up by one) and adds a new line there.
    // Raises when `line` is at or before the first line: the gap could never be opened. Returns
    // the index of the new line in created().
    int InsertJobLine(int line, const std::string& code, int level);
    // Notes the workpiece number that the new line `index` took when it was made.
    void setWorkpiece(int index, int workpiece) {
        created_.at(static_cast<std::size_t>(index)).workpiece = workpiece;
    }
    // Deletes `count` times the line at `line` (or the nearest after it, or the last), closing the
    // gap each time; stops at once when the line deleted was the last.
    void DeleteJobLines(int line, int count);
    // Moves `count` lines from `from` so that the first stands at `to`.
    void MoveJobLines(int from, int to, int count);

    const std::vector<ReplaySlot>& lines() const { return lines_; }
    const std::vector<CreatedLine>& created() const { return created_; }

private:
    // The line at `line` or the nearest after it, or the last line; -1 when there are none.
    int nearest(int line) const;

    std::vector<ReplaySlot> lines_;
    std::vector<CreatedLine> created_;
};

// Whether AppendJobLine makes a section line for `code` at `level`: a line of level 0 or below,
// or a code with no Syntax row of its own. Leaves tableSyntax on the nearest row of the code.
bool IsSectionLine(const std::string& code, int level);
// The workpiece counter after a section line of `code` is appended: 0 after the Header, one more
// after a workpiece, as it was after the Footer and a placeholder.
int CountSectionLine(const std::string& code, int counter);

// The lines of one job, in Line_Number order.
std::vector<ReplaySlot> loadJobLines(store::Database& db, int pallet, int job);

// Writes a replay's result: deletes the rows no line carries, renumbers (and re-levels) the rows
// that moved, then hands each new line that is still carried to `append`, in the order the lines
// were made, with its final line number. Run it inside a transaction.
void writeJobLines(store::Database& db, int pallet, int job,
                   const std::vector<ReplaySlot>& original, const JobLineReplay& replay,
                   const std::function<void(int line, const CreatedLine& created)>& append);

} // namespace job
