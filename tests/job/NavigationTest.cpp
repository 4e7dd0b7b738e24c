// Wizard navigation on the demo job of pallet 7, and the check of values with included files.
#include "JobFixture.h"

#include "job/FileSource.h"

#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>

#include <filesystem>

namespace {

class NavigationTest : public jobtest::JobFixture {
protected:
    void SetUp() override {
        JobFixture::SetUp();
        TJobWizardInfo info = form->WizardInfo();
        info.LocalDirectory = local.str();
        info.InputDirectory = input.str();
        ASSERT_TRUE(form->OpenJob(info));
    }

    // Line 6 (a sub-program file with "Include File" checked) with the given Path, re-read.
    void includeLine(const std::string& path) {
        update("Value_2 = '1', Path = '" + path + "'", 6);
        select(6);
        form->FEventsEnabled = false;
        DM().tableJobs.findKey({7, 1, 6});
        form->FEventsEnabled = true;
    }
    bool validate(const std::string& text, int valueType = 6001, bool checkOnly = false) {
        dialogs::TDBEdit box;
        box.setText(QString::fromStdString(text));
        return form->ValidateValue(&box, valueType, checkOnly);
    }

    testsupport::TempDir local;
    testsupport::TempDir input;
    testsupport::TempDir old; // where the lines' previous files lie
};

TEST_F(NavigationTest, NextSkipsLeapsPassesUnusedSubItemsAndKeepsBadValues) {
    // btnSkip down on a skipped line, or a skip sender: no check and no image.
    update("Image = 3", 16);
    select(16);
    form->btnNextClick(form->btnNext);
    EXPECT_EQ(selected(), 17);
    EXPECT_EQ(row(16, "Image"), "3");
    select(15);
    retype("");
    form->btnNextClick(form->btnSkipDown);
    EXPECT_EQ(selected(), 16);
    EXPECT_EQ(row(15, "Image"), "1");

    // G92 (9) with its sub-item UV (10): the operator's Next passes over it, the walk goes in.
    node(9)->setExpanded(false);
    select(9);
    form->btnNext->click();
    EXPECT_EQ(selected(), 11);
    node(9)->setExpanded(false);
    select(9);
    form->btnNextClick(nullptr);
    EXPECT_EQ(selected(), 10);

    // REPEAT (24) under M98 (23) is not in use and holds no integer: finished unchecked.
    update("State = 1, Value_1 = 'abc', Image = 1", 24);
    tree::SetStateIndex(node(24), 1);
    select(23);
    form->btnNextClick(nullptr);
    EXPECT_EQ(selected(), 25);
    EXPECT_EQ(row(24, "Image"), "2");

    // The last line: Next disables itself until an edit.
    select(29);
    form->btnNextClick(form->btnNext);
    EXPECT_EQ(selected(), 29);
    EXPECT_EQ(row(29, "Image"), "2");
    EXPECT_FALSE(form->btnNext->isEnabled());
    retype("4");
    EXPECT_TRUE(form->btnNext->isEnabled());

    // A bad value keeps the line. OFFSET (15) checks an integer (a negative one, a fraction and
    // a word fail alike), G04 (11) a real; each refusal beeps and says so.
    const std::pair<int, const char*> cases[] = {{15, ""}, {15, "-5"}, {11, "x"}};
    for (const auto& [line, text] : cases) {
        select(line);
        retype(text);
        form->FStatusMessage.clear();
        const int beeps = cell.ui.beeps();
        form->btnNextClick(form->btnNext);
        EXPECT_EQ(selected(), line) << text;
        EXPECT_EQ(form->FStatusMessage, "Code)") << text;
        EXPECT_EQ(cell.ui.beeps(), beeps + 1) << text;
    }
    // A value type above 9999 passes an empty box, and hands its box the next slot's type.
    EXPECT_TRUE(validate("", 10000));
    exec("update Syntax set Value_Type_1 = 10000, Value_Type_2 = 1002 where Code = 'OFFSET'");
    select(15);
    retype("abc");
    form->btnNextClick(form->btnNext);
    EXPECT_EQ(selected(), 15);
}

TEST_F(NavigationTest, ScriptViewShowsJoinedLineOnceAndClickMovesByDifference) {
    update("Value_3 = '1'", 16); // G00 (16) goes on with G65 (17): 15 to 17 are one chain
    update("State = 1", 24);     // REPEAT (24) is not in use
    select(16);
    form->pageScript->setCurrentWidget(form->tabScript);
    const auto line = [&](int i) { return form->lstScript->item(i)->text().toStdString(); };
    ASSERT_EQ(form->lstScript->count(), 30);
    EXPECT_EQ(line(15), row(15, "Script_Line"));
    EXPECT_EQ(line(16), "");
    EXPECT_EQ(form->lstScript->currentRow(), 16);
    // Sub-items stand on their own lines: two blanks before the mask's own.
    EXPECT_EQ(line(9), "G92 X+10.000 Y+5.000");
    EXPECT_EQ(line(10), "   U+0.500 V-0.500");
    EXPECT_EQ(line(24), "");
    EXPECT_EQ(line(28), "   (CHECK WIRE)");

    form->lstScript->setCurrentRow(20); // the operator's click
    EXPECT_EQ(selected(), 20);
    form->FLastScriptIndex = 18;
    form->lstScript->setCurrentRow(21);
    EXPECT_EQ(selected(), 23); // three lines on from 20
    EXPECT_EQ(form->lstScript->currentRow(), 23);
}

TEST_F(NavigationTest, IncludedFileIsTakenCopiedChosenOrWaitedFor) {
    testsupport::writeFile(input.file("SUB.NC"), "source");
    testsupport::writeFile(local.file("T.NC"), "%");
    includeLine(old.file("T.NC")); // the target exists: taken without a copy
    EXPECT_TRUE(validate("SUB.NC"));

    // Only the source: copied; a name inside a listed one is not added again.
    form->FFileList = "BA.NC";
    includeLine(old.file("A.NC"));
    EXPECT_TRUE(validate("SUB.NC"));
    EXPECT_EQ(testsupport::readFile(local.file("A.NC")), "source");

    // CheckOnly answers about the source alone (the target exists) and changes nothing.
    EXPECT_FALSE(validate("NONE.NC", 6001, true));
    EXPECT_TRUE(validate("SUB.NC", 6001, true));
    EXPECT_EQ(cell.platform.copies.size(), 1u); // A.NC's alone

    // Nothing to copy from: fails after about five seconds of the fake clock.
    includeLine(old.file("D.NC"));
    const auto clock = cell.platform.clock;
    EXPECT_FALSE(validate("NONE.NC"));
    EXPECT_EQ(cell.platform.clock - clock, 101u * 50u);

    // Source and previous file: the operator picks the previous one through the Ui seam.
    testsupport::writeFile(old.file("P.NC"), "previous");
    cell.ui.onModal = [this](QWidget* shown) {
        auto* dialog = qobject_cast<TdlgFileSource*>(shown);
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->Item(0).toStdString(), input.file("SUB.NC"));
        EXPECT_EQ(dialog->Item(1).toStdString(), old.file("P.NC"));
        dialog->SetItemIndex(1);
    };
    includeLine(old.file("P.NC"));
    EXPECT_TRUE(validate("SUB.NC"));
    EXPECT_EQ(testsupport::readFile(local.file("P.NC")), "previous");
    EXPECT_EQ(form->FFileList, "BA.NC|P.NC"); // neither A.NC nor the failed D.NC added
    // The first item kept: the source is copied and the row forgets the previous file.
    cell.ui.onModal = nullptr;
    std::filesystem::remove(local.file("P.NC"));
    EXPECT_TRUE(validate("SUB.NC"));
    EXPECT_EQ(testsupport::readFile(local.file("P.NC")), "source");
    EXPECT_EQ(row(6, "Path"), "");
}

} // namespace
