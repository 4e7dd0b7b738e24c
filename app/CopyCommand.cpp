#include "CopyCommand.h"

#include "Console.h"
#include "boundary/Exports.h"
#include "common/Services.h"
#include "dialogs/QtServices.h"

#include <QApplication>

#include <iostream>

namespace app {

CopyCommand::CopyCommand(CLI::App& cli) {
    copy_ = cli.add_subcommand(
        "copy",
        "Copy a job's files from SOURCE to DEST, leaving programs (*.NC), JOB.DAT, JOB.IDX "
        "and subdirectories behind. Files that cannot be copied are passed over in silence");
    copy_->add_option("source", source_, "Source directory")->required();
    copy_->add_option("destination", destination_, "Destination directory")->required();
    copy_->add_flag("--no-window", noWindow_,
                    "No progress window: print each file name as it is copied");
}

std::optional<int> CopyCommand::run(int argc, char** argv) {
    if (!*copy_)
        return std::nullopt;
    common::RealPlatform platform;
    if (noWindow_) {
        const common::ScopedServices services({nullptr, &platform, nullptr});
        for (const auto& name : boundary::JobFilesToCopy(source_, true)) {
            std::cout << name << '\n';
            boundary::CopyJobFile(source_, destination_, name);
        }
        std::cout.flush();
        return 0;
    }
    requireDisplay();
    prepareQtEnvironment();
    static int count;
    count = argc;
    const QApplication application(count, argv);
    dialogs::QtUi ui;
    dialogs::QtHostApplication host;
    const common::ScopedServices services({&ui, &platform, &host});
    boundary::CopyFiles(source_, destination_);
    return 0;
}

} // namespace app
