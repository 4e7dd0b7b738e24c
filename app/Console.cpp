#include "Console.h"

#include "common/FileNames.h"

#include <QCoreApplication>
#include <QDir>

#include <sys/stat.h>
#include <unistd.h>

#include <iostream>

namespace app {

common::ModalResult ConsoleUi::message(common::MessageKind kind, const std::string& text,
                                       common::MessageButtons buttons, const std::string&) {
    const char* prefix = kind == common::MessageKind::Error ? "error: " : "";
    std::cerr << prefix << text << '\n';
    return buttons == common::MessageButtons::Ok ? common::ModalResult::Ok
                                                 : common::ModalResult::Yes;
}

bool ConsoleUi::openFile(const common::FileDialogRequest&, std::string&) { return false; }

bool ConsoleUi::saveFile(const common::FileDialogRequest&, std::string&) { return false; }

common::ModalResult ConsoleUi::showModal(QWidget*) { return common::ModalResult::Cancel; }

} // namespace app

namespace app {

void ConsoleHost::processMessages() {
    if (QCoreApplication::instance())
        QCoreApplication::processEvents();
}

} // namespace app

namespace app {

CellPlatform::CellPlatform(const std::string& cellDir)
    : cellDir_(common::includeTrailingPathDelimiter(cellDir)) {}

void prepareQtEnvironment() {
    if (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR"))
        return;
    const QString dir = QDir::tempPath() + "/quorvel-runtime-" + QString::number(getuid());
    QDir().mkpath(dir);
    chmod(dir.toLocal8Bit().constData(), 0700);
    qputenv("XDG_RUNTIME_DIR", dir.toLocal8Bit());
}

} // namespace app
