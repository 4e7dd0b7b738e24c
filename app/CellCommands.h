#pragma once
// What a host knows of its cell: `quorvel fixtures` lists the fixtures, `quorvel jobs` the jobs
// with their progress and program.
#include <CLI/CLI.hpp>

#include <optional>
#include <string>

namespace app {

class CellCommands {
public:
    CellCommands(CLI::App& cli, std::string& cellDir);
    // The exit code when one of the subcommands was given.
    std::optional<int> run();

private:
    int runFixtures();
    int runJobs();

    std::string& cellDir_;
    CLI::App* fixtures_;
    CLI::App* jobs_;
};

// Whether the cell's fixture list holds the fixture (the cell's module must be open).
bool FixtureListed(const std::string& fixture);

} // namespace app
