#include "CellJobs.h"

#include "boundary/Exports.h"
#include "store/DataMod.h"

#include <functional>
#include <map>
#include <utility>

namespace app {

std::vector<CellJob> ListCellJobs() {
    std::map<std::pair<int, int>, CellJob> jobs;
    auto entry = [&jobs](int pallet, int job) -> CellJob& {
        auto& found = jobs[{pallet, job}];
        found.pallet = pallet;
        found.job = job;
        return found;
    };
    // The host's list names each job's template, where it has the job.
    auto listed = DM().NewSharedQuery();
    listed->setSql("select Pallet_Number, Job_Number, Template from JobList");
    listed->open();
    for (; !listed->eof(); listed->next()) {
        auto& job = entry(listed->fields(0).asInteger(), listed->fields(1).asInteger());
        job.templateId = listed->fields(2).asInteger();
        boundary::GetTemplateName(job.templateId, job.templateName);
    }
    auto queued = DM().NewSharedQuery();
    queued->setSql("select Pallet_Number, Job_Number, Command_File from JobQueue");
    queued->open();
    for (; !queued->eof(); queued->next())
        entry(queued->fields(0).asInteger(), queued->fields(1).asInteger()).program =
            queued->fields(2).asString();
    auto rows = DM().NewLocalQuery();
    rows->setSql("select Pallet_Number, Job_Number, count(case when Node_Level > 0 then 1 end), "
                 "count(case when Node_Level > 0 and Image = 2 then 1 end), "
                 "max(case when Line_Number = 0 then Path end) "
                 "from Jobs group by Pallet_Number, Job_Number");
    rows->open();
    for (; !rows->eof(); rows->next()) {
        auto& job = entry(rows->fields(0).asInteger(), rows->fields(1).asInteger());
        job.hasRows = true;
        job.lines = rows->fields(2).asInteger();
        job.linesFinished = rows->fields(3).asInteger();
        if (const auto path = rows->fields(4).asString(); !path.empty())
            job.program = path;
    }
    std::vector<CellJob> result;
    result.reserve(jobs.size());
    for (auto& [key, job] : jobs)
        result.push_back(std::move(job));
    return result;
}

std::vector<CellFixture> ListCellFixtures() {
    auto query = DM().NewSharedQuery();
    query->setSql("select Part_Number, Description from FixtureList order by Part_Number");
    query->open();
    std::vector<CellFixture> fixtures;
    for (; !query->eof(); query->next())
        fixtures.push_back({query->fields(0).asString(), query->fields(1).asString()});
    return fixtures;
}

std::string TemplateFixture(int templateId) {
    auto query = DM().NewLocalQuery();
    query->setSql("select Fixture from TemplateName where Template_ID = " +
                  std::to_string(templateId));
    query->open();
    return query->eof() ? std::string() : query->fields(0).asString();
}

std::size_t JobRowsDigest(int pallet, int job) {
    auto query = DM().NewLocalQuery();
    query->setSql("select * from Jobs where Pallet_Number = " + std::to_string(pallet) +
                  " and Job_Number = " + std::to_string(job) + " order by Line_Number");
    query->open();
    std::string all;
    for (; !query->eof(); query->next()) {
        for (int i = 0; i < query->fieldCount(); ++i)
            all += query->fields(i).asString() + '\x1f';
        all += '\x1e';
    }
    return std::hash<std::string>{}(all);
}

} // namespace app
