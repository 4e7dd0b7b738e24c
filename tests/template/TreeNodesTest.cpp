// Tree helpers: the absolute index, selection on delete, move and collapse, and the focus rule.
#include "TemplateFixture.h"

#include <functional>
#include <memory>

namespace {

// A plain recursive pre-order walk, to check the index against.
std::vector<QTreeWidgetItem*> preorder(QTreeWidget* tree) {
    std::vector<QTreeWidgetItem*> out;
    std::function<void(QTreeWidgetItem*)> walk = [&](QTreeWidgetItem* parent) {
        for (int i = 0; i < parent->childCount(); ++i) {
            out.push_back(parent->child(i));
            walk(parent->child(i));
        }
    };
    walk(tree->invisibleRootItem());
    return out;
}

void expectIndexMatchesWalk(QTreeWidget* tree) {
    const auto walk = preorder(tree);
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

TEST_F(TemplateTest, AbsoluteIndexFollowsEveryStructuralChange) {
    auto view = std::make_unique<tree::TTreeView>();
    QTreeWidget* t = view.get();
    EXPECT_EQ(tree::NodeCount(t), 0);
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
    ASSERT_EQ(changes.count, 1);
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
    EXPECT_EQ(tree::AbsoluteIndex(g92), 28);
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
