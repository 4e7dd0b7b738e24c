#pragma once
// The gated message box: an icon, a text, one or two buttons and "Don't show this message in the
// future". Whether it appears is decided by the host's gate (checked = show); closing the box with
// the check box ticked unticks the gate. Controls sit at absolute positions because SetupMessage
// places them by numbers.
#include "common/HostApplication.h"
#include "common/Ui.h"

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QPushButton>

#include <cstdint>
#include <string>

class TdlgMessage : public QDialog {
    Q_OBJECT
public:
    explicit TdlgMessage(QWidget* parent = nullptr);

    // ---- Controls ----
    QLabel* icoInformation;
    QLabel* icoQuestion;
    QLabel* icoWarning;
    QLabel* txtMessage;     // sizes itself to the text
    QCheckBox* chkDontShow; // anchored left and bottom
    // Each button carries its modal result as the int property "modalResult". btnYes is the
    // default button; the form mirrors its result in the int property "defaultModalResult".
    QPushButton* btnYes;
    QPushButton* btnNo;

    // ---- Events ----
    // Puts the three icons on one spot.
    void FormCreate();
    void FormActivate();
    // Hands the check box's state back to the gate, inverted.
    void FormClose();
    void btnYesClick();
    void btnNoClick();

    // Prepares the box for `message`; false (and nothing changed) when the gate is not checked.
    // `kind` is a message-box icon number: 32 question, 48 warning, 64 information. Throws
    // std::invalid_argument when no gate is given.
    bool SetupMessage(common::MessageGate* gate, std::int32_t kind, const std::string& message,
                      bool cancel);

    // Shows the box through the Ui seam and returns its answer. FormClose runs exactly once per
    // showing, also when the seam answers without the box ever closing itself.
    common::ModalResult ShowModal();
    // The result of the default button.
    common::ModalResult DefaultResult() const;

protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void done(int result) override;

private:
    void setButton(QPushButton* button, const char* caption, common::ModalResult result);
    void modalButtonClick(QPushButton* button);

    common::MessageGate* FMessageGate = nullptr;
    bool FClosed = false;    // FormClose has run for the current showing
    int FCheckBottomGap = 0; // chkDontShow's distance from the bottom edge
};
