// Skipping lines and workpieces, and pasting a line's values, on the demo job of pallet 7.
#include "JobFixture.h"

#include <QPushButton>

namespace {

class SkipPasteTest : public jobtest::JobFixture {
protected:
    void SetUp() override {
        JobFixture::SetUp();
        TJobWizardInfo info = form->WizardInfo();
        info.LocalDirectory = cell.dir();
        info.InputDirectory = cell.dir();
        info.AllowSkip = true;
        info.AllowSkipDown = true;
        ASSERT_TRUE(form->OpenJob(info));
    }
    // The operator presses btnSkip on a line: down when it is up, up when it is down.
    void pressSkip(int line) {
        select(line);
        form->btnSkip->click();
    }
    int image(int line) { return tree::ImageIndex(node(line)); }
};

TEST_F(SkipPasteTest, SkipMarksLineOrSectionAndTheWorkpiecesSepLine) {
    // A skipped line opens its section again and moves on without a check.
    pressSkip(9);
    EXPECT_EQ(image(9), 3);
    EXPECT_EQ(image(7), 1);
    EXPECT_EQ(selected(), 11); // past its collapsed sub-item

    // With automatic points, the n-th Header row after the Header's own is workpiece n's "SEP"
    // line: it goes with the section, and comes back with it.
    exec("update TemplateName set [Auto Points] = 1 where Template_ID = 1");
    exec("update Jobs set Script_Line = 'sep auto' where Line_Number = 2");
    DM().PositionTemplate(1);
    pressSkip(13); // Workpiece2
    EXPECT_EQ(row(13, "Image"), "3");
    EXPECT_EQ(image(2), 3);
    EXPECT_EQ(selected(), 19); // past the collapsed section, no check
    pressSkip(13);             // down already: raises it
    EXPECT_EQ(row(13, "Image"), "1");
    EXPECT_EQ(row(2, "Image"), "1");
    // Workpiece3's place holds no "SEP" line: the section alone.
    pressSkip(19);
    EXPECT_EQ(row(19, "Image"), "3");
    EXPECT_EQ(row(3, "Image"), "1");

    // Unskip changes nothing; the button only raises btnSkip.
    select(19);
    form->btnUnskip->click();
    EXPECT_EQ(row(19, "Image"), "3");
    EXPECT_FALSE(form->btnSkip->isChecked());
}

TEST_F(SkipPasteTest, SkipDownStopsBeforeTheFooterAndCopyPasteKeepsTheTargetsState) {
    select(7);
    form->btnSkipDown->click();
    for (int line : {7, 13, 19})
        EXPECT_EQ(row(line, "Image"), "3") << line;
    EXPECT_NE(row(25, "Image"), "3");
    EXPECT_EQ(selected(), 25);
    EXPECT_FALSE(form->btnCopy->isEnabled()); // of the sections only workpieces are copied

    // Line 9 (G92, values 10 and 5) onto line 21 (G92 with the taper axes).
    exec("update Jobs set State = 2, Path = 'kept' where Line_Number = 21");
    select(9);
    form->btnCopyClick();
    select(21);
    ASSERT_TRUE(form->btnPaste->isEnabled());
    const std::string image21 = row(21, "Image");
    form->btnPaste->click();
    for (const char* column :
         {"Code", "Syntax_Item", "Script_Line", "Value_1", "Value_2", "Value_3", "Value_4"})
        EXPECT_EQ(row(21, column), row(9, column)) << column;
    EXPECT_EQ(row(21, "Image"), image21);
    EXPECT_EQ(row(21, "State"), "2");
    EXPECT_EQ(row(21, "Path"), "kept");
    EXPECT_EQ(selected(), 21);
    // Another command cannot take the copy.
    select(23);
    EXPECT_FALSE(form->btnPaste->isEnabled());
    // A copied workpiece meets the workpiece list, which has no reader while it is empty.
    form->FCopiedNode = node(7);
    EXPECT_THROW(select(13), std::out_of_range);
}

} // namespace
