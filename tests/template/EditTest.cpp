// The editor's add and move handlers, their journal rows, the button states and the search.
#include "TemplateFixture.h"

#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QTimer>

namespace {

using testsupport::TemplateTest;

class EditTest : public TemplateTest {
protected:
    // The editor shown with every node visible, for drops at a node's place.
    void showExpanded() {
        open();
        dlg().resize(900, 1400);
        dlg().show();
        tree::ExpandAll(tv());
    }
    QPoint point(int i) { return tv()->visualItemRect(tree::FindNodeByIndex(tv(), i)).center(); }
};

} // namespace

TEST_F(EditTest, ButtonStatesFollowTheSelectionTheClipboardAndTheName) {
    open();
    EXPECT_EQ(buttons(), "10000001"); // nothing selected; a name is there
    const struct {
        int node;
        const char* states;
    } cases[] = {
        {0, "10001001"},  // Header: add, copy
        {1, "10111011"},  // first command of the Header: no way up
        {8, "11111011"},  // first command of a workpiece: up into the previous section
        {10, "00000001"}, // a sub-item
        {29, "11011011"}, // last command of the Footer: no way down
    };
    for (const auto& c : cases) {
        selectAt(c.node);
        EXPECT_EQ(buttons(), c.states) << c.node;
    }
    selectAt(1);
    dlg().btnCopyClick(); // one command: paste onto sections and commands
    EXPECT_EQ(buttons(), "10111111");
    selectAt(0);
    EXPECT_EQ(buttons(), "10001101");
    dlg().btnCopyClick(); // a section: paste onto sections only
    selectAt(1);
    EXPECT_EQ(buttons(), "10111011");
    dlg().dbeTemplateName->setText("");
    EXPECT_EQ(buttons(), "10111010");
}

TEST_F(EditTest, AddPlacesTheCommandAndJournalsItsFinalIndexWithASequence) {
    open();
    selectAt(0);
    chooseCommand("G04");
    dlg().btnAddClick(); // on a section: its first command
    EXPECT_EQ(selectedIndex(), 1);
    EXPECT_EQ(tree::NodeObject(tree::Selected(tv()))->Syntax, -1);
    EXPECT_TRUE(dlg().Modified());

    selectAt(10); // G92 with its UV: the new command lands behind both
    chooseCommand("M98");
    dlg().dbgCommandsDblClick();
    EXPECT_EQ(journal(1), (std::vector<std::string>{"2|1|1|ADD|G04|1", "2|2|12|ADD|M98|1"}));

    // A double click on a sub-item adds beside it, on its level; with nothing selected it fails.
    selectAt(11);
    dlg().btnAddClick();
    EXPECT_EQ(tree::NodeLevel(tree::Selected(tv())), 2);
    tree::Select(tv(), nullptr);
    EXPECT_THROW(dlg().btnAddClick(), std::runtime_error);

    // A template in its first edit writes no journal.
    exec("insert into TemplateName values(2, 'FX', 'New', 1, False)");
    dlg().LoadTemplate(1, 2);
    dlg().btnAddClick();
    EXPECT_EQ(selectedText(), "M98");
    EXPECT_TRUE(journal(2).empty());
}

TEST_F(EditTest, MovesCrossSectionBordersAndOnlyPressedMovesAreJournalled) {
    open();
    selectAt(8); // PIECE, first of the first workpiece: up to the end of the Header
    dlg().btnUpClick();
    EXPECT_EQ(tree::NodeText(tree::Selected(tv())->parent()), "Header");
    selectAt(9); // G92 with UV: past G04, then to the end, then to the next section's top
    for (int i = 0; i < 3; ++i)
        dlg().btnDownClick(dlg().btnDown);
    EXPECT_EQ(tree::NodeText(tree::Selected(tv())->parent()), "Workpiece2");
    dlg().btnUpClick(); // and back to the end of the previous one
    EXPECT_EQ(journal(1),
              (std::vector<std::string>{"2|0|8|MOV|7|1", "2|0|9|MOV|10|2", "2|0|10|MOV|11|2",
                                        "2|0|11|MOV|12|2", "2|0|12|MOV|11|2"}));

    open(); // without a sender: the move only
    selectAt(2);
    dlg().btnDownClick(nullptr);
    EXPECT_EQ(selectedIndex(), 3);
    EXPECT_FALSE(dlg().Modified());
    EXPECT_EQ(journal(1).size(), 5u);
}

