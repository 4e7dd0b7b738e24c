#pragma once
// "Delete Previous Files": what to do with the files a previous job left in the pallet directory.
// The answer is the modal result and the chosen item of rdgOption.
#include <QDialog>

#include <string>

class QButtonGroup;
class QCheckBox;
class QGroupBox;
class QPushButton;

class TdlgDeleteFiles : public QDialog {
    Q_OBJECT
public:
    explicit TdlgDeleteFiles(QWidget* parent = nullptr);

    // Items of rdgOption, in their order.
    enum Option { DeleteAll = 0, RetainAll = 1, PromptEach = 2 };

    // ---- Controls ----
    QGroupBox* rdgOption; // a radio group; its buttons carry their item index as id
    QButtonGroup* rdgOptionItems;
    QCheckBox* chkOutputDir;
    QPushButton* btnOK;     // default, result OK
    QPushButton* btnCancel; // cancel, result Cancel

    int ItemIndex() const;
    void SetItemIndex(int Index);

    // ---- Events ----
    void FormActivate();
    // The check box is usable when the item is not "Retain" and FOutputDirectory is an existing
    // directory; when it is not usable it is also unchecked.
    void rdgOptionClick();

    // Empty unless a caller sets it.
    std::string FOutputDirectory;

    // Esc and the close box answer Cancel.
    void reject() override;

protected:
    void showEvent(QShowEvent* event) override;
};
