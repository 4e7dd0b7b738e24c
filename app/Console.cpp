#include "Console.h"

#include "common/FileNames.h"

#include <QCoreApplication>
#include <QDir>

#include <stdexcept>

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

namespace {

// Notes of the toolkit about its platform that say nothing to a user are passed over; every other
// message goes where Qt sends it.
QtMessageHandler toolkitHandler = nullptr;

void quietToolkitNotes(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (type != QtCriticalMsg && type != QtFatalMsg &&
        (text.contains("propagateSizeHints") || text.contains("XDG_RUNTIME_DIR")))
        return;
    if (toolkitHandler)
        toolkitHandler(type, context, text);
}

} // namespace

void prepareQtEnvironment() {
    static const bool installed = [] {
        toolkitHandler = qInstallMessageHandler(quietToolkitNotes);
        return true;
    }();
    (void)installed;
    if (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR"))
        return;
    const QString dir = QDir::tempPath() + "/quorvel-runtime-" + QString::number(getuid());
    QDir().mkpath(dir);
    chmod(dir.toLocal8Bit().constData(), 0700);
    qputenv("XDG_RUNTIME_DIR", dir.toLocal8Bit());
}

void requireDisplay() {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        throw std::runtime_error("there is no display to show the window on: set DISPLAY, or "
                                 "run with QT_QPA_PLATFORM=offscreen");
}

} // namespace app
