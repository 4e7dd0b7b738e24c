#include "dialogs/Export.h"

#include <QEvent>
#include <QIcon>
#include <QStyle>

namespace {

QLabel* newLabel(QWidget* form, const char* name, const char* caption, int left, int top) {
    auto* label = new QLabel(caption, form);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->move(left, top);
    return label;
}

} // namespace

TdlgExport::TdlgExport(QWidget* parent) : QDialog(parent) {
    setObjectName("dlgExport");
    setWindowTitle("Copying...");
    setWindowFlags(Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint | Qt::WindowTitleHint |
                   Qt::CustomizeWindowHint);

    CopyAnimation = new QLabel(this);
    CopyAnimation->setObjectName("CopyAnimation");
    const QIcon fallback = style()->standardIcon(QStyle::SP_FileIcon, nullptr, this);
    CopyAnimation->setPixmap(QIcon::fromTheme("edit-copy", fallback).pixmap(48, 48));
    CopyAnimation->setGeometry(16, 12, 48, 48);
    CopyAnimation->setProperty("active", false);

    txtFile = newLabel(this, "txtFile", "File:", 16, 72);
    txtFileName = newLabel(this, "txtFileName", "(run time)", 64, 72);
    txtFileName->setFixedWidth(280);
    txtFrom = newLabel(this, "txtFrom", "From:", 16, 96);
    txtFromDir = newLabel(this, "txtFromDir", "", 64, 96);
    txtFromDir->setFixedWidth(280);

    btnCancel = new QPushButton("Cancel", this);
    btnCancel->setObjectName("btnCancel");
    btnCancel->setGeometry(135, 128, 90, 27);
    btnCancel->setAutoDefault(false);

    setFixedSize(360, 168);
    connect(btnCancel, &QPushButton::clicked, this, &TdlgExport::btnCancelClick);
}

void TdlgExport::btnCancelClick() { FDone = true; }

void TdlgExport::FormActivate() {}

void TdlgExport::FormDeactivate() { CopyAnimation->setProperty("active", false); }

void TdlgExport::reject() { btnCancelClick(); }

void TdlgExport::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange) {
        if (isActiveWindow())
            FormActivate();
        else
            FormDeactivate();
    }
    QDialog::changeEvent(event);
}
