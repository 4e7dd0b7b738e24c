// The copy progress window: its controls, and Cancel or Esc that only mark the copy as done.
#include "dialogs/Export.h"

#include <QApplication>
#include <QTest>
#include <gtest/gtest.h>

TEST(ExportForm, CancelAndEscMarkDoneAndLeaveTheWindowOpen) {
    TdlgExport form;
    EXPECT_EQ(form.windowTitle(), "Copying...");
    EXPECT_EQ(form.minimumSize(), form.maximumSize());
    EXPECT_EQ(form.findChild<QLabel*>("txtFileName")->text(), "(run time)");
    EXPECT_EQ(form.findChild<QLabel*>("txtFile")->text(), "File:");
    EXPECT_EQ(form.findChild<QLabel*>("txtFrom")->text(), "From:");
    EXPECT_FALSE(form.findChild<QLabel*>("CopyAnimation")->pixmap().isNull());
    EXPECT_EQ(form.findChild<QPushButton*>("btnCancel")->text(), "Cancel");

    form.show();
    EXPECT_FALSE(form.FDone);
    form.btnCancel->click();
    EXPECT_TRUE(form.FDone);
    EXPECT_TRUE(form.isVisible());

    form.FDone = false;
    QTest::keyClick(&form, Qt::Key_Escape);
    EXPECT_TRUE(form.FDone);
    EXPECT_TRUE(form.isVisible());
}
