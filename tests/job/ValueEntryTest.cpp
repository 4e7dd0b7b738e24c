// Value entry and the default menus on the demo job of pallet 7.
#include "JobFixture.h"

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMouseEvent>
#include <QRadioButton>

namespace {

class ValueEntryTest : public jobtest::JobFixture {
protected:
    void SetUp() override {
        JobFixture::SetUp();
        ASSERT_TRUE(form->OpenJob(form->WizardInfo()));
    }

    static void mouse(QWidget* control, QEvent::Type type, Qt::MouseButton button, QPoint at) {
        QMouseEvent event(type, at, control->mapToGlobal(at), button,
                          type == QEvent::MouseButtonPress ? button : Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(control, &event);
    }
};

TEST_F(ValueEntryTest, BlankInFirstBoxWaitsForTheNextCharacterKey) {
    select(1); // COMMENT "(%s)", an upper-case box
    form->dbeValue1->end(false);
    type(form->dbeValue1, " ");
    EXPECT_EQ(row(1, "Script_Line"), "(DEMO WIRE-CUT PLATE)");
    type(form->dbeValue1, "b");
    EXPECT_EQ(row(1, "Script_Line"), "(DEMO WIRE-CUT PLATE B)");
}

TEST_F(ValueEntryTest, SectionCommentBecomesTheLineUnlessItEndsInABlank) {
    form->show(); // the comment acts only while its panel is showing
    form->SetActivePage(form->pageScript, form->tabTree);
    select(7);
    ASSERT_TRUE(form->pnlSection->isVisible());
    // An emptied memo leaves the old line.
    form->dbmComment->selectAll();
    type(form->dbmComment, "\b");
    EXPECT_EQ(row(7, "Script_Line"), "(WORKPIECE1)");
    type(form->dbmComment, "ab ");
    EXPECT_EQ(row(7, "Script_Line"), "(AB)");
    type(form->dbmComment, "\nc");
    EXPECT_EQ(row(7, "Script_Line"), "(AB \r\nC)");
    EXPECT_EQ(TdlgJob::WrapComment("a\xE9z"), "(A\xE9Z)");
}

TEST_F(ValueEntryTest, BrowsedFileAndTheOption) {
    const std::string file = cell.tmp.file("SUB.NC");
    testsupport::writeFile(file, "%\r\nO1234 (SUB)\r\nM99\r\n");
    cell.ui.fileAnswers.push_back(file);
    select(6); // M98: a file in box 1, "Include File" in box 2
    form->btnFilenameClick();
    EXPECT_EQ(cell.ui.fileRequests.back().initialDir, cell.platform.exeDir);
    EXPECT_EQ(row(6, "Value_1"), "1234");
    EXPECT_EQ(row(6, "Path"), file);

    form->dbeValue1->end(false);
    type(form->dbeValue1, "5"); // forgets the file (SyntaxHandlersTest)
    // Ticking "Include File" takes the browsed file back into Path.
    form->chkOption->click();
    EXPECT_EQ(row(6, "Value_2"), "1");
    EXPECT_EQ(row(6, "Path"), file);

    // An input directory that exists is where the dialog starts; a cancel changes nothing.
    form->FInfo.InputDirectory = cell.dir();
    form->btnFilenameClick();
    EXPECT_EQ(cell.ui.fileRequests.back().initialDir, cell.dir());
    EXPECT_EQ(row(6, "Value_1"), "12345");

    // Elsewhere the option continues the line: the lines around it are joined anew.
    select(16); // G00: its option in box 3 goes on with G65
    form->chkOption->click();
    EXPECT_EQ(row(15, "Script_Line"), "G41 D02 G00 X+60.000 Y+5.000 G65 P9010 A+1.500 B-2.000");
    EXPECT_EQ(selected(), 16);
}

TEST_F(ValueEntryTest, SyntaxChoiceByClickAndByRightClick) {
    // Which values a click carries over is SyntaxHandlersTest's.
    update("Value_1 = '12'", 9);
    select(9); // G92 item 1: X, Y, flag; item 2: X, Y, U, V, flag
    form->lstSyntax->setCurrentRow(1);
    form->lstSyntaxClick(form->lstSyntax);
    ASSERT_EQ(row(9, "Syntax_Item"), "2");

    // A right click on row 1 chooses it before the menu; cancelling the menu undoes nothing.
    QListWidget* list = form->lstSyntax;
    const QPoint at = list->visualItemRect(list->item(0)).center();
    mouse(list->viewport(), QEvent::MouseButtonPress, Qt::RightButton, at);
    form->itemCancelSyntax->trigger();
    EXPECT_EQ(row(9, "Syntax_Item"), "1");
    EXPECT_EQ(row(9, "Value_1"), "12");

    // On a section the list does nothing.
    select(7);
    const std::string item = row(7, "Syntax_Item");
    form->lstSyntaxClick(form->lstSyntax);
    EXPECT_EQ(row(7, "Syntax_Item"), item);
}

TEST_F(ValueEntryTest, SelectionPageChoosesEveryItemAndShowsTheDefaultMarkers) {
    update("Image = 2", 3);
    // G54 has seven syntaxes; its line has the local default item 2.
    select(3);
    EXPECT_FALSE(form->pnlRadioButtons->isHidden());
    EXPECT_EQ(form->lstSyntax->count(), 6);
    EXPECT_FALSE(form->RadioItem(6)->isHidden());
    EXPECT_EQ(form->RadioItem(6)->toolTip(), "G59");
    EXPECT_TRUE(form->radItem2->isChecked());
    EXPECT_EQ(form->textDefSyn[0]->text(), "G");
    EXPECT_EQ(form->textDefSyn[1]->text(), "L");

    // The syntax markers follow the syntax menu: global row 0, local row 1 at first.
    form->lstSyntax->setCurrentRow(2);
    form->itemSetGlobalDefSynClick();
    EXPECT_TRUE(form->lstSyntaxDrawItem(2));
    EXPECT_EQ(form->textDefSyn[0]->text(), "G"); // until another line is selected
    select(9);
    select(3);
    EXPECT_EQ(form->textDefSyn[0]->text(), "");
    EXPECT_EQ(form->textDefSyn[2]->text(), "G");

    form->lstSyntax->setCurrentRow(3);
    form->itemSetLocalDefSynClick();
    const std::string local = "select [Default] from TemplateDefaults where Value_ID = 'G54'";
    EXPECT_EQ(read(local), "4");
    EXPECT_EQ(form->textDefSyn[3]->text(), "L");
    form->lstSyntax->setCurrentRow(2);
    form->itemClearLocalDefSynClick();
    EXPECT_EQ(read(local), "(no row)");
    EXPECT_EQ(form->textDefSyn[2]->text(), ""); // the "G" too
    EXPECT_EQ(form->textDefSyn[3]->text(), "L");

    // A radio button or its label chooses the item.
    form->radItem4->click();
    EXPECT_EQ(row(3, "Script_Line"), "G57");
    EXPECT_EQ(row(3, "Image"), "1");
    QLabel* label = form->txtItem6;
    mouse(label, QEvent::MouseButtonRelease, Qt::LeftButton, label->rect().center());
    EXPECT_EQ(row(3, "Script_Line"), "G59");

    // Item 5 is ticked by the click, not by the page's set-up.
    form->lstSyntax->setCurrentRow(4);
    form->lstSyntaxClick(form->lstSyntax);
    EXPECT_TRUE(form->radItem5->isChecked());
    form->radItem1->setChecked(true);
    form->LocateSyntaxRow("G54", 1, "");
    form->ShowItemSelection();
    EXPECT_TRUE(form->radItem1->isChecked());
}

TEST_F(ValueEntryTest, ValueMarkersAndTheValueMenu) {
    select(11); // G04: global default 0.5, local 2.5
    form->dbeValueEnter(form->dbeValue1);
    form->itemLoadGlobalClick();
    EXPECT_EQ(form->textDefault1->text(), "G");
    form->itemSetLocalClick(); // the loaded 0.5, equal to both: "L"
    const std::string local = "select [Default] from TemplateDefaults where Value_ID = '2005'";
    EXPECT_EQ(read(local), "0.5");
    EXPECT_EQ(form->textDefault1->text(), "L");
    form->itemClearLocalClick();
    EXPECT_EQ(read(local), "(no row)");
    form->mnuDefaultValuePopup();
    EXPECT_FALSE(form->itemClearLocal->isEnabled());

    // Box 2 keeps the kept oddity: the default is stored, then emptied.
    select(16);
    form->dbeValueEnter(form->dbeValue2);
    form->itemLoadGlobalClick();
    EXPECT_EQ(row(16, "Value_2"), "");
    EXPECT_EQ(row(16, "Script_Line"), "G41 D02 G00 X+60.000 Y+0.000");

    // The global default of a number is stored as typed; an empty box never shows "G".
    select(11);
    form->dbeValueEnter(form->dbeValue1);
    form->dbeValue1->selectAll();
    type(form->dbeValue1, "\b0.750");
    form->itemSetGlobalClick();
    EXPECT_EQ(read("select [Default] from ValueType where Value_ID = 2005"), "0.750");
    EXPECT_EQ(form->textDefault1->text(), "G");
    select(1); // COMMENT: no global default
    form->dbeValue1->selectAll();
    type(form->dbeValue1, "\b");
    EXPECT_EQ(form->textDefault1->text(), "");
    form->itemSetLocalClick();
    EXPECT_EQ(form->textDefault1->text(), "L");
}

} // namespace
