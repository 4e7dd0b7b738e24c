// The template tree and its rows: load, the skeleton of an empty template, save and reload; and
// the tree helpers: the absolute index, selection on delete, move and collapse, the focus rule.
#include "TemplateFixture.h"

#include <QTreeWidgetItemIterator>

#include <memory>

namespace {

// Checks the index against Qt's own pre-order walk.
void expectIndexMatchesWalk(QTreeWidget* tree) {
    std::vector<QTreeWidgetItem*> walk;
    for (QTreeWidgetItemIterator it(tree); *it; ++it)
        walk.push_back(*it);
    ASSERT_EQ(tree::NodeCount(tree), static_cast<int>(walk.size()));
    for (std::size_t i = 0; i < walk.size(); ++i) {
        EXPECT_EQ(tree::FindNodeByIndex(tree, static_cast<int>(i)), walk[i]);
        EXPECT_EQ(tree::AbsoluteIndex(walk[i]), static_cast<int>(i));
        EXPECT_EQ(tree::NextNode(walk[i]), i + 1 < walk.size() ? walk[i + 1] : nullptr);
    }
    EXPECT_EQ(tree::FindNodeByIndex(tree, -1), nullptr);
    EXPECT_EQ(tree::FindNodeByIndex(tree, static_cast<int>(walk.size())), nullptr);
}

// Counts the tree's change signals.
struct ChangeCounter {
    explicit ChangeCounter(QTreeWidget* tree)
        : connection(
              QObject::connect(tree, &QTreeWidget::currentItemChanged, [this] { ++count; })) {}
    ~ChangeCounter() { QObject::disconnect(connection); }
    QMetaObject::Connection connection;
    int count = 0;
};

} // namespace

using testsupport::TemplateTest;

// Node i is row Item i (SaveWritesTheTreeBack reads them back unchanged).
TEST_F(TemplateTest, LoadsDemoTemplateWithImagesFromSyntaxAndLock) {
    dlg().LoadTemplate(3, 1);
    EXPECT_EQ(dlg().txtPieceCount->text(), "3");
    EXPECT_EQ(dlg().TemplateID(), 1);
    EXPECT_EQ(dlg().Version(), 2); // stored Version 1, plus one
    const auto out = outline(tv());
    ASSERT_EQ(out.size(), 30u);
    // A preset, no syntax chosen, locked; sections plain; sub-items under their command.
    EXPECT_EQ(
        std::vector(out.begin(), out.begin() + 5),
        (std::vector<std::string>{"Header 2", "  COMMENT 3", "  G90 3", "  G54 2", "  WIRE 4"}));
    EXPECT_EQ(out[7], "Workpiece1 2");
    EXPECT_EQ(out[10], "    UV 3");
    EXPECT_EQ(tree::NodeObject(tree::FindNodeByIndex(tv(), 1))->Value_1, "DEMO WIRE-CUT PLATE");
    EXPECT_EQ(tree::NodeObject(tree::FindNodeByIndex(tv(), 26))->Special, 1); // FLUSH
}

TEST_F(TemplateTest, EmptyTemplateOpensAsSkeletonWhoseNamesLoseTheBlankAfterSaveAndReload) {
    exec("insert into TemplateName values(2, 'FX-200', 'Second', 1, False)");
    dlg().LoadTemplate(2, 2);
    EXPECT_EQ(outline(tv()),
              (std::vector<std::string>{"Header 0", "Workpiece 1 0", "Workpiece 2 0", "Footer 0"}));
    EXPECT_EQ(tree::Selected(tv()), tree::FindNodeByIndex(tv(), 0));

    dlg().SaveTemplateTree();
    EXPECT_EQ(select("select Code, Node_Level, Syntax, Locked from TemplateData where "
                     "Template_ID = 2 order by Item"),
              (std::vector<std::string>{"HDR|0|~|~", "WRK|0|~|~", "WRK|0|~|~", "FTR|0|~|~"}));
    dlg().LoadTemplate(5, 2); // sections are not added to match the count
    EXPECT_EQ(outline(tv()),
              (std::vector<std::string>{"Header 2", "Workpiece1 2", "Workpiece2 2", "Footer 2"}));
}

