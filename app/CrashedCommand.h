#pragma once
// The crash reporter of quorvel: installed for the cell folder, with quorvel itself as the program
// of its window (`quorvel crashed REPORT`, a subcommand left out of the help).
#include <CLI/CLI.hpp>

#include <optional>
#include <string>

namespace app {

class CrashedCommand {
public:
    explicit CrashedCommand(CLI::App& cli);
    bool given() const { return crashed_->parsed(); }
    // The exit code when the subcommand was given: the window naming the report, shown until
    // it is closed.
    std::optional<int> run(int argc, char** argv);

private:
    CLI::App* crashed_;
    std::string report_;
};

// Reports crashes of this process into the cell folder (the temporary folder when the cell folder
// cannot take the report at the time), with a window where one can be shown.
void installCrashReporter(const std::string& cellDir);

} // namespace app
