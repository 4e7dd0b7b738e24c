// The editor's clipboard: copy, cut, paste and delete, with their journal rows.
#include "TemplateFixture.h"

namespace {
using testsupport::TemplateTest;
using ClipboardTest = TemplateTest;

std::vector<std::string> codes(const std::vector<CommandSetupPtr>& entries) {
    std::vector<std::string> out;
    for (const auto& e : entries)
        out.push_back(e ? e->Code : "(none)");
    return out;
}

std::vector<std::string> children(QTreeWidgetItem* section) {
    std::vector<std::string> out;
    for (int i = 0; i < section->childCount(); ++i)
        out.push_back(tree::NodeText(section->child(i)).toStdString());
    return out;
}
} // namespace

TEST_F(ClipboardTest, PastedCommandsAreClonesAndCutKeepsTheObjectAlive) {
    open();
    TCommandSetup* var = tree::NodeObject(tree::FindNodeByIndex(tv(), 5));
    var->FileFilter = "All Files (*.*)|*.*";
    selectAt(5);
    dlg().btnCopyClick();
    ASSERT_EQ(dlg().Clipboard().size(), 1u);
    EXPECT_EQ(dlg().Clipboard()[0].get(), var); // the node's own object, not a copy

    selectAt(2); // onto G90: behind it, journalled one place before its final index
    dlg().btnPasteClick();
    EXPECT_EQ(selectedIndex(), 3);
    const TCommandSetup* clone = tree::NodeObject(tree::Selected(tv()));
    ASSERT_NE(clone, var);
    EXPECT_EQ(clone->Value_2, "0.125");
    EXPECT_EQ(clone->FileFilter, ""); // the plug-in's filter is not cloned
    EXPECT_EQ(tree::ImageIndex(tree::Selected(tv())), tree::DefaultImageIndex);

    selectAt(10); // G92 with UV: cut, then paste onto the Footer's top with no warning
    dlg().btnCutClick();
    EXPECT_EQ(dlg().Clipboard()[0]->Value_1, "10");
    selectAt(24);
    dlg().btnPasteClick();
    EXPECT_EQ(children(tree::FindNodeByIndex(tv(), 24)),
              (std::vector<std::string>{"G92", "FLUSH", "ACK", "G00"}));
    EXPECT_EQ(selectedText(), "Footer"); // no section after the Footer
    EXPECT_TRUE(cell.ui.messages().empty());
    EXPECT_EQ(journal(1),
              (std::vector<std::string>{"2|0|2|ADD|VAR|1", "2|0|10|DEL||2", "2|0|26|ADD|G92|1"}));
}

TEST_F(ClipboardTest, SectionPasteWarnsReplacesTheCommandsAndMovesOn) {
    open();
    selectAt(7); // the first workpiece; its sub-item UV is passed over
    dlg().btnCopyClick();
    EXPECT_EQ(codes(dlg().Clipboard()), (std::vector<std::string>{"PIECE", "G92", "G04", "M98"}));

    selectAt(13);
    const auto before = outline(tv());
    cell.ui.messageAnswers = {common::ModalResult::Cancel};
    dlg().btnPasteClick();
    EXPECT_EQ(outline(tv()), before);
    ASSERT_EQ(cell.ui.messages(), std::vector<std::string>{
                                      "The existing commands for this workpiece will be deleted."});
    EXPECT_EQ(cell.ui.calls[1].kind, common::MessageKind::Warning);
    EXPECT_EQ(cell.ui.calls[1].buttons, common::MessageButtons::OkCancel);

    cell.ui.messageAnswers = {common::ModalResult::Ok, common::ModalResult::Ok,
                              common::ModalResult::Ok};
    dlg().btnPasteClick();
    EXPECT_EQ(children(tree::FindNodeByIndex(tv(), 13)),
              (std::vector<std::string>{"PIECE", "G92", "G04", "M98"}));
    EXPECT_EQ(selectedText(), "Workpiece3"); // so that the next paste fills the next workpiece
    EXPECT_EQ(journal(1),
              (std::vector<std::string>{"2|0|14|DEL||1", "2|0|14|DEL||1", "2|0|14|DEL||1",
                                        "2|0|14|DEL||2", "2|0|15|ADD|M98|1", "2|0|15|ADD|G04|1",
                                        "2|0|15|ADD|G92|1", "2|0|15|ADD|PIECE|1"}));

    dlg().btnPasteClick(); // Workpiece3, then the Footer: it pastes there and stays
    dlg().btnPasteClick();
    EXPECT_EQ(selectedText(), "Footer");
    EXPECT_EQ(children(tree::Selected(tv())),
              (std::vector<std::string>{"PIECE", "G92", "G04", "M98"}));
    EXPECT_EQ(cell.ui.messages().size(), 4u);
}

TEST_F(ClipboardTest, ClipboardOutlivesAnOpeningAndEmptySectionsCopyAsEmptyEntries) {
    open();
    selectAt(1);
    dlg().btnCopyClick();
    exec("insert into TemplateName values(2, 'FX', 'New', 1, False)");
    dlg().LoadTemplate(2, 2);
    selectAt(0);
    dlg().btnPasteClick();
    EXPECT_EQ(children(tree::FindNodeByIndex(tv(), 0)), std::vector<std::string>{"COMMENT"});
    EXPECT_TRUE(journal(2).empty()); // first edit of a new template

    selectAt(1); // deleting the only command leaves its section
    dlg().btnDeleteClick();
    EXPECT_EQ(outline(tv()),
              (std::vector<std::string>{"Header 0", "Workpiece 1 0", "Workpiece 2 0", "Footer 0"}));

    // An empty section copies the sections after it, as entries without objects.
    selectAt(1);
    dlg().btnCopyClick();
    EXPECT_EQ(codes(dlg().Clipboard()), (std::vector<std::string>{"(none)", "(none)"}));
    selectAt(0);
    EXPECT_THROW(dlg().btnPasteClick(), std::runtime_error);
}
