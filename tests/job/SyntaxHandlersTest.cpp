// Syntax item handlers on the demo job of pallet 7, opened as the host opens it.
#include "JobFixture.h"

#include "common/HostApplication.h"

#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

namespace {

class SyntaxHandlersTest : public jobtest::JobFixture {
protected:
    void SetUp() override {
        JobFixture::SetUp();
        ASSERT_TRUE(form->OpenJob(form->WizardInfo()));
    }
};

TEST_F(SyntaxHandlersTest, CommandLineTakesCheckedSubItemsUnlessClosed) {
    // G92 of type 1 on line 9: its sub-item UV is appended; selecting the sub-item composes it.
    select(10);
    const std::string open = "G92 X+10.000 Y+5.000 U+0.500 V-0.500";
    EXPECT_EQ(row(9, "Script_Line"), open);
    EXPECT_EQ(row(10, "Script_Line"), open);
    EXPECT_EQ(tree::StateIndex(node(10)), 2);
    // A double click switches the sub-item off and on again; the command follows.
    emit form->tvwTemplate->itemDoubleClicked(node(10), 0);
    EXPECT_EQ(row(9, "Script_Line"), "G92 X+10.000 Y+5.000");
    form->tvwTemplateDblClick();
    EXPECT_EQ(row(9, "Script_Line"), open);

    // G92 of type 3 on line 21: its own part alone; the checked child shows state 1 in the tree
    // and stays 2 in the row.
    select(21);
    const std::string closed = "G92 X+110.000 Y+5.000 U+0.500 V-0.500";
    EXPECT_EQ(row(21, "Script_Line"), closed);
    EXPECT_EQ(row(22, "Script_Line"), closed);
    EXPECT_EQ(tree::StateIndex(node(22)), 1);
    EXPECT_EQ(row(22, "State"), "2");

    // A selection command (type 2) with a checked sub-item: the texts joined directly.
    select(27);
    form->ComposeCommandLine();
    EXPECT_EQ(row(27, "Script_Line"), "M01 (CHECK WIRE)");
    EXPECT_EQ(row(28, "Script_Line"), "M01 (CHECK WIRE)");
}

TEST_F(SyntaxHandlersTest, ClickCarriesValuesOverByTypeNotPosition) {
    // G65 item 1 has the include option (8001) in slot 4, item 2 in slot 2.
    update("Value_4 = '1'", "17");
    select(17);
    form->lstSyntax->setCurrentRow(1);
    form->lstSyntaxClick(form->lstSyntax);

    EXPECT_EQ(row(17, "Value_2"), "1"); // not "1.5", the old slot 2
    EXPECT_FALSE(form->chkOption->isHidden());
    EXPECT_TRUE(form->chkOption->isChecked());
    EXPECT_FALSE(form->btnFilename->isHidden()); // a file value: its browse button
    // The command keeps its checked sub-item ARGC.
    EXPECT_EQ(row(17, "Script_Line"), "G65 P9010 C+0.250");

    // Without a sender a filled box keeps its value; with one it gets the global default.
    select(11);
    EXPECT_EQ(form->textDefault1->text(), "L");
    form->lstSyntaxClick(form->lstSyntax);
    EXPECT_EQ(row(11, "Value_1"), "2.5"); // carried over: the same value type
    form->FSavedValueTypes.fill(0);
    form->lstSyntaxClick(form->lstSyntax);
    EXPECT_EQ(row(11, "Value_1"), "0.5");
    EXPECT_EQ(form->textDefault1->text(), "G");
}

TEST_F(SyntaxHandlersTest, JoinedChainIsTheSameFromAnyOfItsRowsAndFollowsTyping) {
    // OFFSET (15) is flagged by the template; flag G00 (16) too: the chain runs 15 to 17.
    update("Value_3 = '1', Path = 'P1.NC'", "16");
    const std::string chain = "G41 D02 G00 X+60.000 Y+5.000 G65 P9010 A+1.500 B-2.000";
    select(16);
    for (int line : {15, 16, 17})
        EXPECT_EQ(row(line, "Script_Line"), chain) << line;
    update("Script_Line = ''", "15, 16, 17");
    select(15);
    EXPECT_EQ(row(17, "Script_Line"), chain);

    // Typing recomposes the chain and forgets the browsed file.
    select(16);
    form->dbeValue1->setCursorPosition(1);
    type(form->dbeValue1, "5");
    EXPECT_EQ(row(16, "Value_1"), "650");
    EXPECT_EQ(row(16, "Path"), "");
    EXPECT_EQ(row(15, "Script_Line"), "G41 D02 G00 X+650.000 Y+5.000 G65 P9010 A+1.500 B-2.000");
    EXPECT_EQ(form->dbeValue1->cursorPosition(), 2);
    EXPECT_TRUE(form->FEventsEnabled);
}

TEST_F(SyntaxHandlersTest, RunningNumbersCountOnAndStopAtZero) {
    // Before any number, an earlier empty one counts as 0: nothing is stored.
    select(14);
    EXPECT_EQ(row(14, "Value_1"), "");
    select(8);
    EXPECT_EQ(row(8, "Script_Line"), "#501=1");
    select(14);
    EXPECT_EQ(row(14, "Value_1"), "2"); // on from line 8's stored 1

    // A filled value is left alone, also when it repeats an earlier number.
    update("Value_1 = '1'", "20");
    select(8);
    select(20);
    EXPECT_EQ(row(20, "Value_1"), "1");

    // A 0 before it stops the count.
    update("Value_1 = '0'", "14");
    update("Value_1 = ''", "20");
    select(20);
    EXPECT_EQ(row(20, "Value_1"), "");
}

TEST_F(SyntaxHandlersTest, NodeImageRollsUpToParentAndSection) {
    select(9);
    // A command with sub-items takes its status only from them.
    form->SetNodeImage(node(9), 1, false);
    EXPECT_EQ(tree::ImageIndex(node(9)), 2);
    form->SetNodeImage(node(10), 3, false);
    EXPECT_EQ(row(9, "Image"), "1");

    // The footer's last open line done: the footer is done, and open again with it.
    form->SetNodeImage(node(29), 2, false);
    EXPECT_EQ(tree::ImageIndex(node(25)), 2);

    form->btnNext->setEnabled(false);
    form->SetNodeImage(node(29), 1, false);
    EXPECT_TRUE(form->btnNext->isEnabled());
    EXPECT_EQ(tree::ImageIndex(node(25)), 1);
}

} // namespace
