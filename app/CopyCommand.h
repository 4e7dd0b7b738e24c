#pragma once
// `quorvel copy`: copies a job's files from one directory to another, as a host asks the module to:
// in the progress window, or without a window, printing each name as it is copied.
#include <CLI/CLI.hpp>

#include <optional>
#include <string>

namespace app {

class CopyCommand {
public:
    explicit CopyCommand(CLI::App& cli);
    // The exit code when the subcommand was given.
    std::optional<int> run(int argc, char** argv);

private:
    CLI::App* copy_;
    std::string source_;
    std::string destination_;
    bool noWindow_ = false;
};

} // namespace app
