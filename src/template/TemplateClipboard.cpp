// The editor's clipboard: copy, cut, paste and delete. The clipboard lives with the form, so what
// was copied in one template can be pasted into another; it shares the objects with the nodes,
// so a Cut leaves them valid.
#include "common/Services.h"
#include "template/Template.h"

#include <stdexcept>

void TdlgTemplate::btnCopyClick() {
    QTreeWidgetItem* selected = requireSelected();
    FCopiedLevel = tree::NodeLevel(selected);
    FClipboard.clear();
    if (FCopiedLevel == 0) {
        // From the node after the section along its siblings. For a section without commands
        // that is the next section and the ones after it, whose entries are empty.
        for (QTreeWidgetItem* node = tree::NextNode(selected); node; node = tree::NextSibling(node))
            FClipboard.push_back(tree::NodeSetup(node));
    } else {
        FClipboard.push_back(tree::NodeSetup(selected));
    }
    UpdateButtons();
}

void TdlgTemplate::btnCutClick() {
    btnCopyClick();
    btnDeleteClick();
    FModified = true;
    UpdateButtons();
}

void TdlgTemplate::btnDeleteClick() {
    QTreeWidgetItem* node = requireSelected();
    if (FVersion > 1)
        WriteJournal(0, tree::AbsoluteIndex(node), "DEL", "", node->childCount() + 1);
    tree::DeleteNode(node);
    FModified = true;
    UpdateButtons();
}

namespace {

CommandSetupPtr cloneEntry(const CommandSetupPtr& entry) {
    if (!entry)
        throw std::runtime_error("The clipboard holds a section where a command was expected");
    return entry->Clone();
}

} // namespace

void TdlgTemplate::btnPasteClick() {
    QTreeWidgetItem* selected = requireSelected();
    if (tree::NodeLevel(selected) != 0) {
        for (const auto& entry : FClipboard) {
            auto clone = cloneEntry(entry);
            const std::string code = clone->Code;
            QTreeWidgetItem* node = tree::InsertNodeBefore(
                tree::Selected(tvwTemplate), QString::fromStdString(code), std::move(clone));
            tree::Select(tvwTemplate, node);
            // Journalled before the move down, so one less than where the node ends.
            if (FVersion > 1)
                WriteJournal(0, tree::AbsoluteIndex(node), "ADD", code, 1);
            btnDownClick(nullptr);
        }
        FModified = true;
        UpdateButtons();
        return;
    }
    QTreeWidgetItem* section = selected;
    if (FCopiedLevel == 0 && section->childCount() > 0) {
        common::ui().beep();
        if (common::ui().message(common::MessageKind::Warning,
                                 "The existing commands for this workpiece will be deleted.",
                                 common::MessageButtons::OkCancel) == common::ModalResult::Cancel)
            return;
        while (section->childCount() > 0) {
            tree::Select(tvwTemplate, section->child(0));
            btnDeleteClick();
        }
        tree::Select(tvwTemplate, section);
    }
    for (auto it = FClipboard.rbegin(); it != FClipboard.rend(); ++it) {
        auto clone = cloneEntry(*it);
        const std::string code = clone->Code;
        QTreeWidgetItem* node =
            tree::AddChildFirst(section, QString::fromStdString(code), std::move(clone));
        tree::Select(tvwTemplate, node);
        // The section's index plus 2: one beyond the new node's own place.
        if (FVersion > 1)
            WriteJournal(0, tree::AbsoluteIndex(node) + 1, "ADD", code, 1);
        tree::Select(tvwTemplate, node->parent());
    }
    tree::ExpandNode(section);
    if (QTreeWidgetItem* next = tree::NextSibling(section))
        tree::Select(tvwTemplate, next);
    FModified = true;
    UpdateButtons();
}
