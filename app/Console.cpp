#include "Console.h"

#include <QCoreApplication>

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
