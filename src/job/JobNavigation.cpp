// The selection handler: what the pages show for the selected line.
#include "job/Job.h"
#include "job/JobRows.h"

#include "dialogs/EventsGuard.h"
#include "store/DataMod.h"

#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QStatusBar>
#include <QTabWidget>

#include <algorithm>
#include <optional>
#include <string>

namespace {

// The node at an absolute index moved by `steps` in full tree order, kept inside the tree; from
// no node, index -1 is the start.
QTreeWidgetItem* stepNode(QTreeWidget* tree, QTreeWidgetItem* node, int steps) {
    const int last = tree::NodeCount(tree) - 1;
    if (last < 0)
        return nullptr;
    const int index = std::clamp((node ? tree::AbsoluteIndex(node) : -1) + steps, 0, last);
    return tree::FindNodeByIndex(tree, index);
}

// The Script_Line of the job row before `line`, read past the job's cursor so that the bound
// boxes do not show the neighbour and back; nothing when there is no such row or its value is
// no text, where the cursor itself must look.
std::optional<std::string> priorScriptLine(int pallet, int job, int line) {
    JobRowsReader stmt("select Script_Line from Jobs where Pallet_Number = ? and Job_Number = ? "
                       "and Line_Number < ? order by Line_Number desc limit 1",
                       pallet, job, line);
    if (!stmt.step())
        return std::nullopt;
    const store::Value value = stmt.column(0);
    if (value.isText())
        return value.text();
    if (value.isNull())
        return std::string();
    return std::nullopt;
}

constexpr const char* SectionDescription =
    "Enter any text for the purpose of displaying a\r\ncomment at the begining of this "
    "section.\r\nThe comment indicator will be added for you.";

void setPageCaption(QTabWidget* pages, QWidget* page, const char* caption) {
    pages->setTabText(pages->indexOf(page), caption);
}

} // namespace

void TdlgJob::connectNavigationHandlers() {
    // The tree: a selection by the operator; code selects through SelectNode.
    connect(tvwTemplate, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* current) {
        Event([&] { tvwTemplateChange(tvwTemplate, current); });
    });
    connect(tvwTemplate, &QTreeWidget::itemDoubleClicked, this,
            [this] { Event([&] { tvwTemplateDblClick(); }); });
    connect(btnNext, &QPushButton::clicked, this,
            [this] { Event([&] { btnNextClick(btnNext); }); });
    connect(btnExpand, &QPushButton::clicked, this, [this] { Event([&] { btnExpandClick(); }); });
    connect(btnCollapse, &QPushButton::clicked, this,
            [this] { Event([&] { btnCollapseClick(btnCollapse); }); });
    // Code changes the page through SetActivePage and the script view's row with signals
    // blocked, so these run for the operator only.
    connect(pageScript, &QTabWidget::currentChanged, this,
            [this] { Event([&] { pageScriptChange(); }); });
    connect(lstScript, &QListWidget::currentRowChanged, this,
            [this] { Event([&] { lstScriptClick(); }); });
}