TEST_F(TemplateTest, SaveWritesTheTreeBackRowForRowAndRenumbersItems) {
    const auto before = templateRows(1);
    dlg().LoadTemplate(3, 1);
    dlg().SaveTemplateTree();
    EXPECT_EQ(templateRows(1), before);

    // Move WIRE (4) to the end of the Footer, delete G04 (11): Items close up, 0..n-1 again.
    tree::MoveToLastChild(tree::FindNodeByIndex(tv(), 4), tree::FindNodeByIndex(tv(), 25));
    tree::DeleteNode(tree::FindNodeByIndex(tv(), 10)); // G04, now one place up
    dlg().SaveTemplateTree();
    const auto after = select("select Item, Node_Level, Code from TemplateData where "
                              "Template_ID = 1 order by Item");
    ASSERT_EQ(after.size(), before.size() - 1);
    for (std::size_t i = 0; i < after.size(); ++i)
        EXPECT_EQ(after[i].substr(0, after[i].find('|')), std::to_string(i));
    EXPECT_EQ(templateRows(1).back(), "1|28|1|WIRE|0||||||||1|0");
}

TEST_F(TemplateTest, OddRowsLoadAsTheTreeAllowsAndSaveBackFlattened) {
    exec("insert into TemplateName values(3, 'FX', 'Odd', 4, False)");
    exec("insert into TemplateData (Template_ID, Item, Node_Level, Code, Syntax, Locked, Special) "
         "values (3, 0, 0, 'HDR', NULL, NULL, NULL), (3, 1, 1, 'G90', NULL, 0, 0),"
         " (3, 2, 3, 'UV', 0, 0, 0), (3, 3, 0, 'WRK', NULL, NULL, NULL),"
         " (3, 4, 2, 'ARGC', 1, 1, 7), (3, 5, 0, 'XYZ', NULL, NULL, NULL)");
    dlg().LoadTemplate(1, 3);
    EXPECT_EQ(dlg().Version(), 5);
    // Level 3 stays under the last command; level 2 after a section joins the Header's command;
    // an unknown section code is a workpiece, numbered by the sections before it.
    EXPECT_EQ(outline(tv()),
              (std::vector<std::string>{"Header 2", "  G90 2", "    UV 3", "    ARGC 4",
                                        "Workpiece1 2", "Workpiece2 2"}));
    EXPECT_EQ(tree::NodeObject(tree::FindNodeByIndex(tv(), 1))->Syntax, -1); // null syntax
    EXPECT_EQ(tree::NodeObject(tree::FindNodeByIndex(tv(), 3))->Special, 7);

    dlg().SaveTemplateTree();
    EXPECT_EQ(select("select Item, Node_Level, Code, Syntax from TemplateData where "
                     "Template_ID = 3 order by Item"),
              (std::vector<std::string>{"0|0|HDR|~", "1|1|G90|-1", "2|2|UV|0", "3|2|ARGC|1",
                                        "4|0|WRK|~", "5|0|WRK|~"}));

    // Without a Header row the first workpiece counts from 0.
    exec("delete from TemplateData where Template_ID = 3 and Item < 4");
    dlg().LoadTemplateTree(tv(), 3);
    EXPECT_EQ(outline(tv()), (std::vector<std::string>{"Workpiece0 2", "Workpiece1 2"}));
}

TEST_F(TemplateTest, SaveTakesTheIdFromTheCurrentNameRowAndFailsWhole) {
    exec("insert into TemplateName values(2, 'FX', 'Other', 1, False)");
    const auto demo = templateRows(1);
    dlg().LoadTemplate(3, 1);

    // A failing insert in the middle: the old rows stay, nothing of the new ones is left.
    cell.run("Quorvel.db", "create trigger refuse before insert on TemplateData when new.Item = 20 "
                           "begin select raise(abort, 'refused'); end;");
    tree::DeleteNode(tree::FindNodeByIndex(tv(), 2));
    EXPECT_THROW(dlg().SaveTemplateTree(), store::StoreError);
    EXPECT_EQ(templateRows(1), demo);
    // So does OK: the version stays with the rows.
    EXPECT_THROW(dlg().btnOKClick(), store::StoreError);
    EXPECT_EQ(templateVersion(1), "1");
    EXPECT_EQ(templateRows(1), demo);
    cell.run("Quorvel.db", "drop trigger refuse;");

    // The rows go to the template the name table stands on, not to FTemplateID.
    DM().tableTemplateName.findKey({2});
    dlg().SaveTemplateTree();
    EXPECT_TRUE(templateRows(1).empty());
    EXPECT_EQ(templateRows(2).size(), demo.size() - 1);
    EXPECT_EQ(dlg().TemplateID(), 1);
}

