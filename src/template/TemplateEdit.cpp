// Editing the template tree: add, move, drag and drop, expand and collapse, copy a template.
#include "common/Services.h"
#include "store/DataMod.h"
#include "template/Template.h"

#include <QTimer>

#include <string>

namespace {

// Whether `node` is `ancestor` or stands anywhere below it.
bool inSubtree(const QTreeWidgetItem* node, const QTreeWidgetItem* ancestor) {
    for (; node; node = node->parent())
        if (node == ancestor)
            return true;
    return false;
}

} // namespace

void TdlgTemplate::btnAddClick() {
    const std::string code = DM().tableCommands.fieldByName(schema::Code).asString();
    auto setup = std::make_shared<TCommandSetup>(code);
    QTreeWidgetItem* selected = requireSelected();
    QTreeWidgetItem* node = nullptr;
    if (tree::NodeLevel(selected) == 0) {
        node = tree::AddChildFirst(selected, QString::fromStdString(code), std::move(setup));
        tree::Select(tvwTemplate, node);
    } else {
        // In front of the selection, then one step down: the new command lands behind it.
        node = tree::InsertNodeBefore(selected, QString::fromStdString(code), std::move(setup));
        tree::Select(tvwTemplate, node);
        btnDownClick(nullptr);
    }
    if (FVersion > 1)
        WriteJournal(NextJournalSequence(FTemplateID, FVersion), tree::AbsoluteIndex(node), "ADD",
                     code, 1);
    tree::SetImageIndex(node, tree::ImagePlain);
    FModified = true;
    dbgCommands->setFocus();
    UpdateButtons();
}

void TdlgTemplate::btnUpClick() {
    QTreeWidgetItem* node = requireSelected();
    const int from = tree::AbsoluteIndex(node);
    if (QTreeWidgetItem* previous = tree::PrevSibling(node))
        tree::MoveBefore(node, previous);
    else if (QTreeWidgetItem* section = tree::PrevSibling(node->parent()))
        tree::MoveToLastChild(node, section);
    if (FVersion > 1)
        WriteJournal(0, from, "MOV", std::to_string(tree::AbsoluteIndex(node)),
                     node->childCount() + 1);
    tvwTemplateChange();
    tvwTemplate->setFocus();
    FModified = true;
    UpdateButtons();
}

void TdlgTemplate::btnDownClick(QObject* Sender) {
    QTreeWidgetItem* node = requireSelected();
    const int from = tree::AbsoluteIndex(node);
    if (QTreeWidgetItem* next = tree::NextSibling(node)) {
        if (QTreeWidgetItem* afterNext = tree::NextSibling(next))
            tree::MoveBefore(node, afterNext);
        else
            tree::MoveToLastChild(node, node->parent() ? node->parent()
                                                       : tvwTemplate->invisibleRootItem());
    } else if (QTreeWidgetItem* section = tree::NextSibling(node->parent())) {
        tree::MoveToFirstChild(node, section);
    }
    if (!Sender)
        return;
    if (FVersion > 1)
        WriteJournal(0, from, "MOV", std::to_string(tree::AbsoluteIndex(node)),
                     node->childCount() + 1);
    tvwTemplateChange();
    tvwTemplate->setFocus();
    FModified = true;
    UpdateButtons();
}

// Only this form's command list and tree are drag sources; a drag from anywhere else (another
// program's file or text, another form) is refused. A node never drops into its own subtree.
bool TdlgTemplate::tvwTemplateDragOver(QObject* Source, const QPoint& pos) {
    if (Source == dbgCommands)
        return tvwTemplate->itemAt(pos) != nullptr;
    if (Source != tvwTemplate)
        return false;
    QTreeWidgetItem* selected = selectedNode();
    if (!selected || tree::NodeLevel(selected) <= 0)
        return false;
    QTreeWidgetItem* target = tvwTemplate->itemAt(pos);
    return !target || target == selected || !inSubtree(target, selected);
}

void TdlgTemplate::tvwTemplateDragDrop(QObject* Sender, QObject* Source, const QPoint& pos) {
    QTreeWidgetItem* target = tvwTemplate->itemAt(pos);
    QTreeWidgetItem* selected = selectedNode();
    if (Source != dbgCommands && Source != tvwTemplate)
        return;
    if (Source == dbgCommands) {
        // A command from the list: added at the target as by the Add button, which journals it.
        tree::Select(tvwTemplate, target);
        btnAddClick();
        tree::Select(tvwTemplate, selected);
        return;
    }
    // Moving the node below one of its own sub-items would put it inside itself.
    if (!target || !selected || (target != selected && inSubtree(target, selected)))
        return;
    const int from = tree::AbsoluteIndex(selected);
    if (tree::NodeLevel(target) == 0) {
        tree::MoveToFirstChild(selected, target);
    } else {
        tree::MoveBefore(selected, target);
        btnDownClick(nullptr);
    }
    if (FVersion >= 2 && Sender)
        WriteJournal(0, from, "MOV", std::to_string(tree::AbsoluteIndex(selected)),
                     selected->childCount() + 1);
}

void TdlgTemplate::btnExpandClick() {
    tvwTemplate->setVisible(false);
    tree::ExpandAll(tvwTemplate);
    tvwTemplate->setVisible(true);
    tvwTemplate->setFocus();
    if (QTreeWidgetItem* node = selectedNode())
        tvwTemplate->scrollToItem(node);
    UpdateButtons();
}

void TdlgTemplate::btnCollapseClick() {
    tvwTemplate->setVisible(false);
    tree::CollapseAll(tvwTemplate);
    tvwTemplate->setVisible(true);
    tvwTemplate->setFocus();
    UpdateButtons();
}

void TdlgTemplate::btnCopyTemplateClick() {
    if (!CreateCopyTemplateDialog)
        return;
    std::unique_ptr<QDialog> dialog = CreateCopyTemplateDialog(this);
    if (common::ui().showModal(dialog.get()) != common::ModalResult::Cancel) {
        LoadTemplateTree(tvwTemplate, FTemplateID);
        FVersion = 1;
    }
}

void TdlgTemplate::dbgCommandsDblClick() { btnAddClick(); }

void TdlgTemplate::dbgCommandsKeyPress(QChar key) {
    const char16_t c = key.unicode();
    const bool letterOrDigit =
        (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || (c >= u'0' && c <= u'9');
    if (!letterOrDigit)
        return;
    FSearchText += static_cast<char>(c >= u'a' && c <= u'z' ? c - u'a' + u'A' : c);
    DM().tableCommands.findNearest({FSearchText});
    Timer->stop();
    Timer->start();
}

void TdlgTemplate::TimerTimer() {
    FSearchText.clear();
    Timer->stop();
}
