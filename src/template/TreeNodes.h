#pragma once
// Tree helpers shared by the template editor and the job wizard. A node is a QTreeWidgetItem with
// an image index, a state index and an optional TCommandSetup stored on it.
//
// The absolute index of a node is its place in a pre-order walk over the whole tree, collapsed
// nodes included, counted from 0. It equals Item of the node's TemplateData row and Line_Number of
// its Jobs row. Each tree keeps a lazily rebuilt index of its nodes, invalidated by any structural
// change of its model, so that looking a node up by index, or an index up by node, costs O(1)
// while the tree does not change (a job build walks thousands of lines this way).
//
// The selected node is the tree's current item; "no node selected" is a real state. Selecting
// fires the tree's change signal; moving a node keeps it selected and fires nothing; deleting the
// selected node selects its next sibling, else its parent, else its previous sibling, and fires
// the change signal once.
#include "template/CommandSetup.h"

#include <QIcon>
#include <QMetaType>
#include <QTreeWidget>

#include <functional>
#include <vector>

Q_DECLARE_METATYPE(CommandSetupPtr)

namespace tree {

// Item data roles, column 0.
inline constexpr int ImageRole = Qt::UserRole + 1;
inline constexpr int StateRole = Qt::UserRole + 2;
inline constexpr int SetupRole = Qt::UserRole + 3;

// What a node has before anyone sets its images.
inline constexpr int DefaultImageIndex = 0;
inline constexpr int DefaultStateIndex = -1;

// Node images of a template tree: section or command without syntax, syntax chosen, locked.
inline constexpr int ImagePlain = 2;
inline constexpr int ImagePreset = 3;
inline constexpr int ImageLocked = 4;

// The image a command node shows for its object: 2 without syntax, else 4 if locked, else 3.
int CommandImage(const TCommandSetup& setup);

// ---- Reading nodes ----

// Depth of the node: 0 section, 1 command, 2 sub-item.
int NodeLevel(const QTreeWidgetItem* node);
// Pre-order place of the node in its tree; -1 for none or a node outside any tree.
int AbsoluteIndex(const QTreeWidgetItem* node);
// The node at an absolute index, or nullptr when the index is outside the tree.
QTreeWidgetItem* FindNodeByIndex(QTreeWidget* tree, int index);
// Number of nodes in the tree, all levels.
int NodeCount(QTreeWidget* tree);
// The next node in absolute order, or nullptr after the last.
QTreeWidgetItem* NextNode(const QTreeWidgetItem* node);
QTreeWidgetItem* NextSibling(const QTreeWidgetItem* node);
QTreeWidgetItem* PrevSibling(const QTreeWidgetItem* node);
QString NodeText(const QTreeWidgetItem* node);

int ImageIndex(const QTreeWidgetItem* node);
void SetImageIndex(QTreeWidgetItem* node, int index);
int StateIndex(const QTreeWidgetItem* node);
void SetStateIndex(QTreeWidgetItem* node, int index);
// The node's object, or nullptr for a section.
TCommandSetup* NodeObject(const QTreeWidgetItem* node);
CommandSetupPtr NodeSetup(const QTreeWidgetItem* node);
void SetNodeSetup(QTreeWidgetItem* node, CommandSetupPtr setup);

// Icons shown for image indexes on this tree; an index without an icon shows none.
void SetImageList(QTreeWidget* tree, std::vector<QIcon> icons);
// Icons shown for state indexes, before the image of each node.
void SetStateImageList(QTreeWidget* tree, std::vector<QIcon> icons);

// ---- Building and changing ----

// A new last root node.
QTreeWidgetItem* AddRootNode(QTreeWidget* tree, const QString& text);
// A new last child of `parent`, with its object.
QTreeWidgetItem* AddChildNode(QTreeWidgetItem* parent, const QString& text,
                              CommandSetupPtr setup = nullptr);
// A new first child of `parent`.
QTreeWidgetItem* AddChildFirst(QTreeWidgetItem* parent, const QString& text,
                               CommandSetupPtr setup = nullptr);
// A new node directly in front of `sibling`, on its level.
QTreeWidgetItem* InsertNodeBefore(QTreeWidgetItem* sibling, const QString& text,
                                  CommandSetupPtr setup = nullptr);

// Moves keep the node, its children and their expansion, and keep the selection where it was,
// without a change signal.
void MoveBefore(QTreeWidgetItem* node, QTreeWidgetItem* target);
void MoveToFirstChild(QTreeWidgetItem* node, QTreeWidgetItem* parent);
void MoveToLastChild(QTreeWidgetItem* node, QTreeWidgetItem* parent);

// Deletes the node with its children (their objects live on where others still hold them).
void DeleteNode(QTreeWidgetItem* node);
// Removes every node; fires no change signal.
void ClearTree(QTreeWidget* tree);

QTreeWidgetItem* Selected(const QTreeWidget* tree);
// Selects the node (nullptr: none); fires the change signal when the selection changes.
void Select(QTreeWidget* tree, QTreeWidgetItem* node);

// Expands or collapses the node and every node below it.
void ExpandNode(QTreeWidgetItem* node);
void ExpandAll(QTreeWidget* tree);
// Collapses every node; a selection inside a collapsed section moves to that section without a
// change signal.
void CollapseAll(QTreeWidget* tree);

// ---- The tree view control ----

// A tree view that never selects a node by itself when it gets the focus, moves a selection out of
// a node that collapses onto that node without a change signal, and hands drags to the form's
// handlers: `dragOver` decides whether a drop is accepted, `dragDrop` performs it.
// Positions are in the coordinates that itemAt() takes.
class TTreeView : public QTreeWidget {
    Q_OBJECT
public:
    explicit TTreeView(QWidget* parent = nullptr);

    std::function<bool(QObject* source, const QPoint& pos)> dragOver;
    std::function<void(QObject* source, const QPoint& pos)> dragDrop;

protected:
    void focusInEvent(QFocusEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
};

} // namespace tree
