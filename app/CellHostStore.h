#pragma once
// The host's own rows in the shared database (ZEL.db), which the module only reads: the job list
// (each job's template and fixture) and the job queue (the program and files of a job's report).
#include <memory>
#include <string>

struct sqlite3;

namespace app {

class CellHostStore {
public:
    // Opens the cell's ZEL.db for writing, with the store's busy timeout. Raises on failure.
    explicit CellHostStore(const std::string& cellDir);
    ~CellHostStore();
    CellHostStore(const CellHostStore&) = delete;
    CellHostStore& operator=(const CellHostStore&) = delete;

    void listJob(int pallet, int job, int templateId, const std::string& partNumber);
    void queueJob(int pallet, int job, const std::string& commandFile, const std::string& fileList);
    // Removes the job from the list and the queue.
    void removeJob(int pallet, int job);

private:
    void run(const std::string& sql, int pallet, int job, const std::string* text1,
             const std::string* text2, const int* number);

    std::string path_;
    sqlite3* db_ = nullptr;
};

} // namespace app
