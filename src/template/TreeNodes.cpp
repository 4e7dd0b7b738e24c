#include "template/TreeNodes.h"

#include <QPainter>
#include <map>

#include <QDragMoveEvent>
#include <QDropEvent>
#include <QSignalBlocker>

#include <unordered_map>
#include <utility>

namespace tree {

namespace {

constexpr const char* IndexObjectName = "quorvelNodeIndex";

// The pre-order index of one tree and its image list. A child object of the tree, so it lives
// exactly as long as the tree; any structural change of the model marks it for a rebuild.
class NodeIndex : public QObject {
public:
    explicit NodeIndex(QTreeWidget* tree) : QObject(tree), tree_(tree) {
        setObjectName(IndexObjectName);
        auto* model = tree->model();
        auto stale = [this] { dirty_ = true; };
        connect(model, &QAbstractItemModel::rowsInserted, this, stale);
        connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this, stale);
        connect(model, &QAbstractItemModel::rowsRemoved, this, stale);
        connect(model, &QAbstractItemModel::rowsMoved, this, stale);
        connect(model, &QAbstractItemModel::modelReset, this, stale);
        connect(model, &QAbstractItemModel::layoutChanged, this, stale);
    }

    struct Entry {
        int absolute;
        int child; // place among its siblings
    };

    const std::vector<QTreeWidgetItem*>& nodes() {
        refresh();
        return nodes_;
    }
    const Entry* entry(const QTreeWidgetItem* node) {
        refresh();
        auto it = entries_.find(node);
        return it == entries_.end() ? nullptr : &it->second;
    }

    std::vector<QIcon> icons;
    std::vector<QIcon> stateIcons;
    std::map<std::pair<int, int>, QIcon> composed; // state icon beside image icon

private:
    void refresh() {
        if (!dirty_)
            return;
        nodes_.clear();
        entries_.clear();
        add(tree_->invisibleRootItem());
        dirty_ = false;
    }
    void add(QTreeWidgetItem* parent) {
        const int count = parent->childCount();
        for (int i = 0; i < count; ++i) {
            QTreeWidgetItem* child = parent->child(i);
            entries_.emplace(child, Entry{static_cast<int>(nodes_.size()), i});
            nodes_.push_back(child);
            add(child);
        }
    }

    QTreeWidget* tree_;
    bool dirty_ = true;
    std::vector<QTreeWidgetItem*> nodes_;
    std::unordered_map<const QTreeWidgetItem*, Entry> entries_;
};

NodeIndex& indexOf(QTreeWidget* tree) {
    auto* found = tree->findChild<QObject*>(IndexObjectName, Qt::FindDirectChildrenOnly);
    if (found)
        return *static_cast<NodeIndex*>(found);
    return *new NodeIndex(tree); // owned by the tree
}

QTreeWidgetItem* parentOrRoot(const QTreeWidgetItem* node) {
    if (node->parent())
        return node->parent();
    return node->treeWidget() ? node->treeWidget()->invisibleRootItem() : nullptr;
}

int childIndex(const QTreeWidgetItem* node) {
    if (QTreeWidget* tree = node->treeWidget()) {
        if (const auto* e = indexOf(tree).entry(node))
            return e->child;
        return -1;
    }
    return node->parent() ? node->parent()->indexOfChild(const_cast<QTreeWidgetItem*>(node)) : -1;
}

void applyIcon(QTreeWidgetItem* node) {
    QTreeWidget* tree = node->treeWidget();
    if (!tree)
        return;
    auto& index = indexOf(tree);
    const auto pick = [](const std::vector<QIcon>& icons, int at) {
        return at >= 0 && at < static_cast<int>(icons.size()) ? icons[static_cast<std::size_t>(at)]
                                                              : QIcon();
    };
    const int image = ImageIndex(node);
    if (index.stateIcons.empty()) {
        node->setIcon(0, pick(index.icons, image));
        return;
    }
    // With state images every node shows a slot for its state before its image.
    const int state = StateIndex(node);
    auto& icon = index.composed[{image, state}];
    if (icon.isNull()) {
        QPixmap pixmap(34, 16);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        pick(index.stateIcons, state).paint(&painter, 0, 0, 16, 16);
        pick(index.icons, image).paint(&painter, 18, 0, 16, 16);
        painter.end();
        icon = QIcon(pixmap);
    }
    node->setIcon(0, icon);
}

QTreeWidgetItem* newNode(const QString& text, CommandSetupPtr setup) {
    auto* node = new QTreeWidgetItem(QStringList{text});
    if (setup)
        SetNodeSetup(node, std::move(setup));
    return node;
}

bool isAncestor(const QTreeWidgetItem* ancestor, const QTreeWidgetItem* node) {
    for (const QTreeWidgetItem* p = node ? node->parent() : nullptr; p; p = p->parent())
        if (p == ancestor)
            return true;
    return false;
}

// Takes the node out and puts it back where `insert` says, keeping the expansion of its subtree
// and the tree's selection, with the tree's signals held back.
template <typename Insert> void relocate(QTreeWidgetItem* node, Insert insert) {
    QTreeWidget* tree = node->treeWidget();
    if (!tree)
        throw std::logic_error("A node outside a tree cannot be moved");
    std::vector<std::pair<QTreeWidgetItem*, bool>> expansion;
    std::function<void(QTreeWidgetItem*)> note = [&](QTreeWidgetItem* n) {
        expansion.emplace_back(n, n->isExpanded());
        for (int i = 0; i < n->childCount(); ++i)
            note(n->child(i));
    };
    note(node);
    QTreeWidgetItem* current = tree->currentItem();
    const QSignalBlocker block(tree);
    QTreeWidgetItem* from = parentOrRoot(node);
    from->takeChild(from->indexOfChild(node));
    insert();
    for (auto& [n, expanded] : expansion)
        n->setExpanded(expanded);
    tree->setCurrentItem(current);
}

} // namespace

