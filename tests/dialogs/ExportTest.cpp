// The copy progress window: Cancel or Esc only mark the copy as done (the copy itself stops on it).
#include "dialogs/Export.h"

#include <QApplication>
#include <QTest>
#include <gtest/gtest.h>

TEST(ExportForm, CancelAndEscMarkDoneAndLeaveTheWindowOpen) {
    TdlgExport form;
    EXPECT_FALSE(form.findChild<QLabel*>("CopyAnimation")->pixmap().isNull());
    form.show();
    form.btnCancel->click();
    EXPECT_TRUE(form.FDone);
    EXPECT_TRUE(form.isVisible());
    form.FDone = false;
    QTest::keyClick(&form, Qt::Key_Escape);
    EXPECT_TRUE(form.FDone);
    EXPECT_TRUE(form.isVisible());
}
