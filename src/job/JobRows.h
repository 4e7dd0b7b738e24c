#pragma once
// Rows of one job read past the Jobs cursor: a cached statement with the pallet, job and line
// bound to its three parameters, reset when the reading ends. The bound boxes do not follow.
#include "store/DataMod.h"
#include "store/Statement.h"

class JobRowsReader {
public:
    JobRowsReader(const std::string& sql, int pallet, int job, int line)
        : stmt_(DM().LocalDatabase.cached(sql)) {
        stmt_.bind(1, store::Value(pallet));
        stmt_.bind(2, store::Value(job));
        stmt_.bind(3, store::Value(line));
    }
    ~JobRowsReader() { stmt_.reset(); }
    JobRowsReader(const JobRowsReader&) = delete;
    JobRowsReader& operator=(const JobRowsReader&) = delete;

    bool step() { return stmt_.step(); }
    store::Value column(int index) const { return stmt_.column(index); }
    std::int64_t columnInteger(int index) const { return stmt_.columnInteger(index); }

private:
    store::Statement& stmt_;
};