TEST_F(TemplateTest, AbsoluteIndexFollowsEveryStructuralChange) {
    auto view = std::make_unique<tree::TTreeView>();
    QTreeWidget* t = view.get();
    QTreeWidgetItem* header = tree::AddRootNode(t, "Header");
    QTreeWidgetItem* wrk = tree::AddRootNode(t, "Workpiece 1");
    QTreeWidgetItem* a = tree::AddChildNode(header, "A", std::make_shared<TCommandSetup>("A"));
    tree::AddChildNode(a, "A1");
    QTreeWidgetItem* b = tree::AddChildFirst(header, "B");
    tree::InsertNodeBefore(a, "C");
    tree::AddChildNode(wrk, "D");
    expectIndexMatchesWalk(t);
    EXPECT_EQ(tree::NodeText(tree::FindNodeByIndex(t, 1)), "B");
    EXPECT_EQ(tree::AbsoluteIndex(tree::FindNodeByIndex(t, 4)->parent()), 3); // A1 under A

    t->collapseAll(); // collapsed nodes count too
    tree::MoveToFirstChild(a, wrk);
    expectIndexMatchesWalk(t);
    tree::MoveBefore(b, wrk);
    expectIndexMatchesWalk(t);
    EXPECT_EQ(b->parent(), nullptr);
    tree::DeleteNode(a);
    expectIndexMatchesWalk(t);
    tree::ClearTree(t);
    EXPECT_EQ(tree::NodeCount(t), 0);
    EXPECT_EQ(tree::AbsoluteIndex(nullptr), -1);
}

TEST_F(TemplateTest, DeleteSelectsNextSiblingElseParentElsePreviousWithOneChangeSignal) {
    dlg().LoadTemplate(3, 1);
    ChangeCounter changes(tv());
    auto at = [&](int i) { return tree::FindNodeByIndex(tv(), i); };

    selectAt(27); // ACK, with its NOTE: the next sibling G00 takes the selection
    QTreeWidgetItem* g00 = at(29);
    CommandSetupPtr held = tree::NodeSetup(at(27));
    tree::DeleteNode(at(27));
    EXPECT_EQ(tree::Selected(tv()), g00);
    EXPECT_EQ(changes.count, 2);
    EXPECT_EQ(held->Code, "ACK"); // the object outlives its node

    tree::DeleteNode(g00); // the last child: its parent
    EXPECT_EQ(tree::NodeText(tree::Selected(tv())), "Footer");
    tree::DeleteNode(tree::Selected(tv())); // the last root: the previous sibling
    EXPECT_EQ(tree::NodeText(tree::Selected(tv())), "Workpiece3");
    selectAt(10); // UV, the only child of G92
    tree::DeleteNode(at(10));
    EXPECT_EQ(tree::NodeText(tree::Selected(tv())), "G92");
    const int before = changes.count;
    tree::DeleteNode(at(1)); // not selected: the selection stays, no signal
    EXPECT_EQ(tree::NodeText(tree::Selected(tv())), "G92");
    EXPECT_EQ(changes.count, before);
}

TEST_F(TemplateTest, MovesKeepSelectionAndExpansionSilentlyAndCollapseMovesItUp) {
    dlg().LoadTemplate(3, 1);
    auto at = [&](int i) { return tree::FindNodeByIndex(tv(), i); };
    QTreeWidgetItem* g92 = at(9);
    g92->setExpanded(true);
    tree::Select(tv(), g92);
    ChangeCounter changes(tv());
    tree::MoveToLastChild(g92, at(25)); // to the end of the Footer
    EXPECT_EQ(tree::Selected(tv()), g92);
    EXPECT_TRUE(g92->isExpanded());
    EXPECT_EQ(changes.count, 0);

    tree::ExpandAll(tv());
    tree::Select(tv(), g92->child(0)); // UV: collapsing G92 moves the selection onto it
    const int before = changes.count;
    g92->setExpanded(false);
    EXPECT_EQ(tree::Selected(tv()), g92);
    EXPECT_EQ(changes.count, before);
    tree::CollapseAll(tv());
    EXPECT_EQ(tree::NodeText(tree::Selected(tv())), "Footer");
    EXPECT_EQ(changes.count, before);
    EXPECT_FALSE(g92->isExpanded());
}

TEST_F(TemplateTest, TreeViewTakesNoSelectionOnFocusAndRendersImages) {
    dlg().LoadTemplate(3, 1);
    dlg().show();
    dlg().activateWindow();
    ChangeCounter changes(tv());
    tv()->setFocus();
    QApplication::processEvents();
    EXPECT_TRUE(tv()->hasFocus());
    EXPECT_EQ(tree::Selected(tv()), nullptr);
    EXPECT_EQ(changes.count, 0);
    dlg().hide();

    auto* locked = tree::FindNodeByIndex(tv(), 4);
    EXPECT_FALSE(locked->icon(0).isNull());
    tree::SetImageIndex(locked, 1); // index 1 has no icon
    EXPECT_TRUE(locked->icon(0).isNull());
    EXPECT_EQ(tree::StateIndex(tree::FindNodeByIndex(tv(), 3)), tree::DefaultStateIndex);
}
