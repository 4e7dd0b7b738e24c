#include "CellWindowCommand.h"

#include "CellWindow.h"
#include "Console.h"
#include "ModuleExports.h"
#include "dialogs/QtServices.h"

#include <QApplication>
#include <QCheckBox>
#include <QScreen>
#include <QSettings>

#include <algorithm>

namespace app {

CellWindowCommand::CellWindowCommand(CLI::App& cli, std::string& cellDir)
    : cli_(cli), cellDir_(cellDir) {
    cell_ = cli.add_subcommand("cell", "Open the cell window: templates, jobs, the master program "
                                       "and the host's last report, all through the module");
    cell_->add_option("--cell", cellDir_,
                      "Cell directory (default: the cell open last, else the default cell)");
}

std::optional<int> CellWindowCommand::run(int argc, char** argv) {
    if (!*cell_)
        return std::nullopt;
    requireDisplay();
    prepareQtEnvironment();
    static int count;
    count = argc;
    QApplication application(count, argv);
    QApplication::setOrganizationName("quorvel");
    QApplication::setApplicationName("quorvel");
    QSettings settings;
    const bool named = cell_->count("--cell") > 0 || cli_.count("--cell") > 0;
    const QString lastCell = settings.value("cell/lastCell").toString();
    const QString dir = named || lastCell.isEmpty() ? QString::fromStdString(cellDir_) : lastCell;

    dialogs::QtUi ui;
    RealModuleExports exports;
    CellWindow window(exports, ui);
    window.settings = &settings;
    if (!window.restoreGeometry(settings.value("cell/geometry").toByteArray())) {
        // First run: most of the screen, at least what 1024x768 offers.
        const QSize available = window.screen()->availableGeometry().size();
        window.resize(std::min(available.width(), 1200), std::min(available.height(), 800));
    }
    window.chkUpdateNotices->setChecked(settings.value("cell/updateNotices", true).toBool());
    window.show();
    window.openCell(dir);
    const int code = QApplication::exec();
    settings.setValue("cell/geometry", window.saveGeometry());
    settings.setValue("cell/updateNotices", window.chkUpdateNotices->isChecked());
    if (!window.cellDir().isEmpty())
        settings.setValue("cell/lastCell", window.cellDir());
    return code;
}

} // namespace app