void TdlgJob::tvwTemplateChange(QObject* Sender, QTreeWidgetItem* Node) {
    if (!FEventsEnabled || !SelectedNode())
        return;
    if (!Node)
        Node = SelectedNode();
    for (QWidget* panel : {pnlSection, pnlEditBoxes, pnlRadioButtons})
        panel->setVisible(false);
    itemLoadGlobal->setEnabled(false);
    if (Sender) {
        FStatusMessage.clear();
        RepaintStatusBar();
    }
    FSavedValueTypes.fill(0);
    FBrowsedFileName.clear();
    SyncJobRow(Node);

    auto& jobs = DM().tableJobs;
    const int level = tree::NodeLevel(Node);
    {
        const dialogs::EventsGuard<bool> quiet(FEventsEnabled, false, true);
        dbtScriptLine->setEnabled(true);
        if (level > 0) {
            // A line equal to the one before is merged into it.
            const std::string line = jobs.fieldByName(schema::Script_Line).asString();
            jobs.checkBrowseMode();
            const auto before = priorScriptLine(FPalletNumber, FJobNumber,
                                                jobs.fieldByName(schema::Line_Number).asInteger());
            if (before) {
                if (*before == line)
                    dbtScriptLine->setEnabled(false);
            } else {
                jobs.prior();
                if (jobs.fieldByName(schema::Script_Line).asString() == line)
                    dbtScriptLine->setEnabled(false);
                jobs.next();
            }
        }
        const QSignalBlocker blocker(btnSkip);
        btnSkip->setChecked(jobs.fieldByName(schema::Image).asInteger() == 3);
    }

    QTreeWidgetItem* statusNode = Node;
    if (level > 0) {
        auto& syntax = DM().tableSyntax;
        syntax.setFiltered(false);
        FCurrentCode = tree::NodeText(Node).toStdString();
        FParentCode = level == 2 ? tree::NodeText(Node->parent()).toStdString() : std::string();
        syntax.findNearest({FCurrentCode});
        LocateSyntaxRow(FCurrentCode, level, FParentCode);
        const int type = syntax.fieldByName(schema::Type).asInteger();
        if (type == 2 || type == 4) {
            ShowItemSelection();
        } else {
            ShowItemValues();
            itemLoadGlobal->setEnabled(true);
        }
        SetDefaultSyntaxMark(GetLocalDefaultSyntax(FCurrentCode), "L");
        SetDefaultSyntaxMark(GetGlobalDefaultSyntax(FCurrentCode), "G");
        if (FCurrentCode == "SEP" &&
            DM().tableTemplateName.fieldByName(schema::Auto_Points).asBoolean()) {
            jobs.edit();
            jobs.fieldByName(schema::Syntax_Item).setAsInteger(3);
            jobs.post();
        }
        // An item beyond the list's entries leaves no entry selected.
        const int item = jobs.fieldByName(schema::Syntax_Item).asInteger() - 1;
        {
            const QSignalBlocker blocker(lstSyntax);
            lstSyntax->setCurrentRow(item >= 0 && item < lstSyntax->count() ? item : -1);
        }
        lstSyntaxClick(nullptr);
        statusNode = Node->parent();
    } else {
        pnlSection->setVisible(true);
        setPageCaption(pageValues, tabValues, "Section Comment");
        ClearSyntaxList();
        lstSyntax->addItem("Enter any text");
        txtSyntaxDesc->setText(SectionDescription);
        FCurrentCode.clear();
    }

    dbeValue1->dataChanged();
    StatusPanels[0]->setText(tree::NodeText(statusNode));
    StatusPanels[1]->setText(QString::fromStdString(WorkpieceRangeText(statusNode)));
    btnNext->setEnabled(true);
    UpdateCopyPasteButtons();
}

void TdlgJob::btnNextClick(QObject* Sender) {
    QTreeWidgetItem* selected = SelectedNode();
    if (!selected)
        return;
    QTreeWidgetItem* nextSibling = tree::NextSibling(selected);
    tvwTemplate->setFocus();
    const QString senderName = Sender ? Sender->objectName() : QString();
    const bool skipping =
        btnSkip->isChecked() || senderName == "btnSkip" || senderName == "btnSkipDown";
    const int level = tree::NodeLevel(selected);
    const bool collapsedParent = selected->childCount() > 0 && !selected->isExpanded();
    // Past a collapsed command: its next sibling, else the next sibling of its parent.
    const auto pastChildren = [&] {
        return nextSibling ? nextSibling : tree::NextSibling(selected->parent());
    };

    if (skipping) {
        // No check and no image: a skipped line stays skipped.
        QTreeWidgetItem* next = collapsedParent ? pastChildren() : tree::NextNode(selected);
        if (!next) {
            btnNext->setEnabled(false);
            return;
        }
        SelectNode(next);
        return;
    }

    // A level 2 line not in use needs no check.
    if (!pnlEditBoxes->isHidden() && (level < 2 || tree::StateIndex(selected) == 2)) {
        auto& syntax = DM().tableSyntax;
        const int count = CountFormatSpecs(syntax.fieldByName(schema::Mask).asString(), false);
        int offset = 0;
        for (int k = 1; k <= count; ++k) {
            // Value types above 9999 are no box values: the box takes the next slot's type.
            int valueType = syntax.fieldByName(schema::ValueTypeColumn(k + offset)).asInteger();
            while (valueType > 9999) {
                ++offset;
                valueType = syntax.fieldByName(schema::ValueTypeColumn(k + offset)).asInteger();
            }
            dialogs::TDBEdit* box = ValueEdit(k);
            if (!ValidateValue(box, valueType, false)) {
                box->setFocus();
                return;
            }
        }
    }
    SetNodeImage(selected, 2, false);

    QTreeWidgetItem* next =
        Sender && level == 1 && collapsedParent ? pastChildren() : tree::NextNode(selected);
    if (!next) {
        btnNext->setEnabled(false);
        return;
    }
    SelectNode(next);
    // Sub-items not in use are finished on the way; the walk stops on the first other line.
    while (next && tree::NodeLevel(next) == 2 && tree::StateIndex(next) == 1) {
        SetNodeImage(next, 2, false);
        next = tree::NextNode(next);
        SelectNode(next);
    }
    if (!next)
        btnNext->setEnabled(false);
}

