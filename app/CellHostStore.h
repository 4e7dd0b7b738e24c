#pragma once
// The host's own rows in the shared database (ZEL.db), which the module only reads: the job list
// (each job's template and fixture) and the job queue (the program and files of a job's report).
#include "store/Value.h"

#include <memory>
#include <string>
#include <vector>

namespace store {
class Database;
}

namespace app {

class CellHostStore {
public:
    // Opens the cell's ZEL.db (or its schema on the cell's server) for writing, with the store's
    // busy timeout. Raises on failure.
    explicit CellHostStore(const std::string& cellDir);
    ~CellHostStore();
    CellHostStore(const CellHostStore&) = delete;
    CellHostStore& operator=(const CellHostStore&) = delete;

    void listJob(int pallet, int job, int templateId, const std::string& partNumber);
    void queueJob(int pallet, int job, const std::string& commandFile, const std::string& fileList);
    // Removes the job from the list and the queue.
    void removeJob(int pallet, int job);

private:
    struct Change {
        const char* sql;
        std::vector<store::Value> values;
    };
    // Runs the changes in one transaction.
    void run(const std::vector<Change>& changes);

    std::string path_;
    std::unique_ptr<store::Database> db_;
};

} // namespace app
