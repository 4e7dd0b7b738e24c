#include "dialogs/QtServices.h"

#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QMessageBox>
#include <QStringList>

namespace dialogs {

namespace {

// "Label|*.a;*.b|Label|*.*" -> Qt's "Label (*.a *.b);;Label (*)" filters.
QStringList qtFilters(const std::string& filter) {
    const QStringList parts = QString::fromStdString(filter).split('|');
    QStringList out;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        QString patterns = parts[i + 1];
        QString label = parts[i];
        // A label that names its own patterns ("Text Files (*.txt)") gets them once.
        if (label.endsWith("(" + patterns + ")"))
            label = label.left(label.size() - patterns.size() - 2).trimmed();
        patterns.replace(';', ' ');
        if (patterns == "*.*")
            patterns = "*";
        out << label + " (" + patterns + ")";
    }
    return out;
}

void setupFileDialog(QFileDialog& dialog, const common::FileDialogRequest& request) {
    dialog.setWindowTitle(QString::fromStdString(request.title));
    dialog.setDirectory(QString::fromStdString(request.initialDir));
    if (!request.fileName.empty())
        dialog.selectFile(QString::fromStdString(request.fileName));
    const auto filters = qtFilters(request.filter);
    if (!filters.isEmpty()) {
        dialog.setNameFilters(filters);
        const int index = request.filterIndex - 1;
        if (index >= 0 && index < filters.size())
            dialog.selectNameFilter(filters[index]);
    }
    if (!request.defaultExt.empty())
        dialog.setDefaultSuffix(QString::fromStdString(request.defaultExt));
}

} // namespace

common::ModalResult QtUi::message(common::MessageKind kind, const std::string& text,
                                  common::MessageButtons buttons, const std::string& caption) {
    QMessageBox box;
    box.setText(QString::fromStdString(text));
    box.setWindowTitle(QString::fromStdString(caption.empty() ? "FANUC Robocut" : caption));
    switch (kind) {
    case common::MessageKind::Error:
        box.setIcon(QMessageBox::Critical);
        break;
    case common::MessageKind::Information:
        box.setIcon(QMessageBox::Information);
        break;
    case common::MessageKind::Warning:
        box.setIcon(QMessageBox::Warning);
        break;
    case common::MessageKind::Confirmation:
        box.setIcon(QMessageBox::Question);
        break;
    case common::MessageKind::Plain:
        break;
    }
    switch (buttons) {
    case common::MessageButtons::Ok:
        box.setStandardButtons(QMessageBox::Ok);
        break;
    case common::MessageButtons::OkCancel:
        box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
        break;
    case common::MessageButtons::YesNo:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        break;
    case common::MessageButtons::YesNoCancel:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        break;
    }
    switch (box.exec()) {
    case QMessageBox::Ok:
        return common::ModalResult::Ok;
    case QMessageBox::Yes:
        return common::ModalResult::Yes;
    case QMessageBox::No:
        return common::ModalResult::No;
    default:
        return common::ModalResult::Cancel;
    }
}

bool QtUi::openFile(const common::FileDialogRequest& request, std::string& fileName) {
    QFileDialog dialog;
    setupFileDialog(dialog, request);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return false;
    fileName = dialog.selectedFiles().front().toStdString();
    return true;
}

bool QtUi::saveFile(const common::FileDialogRequest& request, std::string& fileName) {
    QFileDialog dialog;
    setupFileDialog(dialog, request);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return false;
    fileName = dialog.selectedFiles().front().toStdString();
    return true;
}

common::ModalResult QtUi::showModal(QWidget* form) {
    if (auto* dialog = qobject_cast<QDialog*>(form)) {
        const int result = dialog->exec();
        // Forms set their classic modal result through done(); Accepted/Rejected map to OK/Cancel.
        if (result == QDialog::Accepted)
            return common::ModalResult::Ok;
        if (result == QDialog::Rejected)
            return common::ModalResult::Cancel;
        return static_cast<common::ModalResult>(result);
    }
    return common::ModalResult::None;
}

void QtUi::beep() { QApplication::beep(); }

void QtHostApplication::terminate() { QCoreApplication::exit(0); }

void QtHostApplication::processMessages() { QCoreApplication::processEvents(); }

} // namespace dialogs
