#include "WizardCommand.h"

#include "CellJobInfo.h"
#include "CellSession.h"
#include "Console.h"
#include "JobScript.h"
#include "boundary/Exports.h"
#include "common/Convert.h"
#include "dialogs/QtServices.h"

#include <QApplication>

#include <dlfcn.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <limits>
#include <memory>

// quorvel is the host: its own "GetJobInfo" receives the module's report and prints it, or hands
// it to the cell window when one is open.
extern "C" void GetJobInfo(TAutomationInfo* info) {
    if (info && !app::ForwardJobInfo(*info))
        app::PrintAutomationInfo(*info);
}

namespace app {

namespace {

std::vector<std::string> readScript(const std::string& file) {
    std::vector<std::string> lines;
    std::ifstream in;
    if (file != "-") {
        in.open(file);
        if (!in)
            throw std::runtime_error("cannot read the script " + file);
    }
    std::istream& source = file == "-" ? std::cin : in;
    for (std::string line; std::getline(source, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

// Widgets for the run: a real window, or the offscreen platform for a run without one.
std::unique_ptr<QApplication> application(int argc, char** argv, bool window) {
    if (window)
        requireDisplay();
    prepareQtEnvironment();
    if (!window && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    static int count;
    count = argc;
    return std::make_unique<QApplication>(count, argv);
}

} // namespace

void PrintAutomationInfo(const TAutomationInfo& info) {
    std::cout << "HostTag: " << info.HostTag << '\n'
              << "JobNumber: " << info.JobNumber << '\n'
              << "HostText1: " << info.HostText1 << '\n'
              << "HostText2: " << info.HostText2 << '\n'
              << "MachineText: " << info.MachineText << '\n'
              << "PalletNumber: " << info.PalletNumber << '\n'
              << "CommandFile: " << info.CommandFile << '\n'
              << "AutomationText1: " << info.AutomationText1 << '\n'
              << "CommandText: " << info.CommandText << '\n'
              << "FileList: " << info.FileList << '\n'
              << "AutomationText2: " << info.AutomationText2 << '\n'
              << "AutomationFlag1: " << int(info.AutomationFlag1) << '\n'
              << "AutomationFlag2: " << int(info.AutomationFlag2) << '\n'
              << "HostFlag1: " << int(info.HostFlag1) << '\n'
              << "HostFlag2: " << int(info.HostFlag2) << '\n';
    std::cout.flush();
}

WizardCommand::WizardCommand(CLI::App& cli, std::string& cellDir) : cellDir_(cellDir) {
    job_ = cli.add_subcommand(
        "job", "Open a pallet's job in the job wizard, as a host does: in a window, unattended, "
               "or driven by a script of operator actions without a window");
    job_->add_option("--cell", cellDir_, "Cell directory")->capture_default_str();
    job_->add_option("--pallet", pallet_, "Pallet number (required)");
    delete_ = job_->add_subcommand("delete", "Delete a pallet's job (its lines), as a host does");
    delete_->add_option("--cell", cellDir_, "Cell directory")->capture_default_str();
    delete_->add_option("--pallet", pallet_, "Pallet number")->required();
    delete_->add_option("--job", job_number_, "Job number")->capture_default_str();
    job_->add_option("--job", job_number_, "Job number")->capture_default_str();
    job_->add_option("--template", templateId_, "Template id")->capture_default_str();
    job_->add_flag("--unattended", unattended_,
                   "No window: open (build or update) the job and print the report that "
                   "\"GetJobInfo\" receives, one 'Field: value' line each");
    job_->add_option("--gate", gate_, "The host's gate of the update notice: on shows it")
        ->check(CLI::IsMember({"on", "off"}))
        ->capture_default_str();
    job_->add_option("--answer", answer_,
                     "Answer every dialog with this button (default: each dialog's default)")
        ->check(CLI::IsMember({"ok", "cancel", "yes", "no"}));
    job_->add_option(
        "--script", script_,
        "Operator actions, one a line (- for standard input): program N, "
        "numbers on|off, increment N, answer ok|cancel|yes|no, rows, sample, "
        "machines, machine K, programs, select N|none, syntax K, value B [TEXT], "
        "comment TEXT, option on|off, "
        "radio K, next, expand, collapse, skip, skipdown, copy, paste, menu ITEM, view, "
        "write NAME");
    job_->add_option("--local-dir", localDir_,
                     "The job's directory (default CELL/Pallet<P>, created when missing)");
    job_->add_option("--input-dir", inputDir_, "Default input directory (default: the cell)");
    job_->add_option("--output-dir", outputDir_, "Preferred directory of the save dialog");
}

std::optional<int> WizardCommand::run(int argc, char** argv) {
    if (!*job_)
        return std::nullopt;
    if (pallet_.empty()) {
        std::cerr << "quorvel job: --pallet is required\n";
        return 2;
    }
    // As a host, quorvel numbers pallets and jobs from 1 (the module itself takes any 16-bit
    // number from other hosts).
    const auto pallet = common::tryStrToInt(pallet_);
    if (!pallet || *pallet < 1 || *pallet > std::numeric_limits<std::int16_t>::max()) {
        std::cerr << "quorvel job: the pallet '" << pallet_ << "' is not a number from 1 to "
                  << std::numeric_limits<std::int16_t>::max() << "\n";
        return 2;
    }
    if (job_number_ < 1 || job_number_ > std::numeric_limits<std::int16_t>::max()) {
        std::cerr << "quorvel job: the job " << job_number_ << " is not a number from 1 to "
                  << std::numeric_limits<std::int16_t>::max() << "\n";
        return 2;
    }
    if (*delete_) {
        CellSession session(cellDir_);
        boundary::DeleteJob(std::to_string(*pallet), std::to_string(job_number_));
        std::cout << "Deleted the job " << job_number_ << " of pallet " << *pallet << '\n';
        return 0;
    }
    std::vector<std::string> script;
    if (!script_.empty())
        script = readScript(script_);

    const bool window = script_.empty() && !unattended_;
    const auto app = application(argc, argv, window);
    dialogs::QtUi windowUi;
    ScriptUi scriptUi(std::move(script), parseAnswer(answer_));
    common::Ui* ui = &scriptUi;
    if (window && answer_.empty())
        ui = &windowUi;
    else if (window)
        scriptUi.showWizardIn(&windowUi);
    CellSession session(cellDir_, ui);

    std::string name;
    boundary::GetTemplateName(templateId_, name);
    if (name.empty()) {
        std::cerr << "quorvel job: there is no template " << templateId_ << " in the cell\n";
        return 1;
    }
    namespace fs = std::filesystem;
    const std::string localDir =
        localDir_.empty() ? (fs::path(cellDir_) / ("Pallet" + std::to_string(*pallet))).string()
                          : localDir_;
    fs::create_directories(localDir);

    common::BoolMessageGate gate(gate_ == "on");
    TJobWizardInfo info;
    // The host's own image, as the library that offers "GetJobInfo".
    const std::unique_ptr<void, int (*)(void*)> self(dlopen(nullptr, RTLD_NOW), dlclose);
    info.HostModule = self.get();
    info.TemplateID = templateId_;
    info.JobNumber = job_number_;
    info.PalletNumber = pallet_;
    info.LocalDirectory = localDir;
    info.InputDirectory = inputDir_.empty() ? cellDir_ : inputDir_;
    info.OutputDirectory = outputDir_;
    info.AllowSkip = true;
    info.AllowSkipDown = true;
    info.Unattended = unattended_;
    info.MessageGate = &gate;
    try {
        boundary::JobWizard(info);
    } catch (const ScriptError& e) {
        std::cerr << "quorvel job: " << e.what() << '\n';
        return 2;
    }
    return 0;
}

} // namespace app