int CommandImage(const TCommandSetup& setup) {
    if (setup.Syntax < 0)
        return ImagePlain;
    return setup.Locked ? ImageLocked : ImagePreset;
}

int NodeLevel(const QTreeWidgetItem* node) {
    int level = 0;
    for (const QTreeWidgetItem* p = node ? node->parent() : nullptr; p; p = p->parent())
        ++level;
    return level;
}

int AbsoluteIndex(const QTreeWidgetItem* node) {
    if (!node || !node->treeWidget())
        return -1;
    const auto* e = indexOf(node->treeWidget()).entry(node);
    return e ? e->absolute : -1;
}

QTreeWidgetItem* FindNodeByIndex(QTreeWidget* tree, int index) {
    const auto& nodes = indexOf(tree).nodes();
    if (index < 0 || index >= static_cast<int>(nodes.size()))
        return nullptr;
    return nodes[static_cast<std::size_t>(index)];
}

int NodeCount(QTreeWidget* tree) { return static_cast<int>(indexOf(tree).nodes().size()); }

QTreeWidgetItem* NextNode(const QTreeWidgetItem* node) {
    if (!node || !node->treeWidget())
        return nullptr;
    return FindNodeByIndex(node->treeWidget(), AbsoluteIndex(node) + 1);
}

QTreeWidgetItem* NextSibling(const QTreeWidgetItem* node) {
    QTreeWidgetItem* parent = node ? parentOrRoot(node) : nullptr;
    return parent ? parent->child(childIndex(node) + 1) : nullptr;
}

QTreeWidgetItem* PrevSibling(const QTreeWidgetItem* node) {
    QTreeWidgetItem* parent = node ? parentOrRoot(node) : nullptr;
    if (!parent)
        return nullptr;
    const int i = childIndex(node);
    return i > 0 ? parent->child(i - 1) : nullptr;
}

QString NodeText(const QTreeWidgetItem* node) { return node ? node->text(0) : QString(); }

int ImageIndex(const QTreeWidgetItem* node) {
    const QVariant v = node->data(0, ImageRole);
    return v.isValid() ? v.toInt() : DefaultImageIndex;
}

void SetImageIndex(QTreeWidgetItem* node, int index) {
    node->setData(0, ImageRole, index);
    applyIcon(node);
}

int StateIndex(const QTreeWidgetItem* node) {
    const QVariant v = node->data(0, StateRole);
    return v.isValid() ? v.toInt() : DefaultStateIndex;
}

void SetStateIndex(QTreeWidgetItem* node, int index) {
    node->setData(0, StateRole, index);
    applyIcon(node);
}

TCommandSetup* NodeObject(const QTreeWidgetItem* node) { return NodeSetup(node).get(); }

CommandSetupPtr NodeSetup(const QTreeWidgetItem* node) {
    if (!node)
        return nullptr;
    return node->data(0, SetupRole).value<CommandSetupPtr>();
}

void SetNodeSetup(QTreeWidgetItem* node, CommandSetupPtr setup) {
    node->setData(0, SetupRole, QVariant::fromValue(std::move(setup)));
}

void SetStateImageList(QTreeWidget* tree, std::vector<QIcon> icons) {
    indexOf(tree).stateIcons = std::move(icons);
    indexOf(tree).composed.clear();
    tree->setIconSize(QSize(34, 16));
    for (QTreeWidgetItem* node : indexOf(tree).nodes())
        applyIcon(node);
}

void SetImageList(QTreeWidget* tree, std::vector<QIcon> icons) {
    indexOf(tree).icons = std::move(icons);
    indexOf(tree).composed.clear();
    for (QTreeWidgetItem* node : indexOf(tree).nodes())
        applyIcon(node);
}