TEST_F(EditTest, DropsFromTheListAddAndDropsOfNodesMove) {
    showExpanded();
    const QPoint nowhere(5, tv()->viewport()->height() - 2);
    ASSERT_EQ(tv()->itemAt(nowhere), nullptr);

    EXPECT_TRUE(dlg().tvwTemplateDragOver(dlg().dbgCommands, point(3)));
    EXPECT_FALSE(dlg().tvwTemplateDragOver(dlg().dbgCommands, nowhere));
    selectAt(0);
    EXPECT_FALSE(dlg().tvwTemplateDragOver(tv(), point(3)));
    selectAt(2);
    EXPECT_TRUE(dlg().tvwTemplateDragOver(tv(), nowhere));

    // From the list onto G54 (3): added behind it, the selection stays on G90.
    chooseCommand("ACK");
    QTreeWidgetItem* g90 = tree::Selected(tv());
    dlg().tvwTemplateDragDrop(tv(), dlg().dbgCommands, point(3));
    EXPECT_EQ(tree::Selected(tv()), g90);
    EXPECT_EQ(tree::NodeText(tree::FindNodeByIndex(tv(), 4)), "ACK");

    // G90 (2) onto the first workpiece (8): its top; onto G04 (12): behind it.
    dlg().tvwTemplateDragDrop(tv(), tv(), point(8));
    EXPECT_EQ(tree::AbsoluteIndex(g90), 8);
    dlg().tvwTemplateDragDrop(nullptr, tv(), point(12));
    EXPECT_EQ(tree::AbsoluteIndex(g90), 12);
    // Table order: the unnumbered rows of a version come before the numbered ones.
    EXPECT_EQ(journal(1), (std::vector<std::string>{"2|0|2|MOV|8|1", "2|1|4|ADD|ACK|1"}));
    dlg().hide();
}

TEST_F(EditTest, RefusesDropsIntoTheNodesOwnSubtreeAndFromOtherSources) {
    showExpanded();
    const auto before = outline(tv());

    // G92 (9) onto its own UV (10): nothing moves, nothing is journalled.
    selectAt(9);
    EXPECT_FALSE(dlg().tvwTemplateDragOver(tv(), point(10)));
    dlg().tvwTemplateDragDrop(tv(), tv(), point(10));

    // A text from another program: no source widget. Neither a move nor a journal row.
    selectAt(2);
    QMimeData text;
    text.setText("G90");
    QDropEvent drop(QPointF(point(12)), Qt::CopyAction | Qt::MoveAction, &text, Qt::LeftButton,
                    Qt::NoModifier);
    QCoreApplication::sendEvent(tv()->viewport(), &drop);
    // Widgets of this form other than the tree and the list, and any other grid, are no source.
    QLabel stranger;
    TDBGrid otherGrid;
    for (QObject* source : {static_cast<QObject*>(&stranger), static_cast<QObject*>(&otherGrid),
                            static_cast<QObject*>(dlg().btnAdd)}) {
        EXPECT_FALSE(dlg().tvwTemplateDragOver(source, point(12)));
        dlg().tvwTemplateDragDrop(tv(), source, point(12));
    }
    EXPECT_EQ(outline(tv()), before);
    EXPECT_EQ(tree::AbsoluteIndex(tree::Selected(tv())), 2);
    EXPECT_TRUE(journal(1).empty());
    EXPECT_FALSE(dlg().Modified());
    dlg().hide();
}

TEST_F(EditTest, ControlsCarryTheirNamesAndStayReadableAtTheSmallestSize) {
    for (const char* name :
         {"dbeTemplateName", "btnCopyTemplate", "txtPieceCount", "pnlMachineType", "tvwTemplate",
          "dbgCommands", "dbmDesc", "btnAdd", "btnUp", "btnDown", "btnExpand", "btnCollapse",
          "btnCut", "btnCopy", "btnPaste", "btnDelete", "btnOK", "btnCancel", "pnlPlugins"})
        EXPECT_NE(dlg().findChild<QWidget*>(name), nullptr) << name;
    EXPECT_EQ(dlg().findChild<QWidget*>("btnPaste"), dlg().btnPaste);
    EXPECT_EQ(dlg().findChild<QTimer*>("Timer"), dlg().Timer);
    // The grid's header shows captions, not column names.
    EXPECT_EQ(dlg().dbgCommands->horizontalHeaderItem(1)->text(), "Description");

    open();
    dlg().show();
    dlg().resize(dlg().minimumSizeHint());
    QCoreApplication::processEvents();
    const int letter = dlg().dbeTemplateName->fontMetrics().averageCharWidth();
    EXPECT_GE(dlg().dbeTemplateName->width(), 20 * letter);
    dlg().hide();
}

TEST_F(EditTest, IncrementalSearchCollectsKeysUntilTheTimerEndsIt) {
    open();
    for (QChar key : {QChar('g'), QChar('-'), QChar('0'), QChar(' '), QChar('4')})
        dlg().dbgCommandsKeyPress(key);
    EXPECT_EQ(DM().tableCommands.fieldByName("Code").asString(), "G04");
    EXPECT_EQ(dlg().dbgCommands->currentRow(), 5); // the grid follows the cursor
    dlg().TimerTimer();                            // the search starts again
    dlg().dbgCommandsKeyPress('m');
    EXPECT_EQ(DM().tableCommands.fieldByName("Code").asString(), "M98");
}
