#include "CellHostStore.h"

#include "store/Database.h"

#include <sqlite3.h>

#include <filesystem>
#include <stdexcept>

namespace app {

CellHostStore::CellHostStore(const std::string& cellDir)
    : path_((std::filesystem::path(cellDir) / "ZEL.db").string()) {
    if (sqlite3_open_v2(path_.c_str(), &db_, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
        const std::string reason = db_ ? sqlite3_errmsg(db_) : "out of memory";
        sqlite3_close(db_);
        throw std::runtime_error("cannot open " + path_ + " for writing: " + reason);
    }
    sqlite3_busy_timeout(db_, store::Database::BusyTimeoutMs);
}

CellHostStore::~CellHostStore() { sqlite3_close(db_); }

void CellHostStore::run(const std::string& sql, int pallet, int job, const std::string* text1,
                        const std::string* text2, const int* number) {
    sqlite3_stmt* statement = nullptr;
    int rc = sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr);
    if (rc == SQLITE_OK) {
        sqlite3_bind_int(statement, 1, pallet);
        sqlite3_bind_int(statement, 2, job);
        int next = 3;
        if (number)
            sqlite3_bind_int(statement, next++, *number);
        for (const auto* text : {text1, text2})
            if (text)
                sqlite3_bind_text(statement, next++, text->c_str(), -1, SQLITE_TRANSIENT);
        rc = sqlite3_step(statement);
    }
    sqlite3_finalize(statement);
    if (rc != SQLITE_DONE)
        throw std::runtime_error("cannot change the job list in " + path_ + ": " +
                                 sqlite3_errmsg(db_));
}

void CellHostStore::listJob(int pallet, int job, int templateId, const std::string& partNumber) {
    run("insert or replace into JobList (Pallet_Number, Job_Number, Template, Part_Number) "
        "values (?1, ?2, ?3, ?4)",
        pallet, job, &partNumber, nullptr, &templateId);
}

void CellHostStore::queueJob(int pallet, int job, const std::string& commandFile,
                             const std::string& fileList) {
    run("insert or replace into JobQueue (Pallet_Number, Job_Number, Command_File, File_List) "
        "values (?1, ?2, ?3, ?4)",
        pallet, job, &commandFile, &fileList, nullptr);
}

void CellHostStore::removeJob(int pallet, int job) {
    run("delete from JobList where Pallet_Number = ?1 and Job_Number = ?2", pallet, job, nullptr,
        nullptr, nullptr);
    run("delete from JobQueue where Pallet_Number = ?1 and Job_Number = ?2", pallet, job, nullptr,
        nullptr, nullptr);
}

} // namespace app
