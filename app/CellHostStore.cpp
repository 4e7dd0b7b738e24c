#include "CellHostStore.h"

#include "store/Database.h"
#include "store/Schema.h"
#include "store/Statement.h"
#include "store/StoreError.h"

#include <filesystem>
#include <stdexcept>

namespace app {

CellHostStore::CellHostStore(const std::string& cellDir)
    : path_((std::filesystem::path(cellDir) / schema::SharedFile).string()),
      db_(std::make_unique<store::Database>("ZEL", "Host")) {
    // The file of the cell, or its schema on the server when the cell lives there.
    db_->setFileName(path_);
    try {
        db_->open();
    } catch (const store::StoreError& e) {
        throw std::runtime_error(std::string("cannot open the job list for writing: ") + e.what());
    }
}

CellHostStore::~CellHostStore() = default;

void CellHostStore::run(const std::vector<Change>& changes) {
    try {
        store::Transaction tx(*db_);
        for (const auto& change : changes) {
            auto& stmt = db_->cached(change.sql);
            for (std::size_t i = 0; i < change.values.size(); ++i)
                stmt.bind(static_cast<int>(i) + 1, change.values[i]);
            stmt.run();
        }
        tx.commit();
    } catch (const store::StoreError& e) {
        throw std::runtime_error("cannot change the job list in " + path_ + ": " + e.what());
    }
}

// A job is listed once: its row is replaced.
void CellHostStore::listJob(int pallet, int job, int templateId, const std::string& partNumber) {
    run({{"delete from JobList where Pallet_Number = ? and Job_Number = ?", {pallet, job}},
         {"insert into JobList (Pallet_Number, Job_Number, Template, Part_Number) "
          "values (?, ?, ?, ?)",
          {pallet, job, templateId, partNumber}}});
}

void CellHostStore::queueJob(int pallet, int job, const std::string& commandFile,
                             const std::string& fileList) {
    run({{"delete from JobQueue where Pallet_Number = ? and Job_Number = ?", {pallet, job}},
         {"insert into JobQueue (Pallet_Number, Job_Number, Command_File, File_List) "
          "values (?, ?, ?, ?)",
          {pallet, job, commandFile, fileList}}});
}

void CellHostStore::removeJob(int pallet, int job) {
    run({{"delete from JobList where Pallet_Number = ? and Job_Number = ?", {pallet, job}},
         {"delete from JobQueue where Pallet_Number = ? and Job_Number = ?", {pallet, job}}});
}

} // namespace app
