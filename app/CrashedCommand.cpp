#include "CrashedCommand.h"

#include "Console.h"
#include "common/CrashReporter.h"

#include <QApplication>
#include <QMessageBox>

#include <filesystem>

namespace app {

CrashedCommand::CrashedCommand(CLI::App& cli) {
    crashed_ = cli.add_subcommand("crashed", "Show the window about a crash report");
    crashed_->group("");
    crashed_->add_option("report", report_, "Crash report file")->required();
}

std::optional<int> CrashedCommand::run(int argc, char** argv) {
    if (!given())
        return std::nullopt;
    const std::string summary = common::crashReportSummary(report_);
    QString text = "The program ended after a fault";
    if (!summary.empty())
        text += ": " + QString::fromStdString(summary);
    text += ".\n\nThe crash report is in " + QString::fromStdString(report_);
    requireDisplay();
    prepareQtEnvironment();
    static int count;
    count = argc;
    const QApplication application(count, argv);
    QMessageBox box(QMessageBox::Critical, "quorvel", text, QMessageBox::Ok);
    box.setObjectName("msgCrashed");
    box.exec();
    return 0;
}

void installCrashReporter(const std::string& cellDir) {
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    common::installCrashReporter({cellDir, QUORVEL_VERSION, error ? "" : self.string()});
}

} // namespace app
