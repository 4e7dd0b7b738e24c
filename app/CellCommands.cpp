#include "CellCommands.h"

#include "CellJobs.h"
#include "CellSession.h"
#include "boundary/Exports.h"
#include "store/DataMod.h"

#include <iostream>

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
    for (const auto& fixture : ListCellFixtures())
        std::cout << fixture.partNumber << '\t' << fixture.description << '\n';
    return 0;
}

int CellCommands::runJobs() {
    CellSession session(cellDir_);
    std::cout << "Pallet\tJob\tTemplate\tFinished\tProgram\n";
    for (const auto& job : ListCellJobs()) {
        // Only the jobs the module holds rows for; the host's list alone names no lines.
        if (!job.hasRows)
            continue;
        const std::string name = job.templateId == 0 ? std::string("-")
                                 : job.templateName.empty()
                                     ? "template " + std::to_string(job.templateId)
                                     : job.templateName;
        std::cout << job.pallet << '\t' << job.job << '\t' << name << '\t' << job.linesFinished
                  << " of " << job.lines << '\t' << job.program << '\n';
    }
    return 0;
}

} // namespace app
