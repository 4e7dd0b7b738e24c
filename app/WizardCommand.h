#pragma once
// `quorvel job`: the job wizard on a pallet's job, as a host calls it: in a window, unattended
// (the report that "GetJobInfo" receives is printed), or driven by a script without a window.
#include "boundary/Structs.h"

#include <CLI/CLI.hpp>

#include <optional>
#include <string>

namespace app {

class WizardCommand {
public:
    WizardCommand(CLI::App& cli, std::string& cellDir);
    // The exit code when the subcommand was given.
    std::optional<int> run(int argc, char** argv);

private:
    std::string& cellDir_;
    CLI::App* job_;
    CLI::App* delete_;
    std::string pallet_;
    int job_number_ = 1;
    int templateId_ = 1;
    bool unattended_ = false;
    std::string gate_ = "on";
    std::string answer_;
    std::string script_;
    std::string localDir_;
    std::string inputDir_;
    std::string outputDir_;
};

// The fields of a report, one "Field: value" line each, in the record's order.
void PrintAutomationInfo(const TAutomationInfo& info);

} // namespace app
