// quorvel: the stand-alone host of the FANUC Robocut machine module.
#include "CellCommands.h"
#include "CellWindowCommand.h"
#include "Commands.h"
#include "CopyCommand.h"
#include "CrashedCommand.h"
#include "JobCommands.h"
#include "TemplateCommands.h"
#include "WizardCommand.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>

int main(int argc, char** argv) {
    CLI::App cli{"quorvel - stand-alone host of the FANUC Robocut machine module"};
    cli.require_subcommand(0, 1);
    cli.set_version_flag("--version", "quorvel " QUORVEL_VERSION);
    std::string cellDir = app::defaultCellDirectory();
    // The cell may also be named before the subcommand.
    cli.add_option("--cell", cellDir, "Cell directory");
    cli.add_subcommand("help", "Show this help");

    auto* init = cli.add_subcommand("init", "Create a cell: ZEL.db and Quorvel.db with demo data");
    bool force = false;
    bool empty = false;
    init->add_option("--cell", cellDir, "Cell directory")->capture_default_str();
    init->add_flag("--force", force, "Replace the databases of an existing cell");
    init->add_flag("--empty", empty, "Create the schema only, without demo data");
    std::string server;
    std::string serverName = "cell";
    init->add_option("--server", server,
                     "Keep both databases on a PostgreSQL server (a connection string or URI)");
    init->add_option("--name", serverName, "The cell's name on the server (its schemas' prefix)")
        ->capture_default_str();

    auto* templates = cli.add_subcommand("templates", "List the templates of the cell");
    std::string fixture;
    templates->add_option("--cell", cellDir, "Cell directory")->capture_default_str();
    templates->add_option("--fixture", fixture, "Only the templates of this fixture");

    app::JobCommands jobCommands(cli, cellDir);
    app::TemplateCommands templateCommands(cli, cellDir);
    app::WizardCommand wizardCommand(cli, cellDir);
    app::CopyCommand copyCommand(cli);
    app::CellCommands cellCommands(cli, cellDir);
    app::CellWindowCommand cellWindowCommand(cli, cellDir);
    app::CrashedCommand crashedCommand(cli);

    // Exit codes: 0 done, 1 the work failed, 2 the command line is wrong.
    try {
        cli.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        std::cout << cli.help();
        return 0;
    } catch (const CLI::CallForAllHelp&) {
        std::cout << cli.help("", CLI::AppFormatMode::All);
        return 0;
    } catch (const CLI::CallForVersion&) {
        std::cout << cli.version() << '\n';
        return 0;
    } catch (const CLI::ParseError& e) {
        std::cerr << "quorvel: " << e.what() << "\n(see quorvel --help)\n";
        return 2;
    }
    if (cli.get_subcommands().empty() || cli.got_subcommand("help")) {
        std::cout << cli.get_formatter()->make_help(&cli, "quorvel", CLI::AppFormatMode::Normal);
        return 0;
    }
    try {
        if (auto code = crashedCommand.run(argc, argv))
            return *code;
        app::installCrashReporter(cellDir);
        if (*init)
            return app::runInit(cellDir, force, empty, server, serverName);
        if (*templates)
            return app::runTemplates(cellDir, fixture, templates->count("--fixture") > 0);
        if (auto code = cellCommands.run())
            return *code;
        if (auto code = jobCommands.run())
            return *code;
        if (auto code = templateCommands.run(argc, argv))
            return *code;
        if (auto code = wizardCommand.run(argc, argv))
            return *code;
        if (auto code = copyCommand.run(argc, argv))
            return *code;
        if (auto code = cellWindowCommand.run(argc, argv))
            return *code;
    } catch (const std::exception& e) {
        std::cerr << "quorvel: " << e.what() << '\n';
        return 1;
    }
    return 0;
}
