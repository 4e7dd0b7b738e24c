// The gated message box: the gate decides whether it appears, the kind sets icon, caption and
// buttons, the width follows text and check box, and closing hands the check box to the gate.
#include "dialogs/Message.h"

#include "common/Scripted.h"
#include "common/Services.h"

#include <QApplication>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using common::ModalResult;

struct CountingGate : common::BoolMessageGate {
    using BoolMessageGate::BoolMessageGate;
    void setChecked(bool value) override { ++writes, BoolMessageGate::setChecked(value); }
    int writes = 0;
};

class MessageTest : public ::testing::Test {
protected:
    void TearDown() override { EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty()); }
    static int rightOf(const QWidget* w) { return w->x() + w->width() + 16; }

    common::ScriptedUi ui;
    common::ScopedServices services{{&ui, nullptr, nullptr}};
    CountingGate gate{true};
};

} // namespace

TEST_F(MessageTest, GateDecidesWhetherTheBoxIsPrepared) {
    TdlgMessage dlg;
    EXPECT_THAT([&] { dlg.SetupMessage(nullptr, 64, "x", true); },
                testing::ThrowsMessage<std::invalid_argument>(testing::HasSubstr("gate")));
    CountingGate silent(false);
    EXPECT_FALSE(dlg.SetupMessage(&silent, 48, "Second", true));
    EXPECT_EQ(ui.beeps(), 0);
    // A silenced message keeps the gate remembered before it.
    ASSERT_TRUE(dlg.SetupMessage(&gate, 32, "First", false));
    EXPECT_FALSE(dlg.SetupMessage(&silent, 32, "Second", false));
    EXPECT_EQ(ui.beeps(), 1);
    dlg.chkDontShow->setChecked(true);
    dlg.btnNo->click();
    EXPECT_FALSE(gate.checked());
    EXPECT_EQ(silent.writes, 0);
}

TEST_F(MessageTest, KindSetsIconCaptionButtonsAndPlacement) {
    using D = TdlgMessage;
    const struct {
        int kind;
        bool cancel;
        const char* caption;
        QLabel* D::*icon;    // nullptr: none shows
        const char* buttons; // the texts of those shown, "|" between
        ModalResult yes, no;
    } cases[] = {
        {32, true, "Confirm", &D::icoQuestion, "Yes|No", ModalResult::Yes, ModalResult::No},
        {48, false, "Warning", &D::icoWarning, "OK|Cancel", ModalResult::Ok, ModalResult::Cancel},
        {64, false, "Information", &D::icoInformation, "OK", ModalResult::Ok, {}},
        {16, true, "Confirm", nullptr, "OK|Cancel", ModalResult::Ok, ModalResult::Cancel},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.kind);
        TdlgMessage dlg;
        dlg.btnNo->hide();
        ASSERT_TRUE(dlg.SetupMessage(&gate, c.kind, "Proceed?", c.cancel));
        EXPECT_EQ(dlg.windowTitle(), c.caption);
        for (auto ico : {&D::icoInformation, &D::icoQuestion, &D::icoWarning})
            EXPECT_EQ(!(dlg.*ico)->isHidden(), ico == c.icon);
        const bool two = !dlg.btnNo->isHidden();
        EXPECT_EQ(dlg.btnYes->text() + (two ? "|" + dlg.btnNo->text() : ""), c.buttons);
        EXPECT_EQ(dlg.DefaultResult(), c.yes);
        const int cw = dlg.width(), w = dlg.btnYes->width();
        if (!two) {
            EXPECT_EQ(dlg.btnYes->x(), (cw - w) / 2);
            continue;
        }
        EXPECT_EQ(dlg.btnNo->property("modalResult").toInt(), int(c.no));
        EXPECT_EQ(dlg.btnYes->x(), cw / 2 - (w + 8));
        EXPECT_EQ(dlg.btnNo->x(), cw / 2 + 8);
    }
}

TEST_F(MessageTest, WidthFollowsTheWiderOfTextAndCheckBox) {
    TdlgMessage dlg;
    ASSERT_TRUE(dlg.SetupMessage(&gate, 64, "Done.", false));
    EXPECT_EQ(dlg.width(), rightOf(dlg.chkDontShow));
    ASSERT_TRUE(dlg.SetupMessage(&gate, 64, "A\r\n" + std::string(120, 'W') + "\r\nB", false));
    EXPECT_EQ(dlg.txtMessage->text().count('\n'), 2);
    EXPECT_EQ(dlg.width(), rightOf(dlg.txtMessage));
    // A check box narrower than 99 counts at that width and is widened afterwards.
    TdlgMessage narrow;
    narrow.chkDontShow->resize(50, narrow.chkDontShow->height());
    const int before = rightOf(narrow.chkDontShow);
    narrow.txtMessage->move(0, 0);
    ASSERT_TRUE(narrow.SetupMessage(&gate, 64, ".", false));
    EXPECT_EQ(narrow.width(), before);
    EXPECT_EQ(narrow.chkDontShow->width(),
              narrow.fontMetrics().horizontalAdvance(narrow.chkDontShow->text()) + 32);
}

TEST_F(MessageTest, ClosingHandsTheCheckBoxToTheGateOnce) {
    TdlgMessage dlg;
    ASSERT_TRUE(dlg.SetupMessage(&gate, 32, "Go on?", false));
    ui.onModal = [&](QWidget*) { dlg.btnNo->click(); };
    dlg.ShowModal();
    EXPECT_EQ(dlg.result(), int(ModalResult::No));
    EXPECT_TRUE(gate.checked());
    EXPECT_EQ(gate.writes, 1);
    // A seam that answers without closing the box: the box is closed once all the same.
    ui.onModal = [&](QWidget*) { dlg.chkDontShow->setChecked(true); };
    ui.modalAnswers = {ModalResult::Yes};
    EXPECT_EQ(dlg.ShowModal(), ModalResult::Yes);
    EXPECT_EQ(gate.writes, 2);
    EXPECT_FALSE(gate.checked());
    TdlgMessage next;
    EXPECT_FALSE(next.SetupMessage(&gate, 32, "Go on?", false));
    // The close box closes it too.
    CountingGate other(true);
    ASSERT_TRUE(next.SetupMessage(&other, 64, "Updated.", true));
    next.show();
    next.chkDontShow->setChecked(true);
    next.close();
    EXPECT_FALSE(other.checked());
}
