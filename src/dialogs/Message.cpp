#include "dialogs/Message.h"

#include "common/Services.h"

#include <QResizeEvent>
#include <QShowEvent>
#include <QStyle>

#include <stdexcept>

namespace {

QLabel* newIcon(QWidget* form, const char* name, QStyle::StandardPixmap icon, int top) {
    auto* label = new QLabel(form);
    label->setObjectName(name);
    label->setPixmap(form->style()->standardIcon(icon, nullptr, form).pixmap(32, 32));
    label->setGeometry(12, top, 32, 32);
    return label;
}

} // namespace

TdlgMessage::TdlgMessage(QWidget* parent) : QDialog(parent) {
    setObjectName("dlgMessage");
    setWindowTitle("Confirm");
    setModal(true);

    icoInformation = newIcon(this, "icoInformation", QStyle::SP_MessageBoxInformation, 12);
    icoQuestion = newIcon(this, "icoQuestion", QStyle::SP_MessageBoxQuestion, 50);
    icoWarning = newIcon(this, "icoWarning", QStyle::SP_MessageBoxWarning, 88);

    txtMessage = new QLabel(this);
    txtMessage->setObjectName("txtMessage");
    txtMessage->setTextFormat(Qt::PlainText);
    txtMessage->move(56, 16);
    txtMessage->adjustSize();

    chkDontShow = new QCheckBox("Don't show this message in the future", this);
    chkDontShow->setObjectName("chkDontShow");
    chkDontShow->setGeometry(12, 108, fontMetrics().horizontalAdvance(chkDontShow->text()) + 32,
                             20);

    btnYes = new QPushButton(this);
    btnYes->setObjectName("btnYes");
    btnYes->setGeometry(96, 72, 75, 25);
    btnYes->setDefault(true);
    setButton(btnYes, "Yes", common::ModalResult::Yes);
    btnNo = new QPushButton(this);
    btnNo->setObjectName("btnNo");
    btnNo->setGeometry(189, 72, 75, 25);
    btnNo->setAutoDefault(false);
    setButton(btnNo, "No", common::ModalResult::No);

    resize(360, 136);
    FCheckBottomGap = height() - chkDontShow->y();

    connect(btnYes, &QPushButton::clicked, this, &TdlgMessage::btnYesClick);
    connect(btnNo, &QPushButton::clicked, this, &TdlgMessage::btnNoClick);
    FormCreate();
}

void TdlgMessage::FormCreate() {
    icoQuestion->move(icoQuestion->x(), icoInformation->y());
    icoWarning->move(icoWarning->x(), icoInformation->y());
}

void TdlgMessage::FormActivate() { btnYes->setFocus(); }

void TdlgMessage::FormClose() {
    if (FMessageGate)
        FMessageGate->setChecked(!chkDontShow->isChecked());
}

void TdlgMessage::btnYesClick() { modalButtonClick(btnYes); }

void TdlgMessage::btnNoClick() { modalButtonClick(btnNo); }

void TdlgMessage::modalButtonClick(QPushButton* button) {
    done(button->property("modalResult").toInt());
}

void TdlgMessage::setButton(QPushButton* button, const char* caption, common::ModalResult result) {
    button->setText(caption);
    button->setProperty("modalResult", static_cast<int>(result));
    if (button == btnYes)
        setProperty("defaultModalResult", static_cast<int>(result));
}

bool TdlgMessage::SetupMessage(common::MessageGate* gate, std::int32_t kind,
                               const std::string& message, bool cancel) {
    if (!gate)
        throw std::invalid_argument("TdlgMessage::SetupMessage: no message gate given");
    if (!gate->checked())
        return false;
    FMessageGate = gate;
    common::ui().beep();

    txtMessage->setText(QString::fromStdString(message).replace("\r\n", "\n"));
    txtMessage->adjustSize();

    // The form's width comes from the check box as it stands, before step 8 may widen it.
    const int byText = txtMessage->x() + txtMessage->width() + 16;
    const int byCheck = chkDontShow->x() + chkDontShow->width() + 16;
    const int clientWidth = byText > byCheck ? byText : byCheck;
    resize(clientWidth, height());

    icoInformation->hide();
    icoQuestion->hide();
    icoWarning->hide();
    switch (kind) {
    case 32:
        icoQuestion->show();
        setWindowTitle("Confirm");
        setButton(btnYes, "Yes", common::ModalResult::Yes);
        setButton(btnNo, "No", common::ModalResult::No);
        btnNo->setHidden(false);
        break;
    case 48:
        icoWarning->show();
        setWindowTitle("Warning");
        setButton(btnYes, "OK", common::ModalResult::Ok);
        setButton(btnNo, "Cancel", common::ModalResult::Cancel);
        btnNo->setHidden(false);
        break;
    default:
        if (kind == 64) {
            icoInformation->show();
            setWindowTitle("Information");
        }
        setButton(btnYes, "OK", common::ModalResult::Ok);
        setButton(btnNo, "Cancel", common::ModalResult::Cancel);
        btnNo->setHidden(!cancel);
        break;
    }

    // Integer division rounds toward zero, as the placement wants.
    if (btnNo->isHidden()) {
        btnYes->move((clientWidth - btnYes->width()) / 2, btnYes->y());
    } else {
        btnYes->move(clientWidth / 2 - (btnYes->width() + 8), btnYes->y());
        btnNo->move(clientWidth / 2 + 8, btnNo->y());
    }

    if (chkDontShow->width() < 99)
        chkDontShow->resize(fontMetrics().horizontalAdvance(chkDontShow->text()) + 32,
                            chkDontShow->height());
    chkDontShow->setChecked(false);
    return true;
}

common::ModalResult TdlgMessage::ShowModal() {
    FClosed = false;
    const common::ModalResult answer = common::ui().showModal(this);
    // A seam that answered for the box never closed it: close it here, once.
    if (!FClosed) {
        FClosed = true;
        FormClose();
    }
    return answer;
}

common::ModalResult TdlgMessage::DefaultResult() const {
    return static_cast<common::ModalResult>(btnYes->property("modalResult").toInt());
}

void TdlgMessage::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    FClosed = false;
    FormActivate();
}

void TdlgMessage::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    chkDontShow->move(chkDontShow->x(), height() - FCheckBottomGap);
}

// Every way of closing ends here: the buttons, Esc and the close box (through reject).
void TdlgMessage::done(int result) {
    if (!FClosed) {
        FClosed = true;
        FormClose();
    }
    QDialog::done(result);
}
