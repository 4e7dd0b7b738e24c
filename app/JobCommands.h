#pragma once
// The job subcommands of `quorvel`: `build` makes a pallet's job from a template without a window
// and prints its lines; `compose` composes script lines from masks and values, one case from the
// arguments or many tab-separated cases from standard input.
#include <CLI/CLI.hpp>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace app {

class JobCommands {
public:
    // Adds the subcommands to `cli`; `cellDir` is the cell shared with the other subcommands.
    JobCommands(CLI::App& cli, std::string& cellDir);
    // Runs the job subcommand that was given, if one was; the result is the exit code.
    std::optional<int> run();

private:
    int runBuild();
    int runCompose();

    std::string& cellDir_;
    CLI::App* build_;
    CLI::App* compose_;
    int templateId_ = 1;
    std::string pallet_;
    int job_ = 1;
    std::string syntax_;
    std::vector<std::string> words_;
};

} // namespace app
