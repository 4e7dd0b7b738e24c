#pragma once
// `quorvel cell`: the cell window, a desktop host of the module on one cell.
#include <CLI/CLI.hpp>

#include <optional>
#include <string>

namespace app {

class CellWindowCommand {
public:
    CellWindowCommand(CLI::App& cli, std::string& cellDir);
    // The exit code when the subcommand was given.
    std::optional<int> run(int argc, char** argv);

private:
    CLI::App& cli_;
    std::string& cellDir_;
    CLI::App* cell_;
};

} // namespace app
