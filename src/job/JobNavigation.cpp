// The selection handler: what the pages show for the selected line.
#include "job/Job.h"

#include "dialogs/EventsGuard.h"
#include "store/DataMod.h"

#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QStatusBar>
#include <QTabWidget>

namespace {

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
            jobs.prior();
            if (jobs.fieldByName(schema::Script_Line).asString() == line)
                dbtScriptLine->setEnabled(false);
            jobs.next();
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
