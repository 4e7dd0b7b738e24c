#include "job/JobReplay.h"

#include "store/Database.h"
#include "store/StoreError.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace job {

int JobLineReplay::nearest(int line) const {
    if (lines_.empty())
        return -1;
    auto it = std::lower_bound(lines_.begin(), lines_.end(), line,
                               [](const ReplaySlot& s, int l) { return s.lineNumber < l; });
    if (it == lines_.end())
        return static_cast<int>(lines_.size()) - 1;
    return static_cast<int>(it - lines_.begin());
}

int JobLineReplay::InsertJobLine(int line, const std::string& code, int level) {
    // Renumbering walks down from the last line while it is not below `line`; at or before the
    // first line that walk would never end, so such an insert is refused.
    if (!lines_.empty() && line <= lines_.front().lineNumber)
        throw store::StoreError("Cannot insert job line " + std::to_string(line) + " for " + code +
                                ": it would stand at or before the job's first line");
    auto it = std::lower_bound(lines_.begin(), lines_.end(), line,
                               [](const ReplaySlot& s, int l) { return s.lineNumber < l; });
    for (auto rest = it; rest != lines_.end(); ++rest)
        ++rest->lineNumber;
    created_.push_back({code, level});
    ReplaySlot slot;
    slot.lineNumber = line;
    slot.level = level;
    slot.created = static_cast<int>(created_.size()) - 1;
    lines_.insert(it, slot);
    return slot.created;
}

void JobLineReplay::DeleteJobLines(int line, int count) {
    for (int n = 0; n < count; ++n) {
        const int index = nearest(line);
        if (index < 0)
            throw store::StoreError("Cannot delete job line " + std::to_string(line) +
                                    ": the job has no lines");
        const bool wasLast = index == static_cast<int>(lines_.size()) - 1;
        lines_.erase(lines_.begin() + index);
        if (wasLast)
            return;
        for (auto rest = lines_.begin() + index; rest != lines_.end(); ++rest)
            --rest->lineNumber;
    }
}

void JobLineReplay::MoveJobLines(int from, int to, int count) {
    const int source = from;
    int destination = to;
    if (to > from)
        destination += count - 1;
    int offset = 0;
    for (int i = 0; i < count; ++i) {
        if (destination < source)
            offset = i;
        const int found = nearest(source + offset);
        if (found < 0)
            throw store::StoreError("Cannot move job line " + std::to_string(source + offset) +
                                    ": the job has no lines");
        const ReplaySlot saved = lines_[static_cast<std::size_t>(found)];
        DeleteJobLines(source + offset, 1);
        InsertJobLine(destination + offset, "NOP", saved.level);
        // The columns go back to the line found at the destination; it keeps its own level.
        auto& target = lines_[static_cast<std::size_t>(nearest(destination + offset))];
        target.rowid = saved.rowid;
        target.created = saved.created;
    }
}

std::vector<ReplaySlot> loadJobLines(store::Database& db, int pallet, int job) {
    auto& stmt =
        db.cached("select rowid, Line_Number, Node_Level from Jobs where Pallet_Number = ? "
                  "and Job_Number = ? order by Line_Number");
    stmt.bind(1, store::Value(pallet));
    stmt.bind(2, store::Value(job));
    std::vector<ReplaySlot> lines;
    while (stmt.step()) {
        ReplaySlot slot;
        slot.rowid = stmt.columnInteger(0);
        slot.lineNumber = static_cast<int>(stmt.columnInteger(1));
        slot.level = static_cast<int>(stmt.columnInteger(2));
        lines.push_back(slot);
    }
    stmt.reset();
    return lines;
}

void writeJobLines(store::Database& db, int pallet, int job,
                   const std::vector<ReplaySlot>& original, const JobLineReplay& replay,
                   const std::function<void(int line, const CreatedLine& created)>& append) {
    std::unordered_set<std::int64_t> carried;
    for (const auto& slot : replay.lines())
        if (slot.created < 0)
            carried.insert(slot.rowid);
    db.bumpGeneration();
    auto& erase = db.cached("delete from Jobs where rowid = ?");
    for (const auto& slot : original) {
        if (carried.count(slot.rowid))
            continue;
        erase.bind(1, store::Value(static_cast<long long>(slot.rowid)));
        erase.run();
    }
    // Rows that change place first step aside to unique negative numbers, so that no two rows
    // share a key on the way.
    struct Change {
        std::int64_t rowid;
        int line;
        int level;
    };
    std::vector<Change> changes;
    std::unordered_map<std::int64_t, const ReplaySlot*> before;
    for (const auto& slot : original)
        before[slot.rowid] = &slot;
    for (const auto& slot : replay.lines()) {
        if (slot.created >= 0)
            continue;
        const auto* old = before.at(slot.rowid);
        if (old->lineNumber != slot.lineNumber || old->level != slot.level)
            changes.push_back({slot.rowid, slot.lineNumber, slot.level});
    }
    auto& aside = db.cached("update Jobs set Line_Number = ? where rowid = ?");
    for (std::size_t i = 0; i < changes.size(); ++i) {
        aside.bind(1, store::Value(-1 - static_cast<long long>(i)));
        aside.bind(2, store::Value(static_cast<long long>(changes[i].rowid)));
        aside.run();
    }
    auto& place = db.cached("update Jobs set Line_Number = ?, Node_Level = ? where rowid = ?");
    for (const auto& change : changes) {
        place.bind(1, store::Value(change.line));
        place.bind(2, store::Value(change.level));
        place.bind(3, store::Value(static_cast<long long>(change.rowid)));
        place.run();
    }
    // New lines, in the order they were made.
    std::vector<const ReplaySlot*> fresh;
    for (const auto& slot : replay.lines())
        if (slot.created >= 0)
            fresh.push_back(&slot);
    std::sort(fresh.begin(), fresh.end(),
              [](const ReplaySlot* a, const ReplaySlot* b) { return a->created < b->created; });
    // Held, not borrowed from the cache: the appends in between go through the cache too.
    const auto relevel = db.shared("update Jobs set Node_Level = ? where Pallet_Number = ? and "
                                   "Job_Number = ? and Line_Number = ?");
    for (const auto* slot : fresh) {
        const auto& created = replay.created()[static_cast<std::size_t>(slot->created)];
        append(slot->lineNumber, created);
        if (slot->level != created.level) {
            relevel->bind(1, store::Value(slot->level));
            relevel->bind(2, store::Value(pallet));
            relevel->bind(3, store::Value(job));
            relevel->bind(4, store::Value(slot->lineNumber));
            relevel->run();
        }
    }
}

} // namespace job
