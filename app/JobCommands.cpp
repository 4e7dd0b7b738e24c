#include "JobCommands.h"

#include "CellSession.h"

#include "Console.h"
#include "boundary/Exports.h"
#include "common/Convert.h"
#include "common/Services.h"
#include "job/Job.h"
#include "store/DataMod.h"
#include "template/Template.h"

#include <QApplication>

#include <filesystem>
#include <iostream>
#include <memory>

namespace app {

namespace {

// Widgets without a display: the offscreen platform unless one is chosen.
std::unique_ptr<QApplication> headlessApplication() {
    prepareQtEnvironment();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char name[] = "quorvel";
    static char* argv[] = {name, nullptr};
    return std::make_unique<QApplication>(argc, argv);
}

} // namespace

JobCommands::JobCommands(CLI::App& cli, std::string& cellDir) : cellDir_(cellDir) {
    build_ = cli.add_subcommand(
        "build", "Build the job of a pallet from a template (replacing the job's lines) and print "
                 "its lines: line number, level, code, script line");
    build_->add_option("--cell", cellDir_, "Cell directory")->capture_default_str();
    build_->add_option("--template", templateId_, "Template id")->capture_default_str();
    build_->add_option("--pallet", pallet_, "Pallet number")->required();
    build_->add_option("--job", job_, "Job number")->capture_default_str();

    compose_ = cli.add_subcommand(
        "compose",
        "Compose a script line from a mask, a syntax type and up to six values. "
        "Without a mask, read cases from standard input, one a line: mask, type, "
        "syntax text, value 1..6, separated by tabs. Each case prints its line; a case that "
        "fails prints an empty line, and its error goes to standard error as "
        "\"quorvel compose: case N: ...\"; the exit code is 1 when a case failed. Put -- before "
        "a mask that starts with a dash");
    compose_->add_option("--syntax", syntax_, "Syntax text (the line of a plain syntax)");
    compose_->add_option("mask type values", words_, "MASK TYPE [VALUE1 .. VALUE6]");
}

std::optional<int> JobCommands::run() {
    if (*build_)
        return runBuild();
    if (*compose_)
        return runCompose();
    return std::nullopt;
}

int JobCommands::runBuild() {
    const auto app = headlessApplication();
    CellSession session(cellDir_);
    std::string name;
    boundary::GetTemplateName(templateId_, name);
    if (name.empty())
        throw std::runtime_error("there is no template " + std::to_string(templateId_));
    // The job's lines are replaced: the old ones go, and opening the job builds it anew.
    boundary::DeleteJob(pallet_, std::to_string(job_));
    common::BoolMessageGate gate(false);
    TJobWizardInfo info;
    info.TemplateID = templateId_;
    info.JobNumber = job_;
    info.PalletNumber = pallet_;
    info.Unattended = true;
    info.MessageGate = &gate;
    boundary::JobWizard(info);

    auto query = DM().NewLocalQuery();
    query->setSql("select Line_Number, Node_Level, Code, Script_Line from Jobs where "
                  "Pallet_Number = " +
                  pallet_ + " and Job_Number = " + std::to_string(job_) + " order by Line_Number");
    query->open();
    if (query->eof())
        throw std::runtime_error("the job of pallet " + pallet_ + " was not built");
    for (; !query->eof(); query->next())
        std::cout << query->fields(0).asString() << '\t' << query->fields(1).asString() << '\t'
                  << query->fields(2).asString() << '\t' << query->fields(3).asString() << '\n';
    return 0;
}

int JobCommands::runCompose() {
    if (!words_.empty()) {
        if (words_.size() < 2 || words_.size() > 8) {
            std::cerr << "quorvel compose: give MASK TYPE and at most six values\n";
            return 2;
        }
        const auto type = common::tryStrToInt(words_[1]);
        if (!type) {
            std::cerr << "quorvel compose: the type '" << words_[1]
                      << "' is not a valid integer value\n";
            return 1;
        }
        std::array<std::string, 6> values;
        std::copy(words_.begin() + 2, words_.end(), values.begin());
        try {
            std::cout << TdlgJob::ComposeMaskLine(words_[0], *type, syntax_, values) << '\n';
        } catch (const JobError& e) {
            std::cerr << "quorvel compose: " << e.what() << '\n';
            return 1;
        }
        return 0;
    }
    // Many cases: no store and no widgets, only the composer.
    std::ios::sync_with_stdio(false);
    std::string line;
    long number = 0;
    long failed = 0;
    while (std::getline(std::cin, line)) {
        ++number;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        // Blank lines and comments are no cases. A comment starts with '#' and has no tab: a case
        // always has one, and its mask may itself start with '#' ("#%s=%0.000f").
        if (common::trim(line).empty() || (line[0] == '#' && line.find('\t') == std::string::npos))
            continue;
        try {
            std::cout << TdlgJob::ComposeCaseLine(line) << '\n';
        } catch (const std::exception& e) {
            ++failed;
            // The empty line keeps one output line per case; the error goes with the others.
            std::cout << '\n';
            std::cerr << "quorvel compose: case " << number << ": " << e.what() << '\n';
        }
    }
    std::cout.flush();
    if (failed)
        std::cerr << "quorvel compose: " << failed << " of " << number << " cases failed\n";
    return failed ? 1 : 0;
}

} // namespace app