void TdlgJob::tvwTemplateDblClick() {
    QTreeWidgetItem* node = SelectedNode();
    if (!node || tree::NodeLevel(node) != 2)
        return;
    SyncJobRow(node);
    auto& jobs = DM().tableJobs;
    const int state = jobs.fieldByName(schema::State).asInteger() == 2 ? 1 : 2;
    jobs.edit();
    jobs.fieldByName(schema::State).setAsInteger(state);
    jobs.post();
    tree::SetStateIndex(node, state);
    if (node->parent()) {
        // The parent has children: this only enables btnNext.
        SetNodeImage(node->parent(), 1, false);
        ComposeCommandLine();
    }
}

void TdlgJob::pageScriptChange() {
    if (pageScript->currentWidget() != tabScript)
        return;
    {
        const dialogs::EventsGuard<bool> quiet(FEventsEnabled, false, true);
        const QSignalBlocker blocker(lstScript);
        lstScript->clear();
        auto& jobs = DM().tableJobs;
        std::string previous;
        for (jobs.first(); !jobs.eof(); jobs.next()) {
            const std::string line = ScriptViewLine();
            // A joined line shows once.
            lstScript->addItem(line == previous ? QString() : QString::fromStdString(line));
            previous = line;
        }
        FLastScriptIndex = tree::AbsoluteIndex(SelectedNode());
        lstScript->setCurrentRow(FLastScriptIndex);
        lstScript->setFocus();
    }
    tvwTemplateChange(nullptr, SelectedNode());
}

void TdlgJob::lstScriptClick() {
    {
        const dialogs::EventsGuard<bool> quiet(FEventsEnabled, false, true);
        SelectNode(
            stepNode(tvwTemplate, SelectedNode(), lstScript->currentRow() - FLastScriptIndex));
        FLastScriptIndex = lstScript->currentRow();
    }
    tvwTemplateChange(nullptr, SelectedNode());
    FLastScriptIndex = tree::AbsoluteIndex(SelectedNode());
    const QSignalBlocker blocker(lstScript);
    lstScript->setCurrentRow(FLastScriptIndex);
}

void TdlgJob::btnExpandClick() {
    tvwTemplate->setVisible(false);
    tree::ExpandAll(tvwTemplate);
    tvwTemplate->setVisible(true);
    tvwTemplate->setFocus();
    if (QTreeWidgetItem* node = SelectedNode())
        tvwTemplate->scrollToItem(node, QAbstractItemView::PositionAtTop);
}

void TdlgJob::btnCollapseClick(QObject* Sender) {
    tvwTemplate->setVisible(false);
    tree::CollapseAll(tvwTemplate);
    tvwTemplate->setVisible(true);
    tvwTemplateChange(Sender, SelectedNode());
    tvwTemplate->setFocus();
}
