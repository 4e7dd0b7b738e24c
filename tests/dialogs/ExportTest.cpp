// The copy progress window: its controls, and Cancel or Esc that only mark the copy as done.
#include "dialogs/Export.h"

#include <QApplication>
#include <QTest>
#include <gtest/gtest.h>

TEST(ExportForm, CancelAndEscMarkDoneAndLeaveTheWindowOpen) {
    TdlgExport form;
    EXPECT_EQ(form.minimumSize(), form.maximumSize());
    EXPECT_FALSE(form.findChild<QLabel*>("CopyAnimation")->pixmap().isNull());

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