QTreeWidgetItem* AddRootNode(QTreeWidget* tree, const QString& text) {
    auto* node = newNode(text, nullptr);
    tree->addTopLevelItem(node);
    applyIcon(node);
    return node;
}

QTreeWidgetItem* AddChildNode(QTreeWidgetItem* parent, const QString& text, CommandSetupPtr setup) {
    auto* node = newNode(text, std::move(setup));
    parent->addChild(node);
    applyIcon(node);
    return node;
}

QTreeWidgetItem* AddChildFirst(QTreeWidgetItem* parent, const QString& text,
                               CommandSetupPtr setup) {
    auto* node = newNode(text, std::move(setup));
    parent->insertChild(0, node);
    applyIcon(node);
    return node;
}

QTreeWidgetItem* InsertNodeBefore(QTreeWidgetItem* sibling, const QString& text,
                                  CommandSetupPtr setup) {
    auto* node = newNode(text, std::move(setup));
    parentOrRoot(sibling)->insertChild(childIndex(sibling), node);
    applyIcon(node);
    return node;
}

void MoveBefore(QTreeWidgetItem* node, QTreeWidgetItem* target) {
    if (node == target)
        return;
    relocate(node, [&] {
        QTreeWidgetItem* parent = parentOrRoot(target);
        parent->insertChild(parent->indexOfChild(target), node);
    });
}

void MoveToFirstChild(QTreeWidgetItem* node, QTreeWidgetItem* parent) {
    relocate(node, [&] { parent->insertChild(0, node); });
}

void MoveToLastChild(QTreeWidgetItem* node, QTreeWidgetItem* parent) {
    relocate(node, [&] { parent->addChild(node); });
}

void DeleteNode(QTreeWidgetItem* node) {
    QTreeWidget* tree = node->treeWidget();
    QTreeWidgetItem* current = tree ? tree->currentItem() : nullptr;
    if (!current || (current != node && !isAncestor(node, current))) {
        delete node;
        return;
    }
    QTreeWidgetItem* next = NextSibling(node);
    if (!next)
        next = node->parent();
    if (!next)
        next = PrevSibling(node);
    {
        const QSignalBlocker block(tree);
        tree->setCurrentItem(next);
        delete node;
        tree->setCurrentItem(next);
    }
    emit tree->currentItemChanged(next, nullptr);
}

void ClearTree(QTreeWidget* tree) {
    const QSignalBlocker block(tree);
    tree->clear();
}

QTreeWidgetItem* Selected(const QTreeWidget* tree) { return tree->currentItem(); }

void Select(QTreeWidget* tree, QTreeWidgetItem* node) { tree->setCurrentItem(node); }

void ExpandNode(QTreeWidgetItem* node) {
    node->setExpanded(true);
    for (int i = 0; i < node->childCount(); ++i)
        ExpandNode(node->child(i));
}

void ExpandAll(QTreeWidget* tree) { tree->expandAll(); }

void CollapseAll(QTreeWidget* tree) {
    tree->collapseAll();
    QTreeWidgetItem* current = tree->currentItem();
    if (!current || !current->parent())
        return;
    QTreeWidgetItem* top = current;
    while (top->parent())
        top = top->parent();
    const QSignalBlocker block(tree);
    tree->setCurrentItem(top);
}

// ---- TTreeView ----

TTreeView::TTreeView(QWidget* parent) : QTreeWidget(parent) {
    setColumnCount(1);
    setHeaderHidden(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setDragEnabled(false);
    setAcceptDrops(true);
    setDragDropMode(QAbstractItemView::DropOnly);
    // A selection inside a node that collapses moves up to that node, without a change signal.
    connect(this, &QTreeWidget::itemCollapsed, this, [this](QTreeWidgetItem* node) {
        if (isAncestor(node, currentItem())) {
            const QSignalBlocker block(this);
            setCurrentItem(node);
        }
    });
}

void TTreeView::focusInEvent(QFocusEvent* event) {
    if (currentItem()) {
        QTreeWidget::focusInEvent(event);
        return;
    }
    // The view would make its first row current on focus; a tree with no selection keeps none.
    const QSignalBlocker block(this);
    QTreeWidget::focusInEvent(event);
    if (currentItem())
        setCurrentItem(nullptr);
}

void TTreeView::dragEnterEvent(QDragEnterEvent* event) { dragMoveEvent(event); }

void TTreeView::dragMoveEvent(QDragMoveEvent* event) {
    if (dragOver && dragOver(event->source(), event->position().toPoint())) {
        // A copy, so that a dragging view never removes what it dragged.
        event->setDropAction(Qt::CopyAction);
        event->accept();
    } else {
        event->ignore();
    }
}

void TTreeView::dropEvent(QDropEvent* event) {
    event->setDropAction(Qt::CopyAction);
    event->accept();
    if (dragDrop)
        dragDrop(event->source(), event->position().toPoint());
}

} // namespace tree
