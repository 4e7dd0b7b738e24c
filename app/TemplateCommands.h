#pragma once
// The template subcommands of `quorvel`: `template new` and `template modify` open the template
// editor in a window, as the host's menu does. For scripts, --name fills the template name and
// --accept confirms the editor as soon as it shows. `template delete` opens the "Delete Template"
// dialog; --close closes it as soon as it shows.
#include <CLI/CLI.hpp>

#include <optional>
#include <string>

namespace app {

class TemplateCommands {
public:
    TemplateCommands(CLI::App& cli, std::string& cellDir);
    // Runs the template subcommand that was given, if one was; the result is the exit code.
    std::optional<int> run(int argc, char** argv);

private:
    std::string& cellDir_;
    CLI::App* template_;
    CLI::App* new_;
    CLI::App* modify_;
    CLI::App* delete_;
    std::string fixture_;
    int workpieces_ = 1;
    int templateId_ = 0;
    std::string name_;
    bool accept_ = false;
    bool close_ = false;
};

} // namespace app
