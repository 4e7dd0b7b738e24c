#pragma once
// The copy progress window: which file of which directory is being copied, and a Cancel button.
// Cancel (button or Esc) only raises FDone; the copy loop sees it after the current file and the
// caller frees the window.
#include <QDialog>
#include <QLabel>
#include <QPushButton>

class TdlgExport : public QDialog {
    Q_OBJECT
public:
    explicit TdlgExport(QWidget* parent = nullptr);

    // ---- Controls ----
    QLabel* CopyAnimation; // the file copy picture, standing still; property "active" is false
    QLabel* txtFile;
    QLabel* txtFileName;
    QLabel* txtFrom;
    QLabel* txtFromDir;
    QPushButton* btnCancel;

    // True when the copy has ended or the user has cancelled.
    bool FDone = false;

    // ---- Events ----
    void btnCancelClick();
    void FormActivate();
    void FormDeactivate();

protected:
    // Esc and the window's close button cancel like btnCancel and leave the window open.
    void reject() override;
    void changeEvent(QEvent* event) override;
};
