#include "CellCommands.h"

#include "CellSession.h"
#include "boundary/Exports.h"
#include "common/Format.h"
#include "store/DataMod.h"

#include <iostream>
#include <map>
#include <utility>

namespace app {

CellCommands::CellCommands(CLI::App& cli, std::string& cellDir) : cellDir_(cellDir) {
    fixtures_ = cli.add_subcommand("fixtures", "List the fixtures of the cell: part number, "
                                               "description");
    fixtures_->add_option("--cell", cellDir_, "Cell directory")->capture_default_str();
    jobs_ = cli.add_subcommand("jobs", "List the jobs of the cell: pallet, job, template, lines "
                                       "finished of all lines, master program written");
    jobs_->add_option("--cell", cellDir_, "Cell directory")->capture_default_str();
}

std::optional<int> CellCommands::run() {
    if (*fixtures_)
        return runFixtures();
    if (*jobs_)
        return runJobs();
    return std::nullopt;
}

bool FixtureListed(const std::string& fixture) {
    auto query = DM().NewSharedQuery();
    // The name goes into the statement as a quoted text, whatever it holds.
    std::string quoted;
    for (const char c : fixture)
        quoted += c == '\'' ? std::string("''") : std::string(1, c);
    query->setSql("select count(*) from FixtureList where Part_Number = '" + quoted + "'");
    query->open();
    return query->fields(0).asInteger() > 0;
}

int CellCommands::runFixtures() {
    CellSession session(cellDir_);
    auto query = DM().NewSharedQuery();
    query->setSql("select Part_Number, Description from FixtureList order by Part_Number");
    query->open();
    for (; !query->eof(); query->next())
        std::cout << query->fields(0).asString() << '\t' << query->fields(1).asString() << '\n';
    return 0;
}

int CellCommands::runJobs() {
    CellSession session(cellDir_);
    // The host's list names each job's template, where it has the job.
    std::map<std::pair<int, int>, std::string> templates;
    auto listed = DM().NewSharedQuery();
    listed->setSql("select Pallet_Number, Job_Number, Template from JobList");
    listed->open();
    for (; !listed->eof(); listed->next()) {
        std::string name;
        boundary::GetTemplateName(listed->fields(2).asInteger(), name);
        templates[{listed->fields(0).asInteger(), listed->fields(1).asInteger()}] =
            name.empty() ? "template " + listed->fields(2).asString() : name;
    }
    auto jobs = DM().NewLocalQuery();
    jobs->setSql("select Pallet_Number, Job_Number, sum(Node_Level > 0), "
                 "sum(Node_Level > 0 and Image = 2), max(case when Line_Number = 0 then Path end) "
                 "from Jobs group by Pallet_Number, Job_Number order by Pallet_Number, Job_Number");
    jobs->open();
    std::cout << "Pallet\tJob\tTemplate\tFinished\tProgram\n";
    for (; !jobs->eof(); jobs->next()) {
        const int pallet = jobs->fields(0).asInteger();
        const int job = jobs->fields(1).asInteger();
        const auto name = templates.find({pallet, job});
        std::cout << pallet << '\t' << job << '\t'
                  << (name == templates.end() ? std::string("-") : name->second) << '\t'
                  << jobs->fields(3).asInteger() << " of " << jobs->fields(2).asInteger() << '\t'
                  << jobs->fields(4).asString() << '\n';
    }
    return 0;
}

} // namespace app
