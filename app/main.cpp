// quorvel: the stand-alone host of the FANUC Robocut machine module.
#include "Commands.h"
#include "CopyCommand.h"
#include "JobCommands.h"
#include "TemplateCommands.h"
#include "WizardCommand.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>

int main(int argc, char** argv) {
    CLI::App cli{"quorvel - stand-alone host of the FANUC Robocut machine module"};
    cli.require_subcommand(1);
    std::string cellDir = app::defaultCellDirectory();

    auto* init = cli.add_subcommand("init", "Create a cell: ZEL.db and Quorvel.db with demo data");
    bool force = false;
    bool empty = false;
    init->add_option("--cell", cellDir, "Cell directory")->capture_default_str();
    init->add_flag("--force", force, "Replace the databases of an existing cell");
    init->add_flag("--empty", empty, "Create the schema only, without demo data");

    auto* templates = cli.add_subcommand("templates", "List the templates of the cell");
    std::string fixture;
    templates->add_option("--cell", cellDir, "Cell directory")->capture_default_str();
    templates->add_option("--fixture", fixture, "Only the templates of this fixture");

    app::JobCommands jobCommands(cli, cellDir);
    app::TemplateCommands templateCommands(cli, cellDir);
    app::WizardCommand wizardCommand(cli, cellDir);
    app::CopyCommand copyCommand(cli);

    CLI11_PARSE(cli, argc, argv);
    try {
        if (*init)
            return app::runInit(cellDir, force, empty);
        if (*templates)
            return app::runTemplates(cellDir, fixture, templates->count("--fixture") > 0);
        if (auto code = jobCommands.run())
            return *code;
        if (auto code = templateCommands.run(argc, argv))
            return *code;
        if (auto code = wizardCommand.run(argc, argv))
            return *code;
        if (auto code = copyCommand.run(argc, argv))
            return *code;
    } catch (const std::exception& e) {
        std::cerr << "quorvel: " << e.what() << '\n';
        return 1;
    }
    return 0;
}
