// OK raises the version and saves, Cancel asks, and the close question chooses between them.
#include "TemplateFixture.h"

namespace {
using testsupport::TemplateTest;
using JournalTest = TemplateTest;
} // namespace

TEST_F(JournalTest, OkRaisesTheVersionByOneAndPostsTheName) {
    const auto rows = templateRows(1);
    open();
    dlg().dbeTemplateName->setText("Renamed plate");
    dlg().btnOKClick(); // no edit at all: still one version up, and no journal
    EXPECT_EQ(templateVersion(1), "2");
    EXPECT_EQ(select("select Name from TemplateName where Template_ID = 1"),
              std::vector<std::string>{"Renamed plate"});
    EXPECT_TRUE(journal(1).empty());
    EXPECT_EQ(templateRows(1), rows);
}

TEST_F(JournalTest, CancelAsksThenFailsOnTheTemplateColumnAndKeepsTheRows) {
    open();
    dlg().btnCancelClick(); // nothing changed: no question
    EXPECT_TRUE(cell.ui.calls.empty());
    selectAt(1);
    dlg().btnDeleteClick();
    cell.ui.messageAnswers = {common::ModalResult::No};
    dlg().SetModalResult(common::ModalResult::Cancel);
    dlg().btnCancelClick();
    EXPECT_EQ(dlg().ModalResult(), common::ModalResult::None); // the dialog stays open
    EXPECT_EQ(cell.ui.calls.at(1).text, "Are you sure you want to cancel all changes?");
    EXPECT_EQ(cell.ui.calls.at(1).buttons, common::MessageButtons::YesNo);

    cell.ui.messageAnswers = {common::ModalResult::Yes};
    try {
        dlg().btnCancelClick();
        ADD_FAILURE() << "the lookup of the template column did not fail";
    } catch (const store::StoreError& e) {
        EXPECT_NE(std::string(e.what()).find("Template"), std::string::npos) << e.what();
    }
    EXPECT_FALSE(dlg().Modified());
    EXPECT_EQ(journal(1), std::vector<std::string>{"2|0|1|DEL||1"});

    // From the button: the error is shown and the dialog still closes as cancelled.
    open();
    selectAt(3);
    dlg().btnDeleteClick();
    dlg().show();
    cell.ui.calls.clear();
    cell.ui.messageAnswers = {common::ModalResult::Yes};
    dlg().btnCancel->click();
    EXPECT_FALSE(dlg().isVisible());
    EXPECT_EQ(dlg().result(), static_cast<int>(common::ModalResult::Cancel));
    ASSERT_EQ(cell.ui.messages().size(), 2u);
    EXPECT_EQ(cell.ui.calls.back().kind, common::MessageKind::Error);
    EXPECT_EQ(journal(1).size(), 2u);
}

TEST_F(JournalTest, CloseQuestionSavesOrAbandonsAndAbandonedRowsGoLiveLater) {
    open();
    EXPECT_TRUE(dlg().FormCloseQuery());
    EXPECT_TRUE(cell.ui.calls.empty());
    selectAt(1);
    dlg().btnDeleteClick();

    cell.ui.messageAnswers = {common::ModalResult::Cancel};
    EXPECT_FALSE(dlg().FormCloseQuery());
    EXPECT_TRUE(dlg().Modified());
    EXPECT_EQ(cell.ui.messages(),
              std::vector<std::string>{"Changes have not been saved.\r\nSave them now?"});
    EXPECT_EQ(cell.ui.calls.at(1).buttons, common::MessageButtons::YesNoCancel);

    cell.ui.messageAnswers = {common::ModalResult::No};
    EXPECT_TRUE(dlg().FormCloseQuery()); // abandoned: the cancel routine neither asks nor deletes
    EXPECT_EQ(templateVersion(1), "1");
    EXPECT_EQ(journal(1).size(), 1u);

    // The next opening works under the same version and its OK makes both rows live.
    open();
    EXPECT_EQ(dlg().Version(), 2);
    selectAt(1);
    dlg().btnDeleteClick();
    cell.ui.messageAnswers = {common::ModalResult::Yes};
    dlg().show();
    dlg().close(); // the close box: saved by Yes, yet the result is Cancel
    EXPECT_FALSE(dlg().isVisible());
    EXPECT_EQ(dlg().result(), static_cast<int>(common::ModalResult::Cancel));
    EXPECT_EQ(templateVersion(1), "2");
    EXPECT_EQ(journal(1), (std::vector<std::string>{"2|0|1|DEL||1", "2|0|1|DEL||1"}));
    EXPECT_EQ(templateRows(1).size(), 29u);
}
