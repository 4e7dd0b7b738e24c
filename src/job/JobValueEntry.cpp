// Syntax and value entry: a choice in the syntax list and a keystroke in a value box reach the
// current Jobs row and compose its line anew.
#include "job/Job.h"

#include "dialogs/EventsGuard.h"
#include "store/DataMod.h"

#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>

void TdlgJob::lstSyntaxClick(QObject* Sender) {
    if (!FEventsEnabled || FCurrentCode.empty())
        return;
    auto& jobs = DM().tableJobs;
    auto& syntax = DM().tableSyntax;
    const int index = lstSyntax->currentRow();

    jobs.edit();
    jobs.fieldByName(schema::Syntax_Item).setAsInteger(index + 1);
    jobs.post();
    syntax.findNearest({FCurrentCode, index + 1, FParentCode});
    dbeValue1->setUpperCase(FCurrentCode == "COMMENT");
    txtSyntaxDesc->setText(
        QString::fromStdString(syntax.fieldByName(schema::Description).asString()));

    QTreeWidgetItem* node = SelectedNode();
    const bool withSubItems = tree::NodeLevel(node) == 2 || (node && node->childCount() > 0);
    if (!pnlRadioButtons->isHidden()) {
        {
            const dialogs::EventsGuard<bool> quiet(FEventsEnabled, false, true);
            if (index >= 0 && index <= 5)
                RadioItem(index + 1)->setChecked(true);
        }
        if (withSubItems)
            ComposeCommandLine();
        else
            ComposeSyntaxLine(true);
        RefreshScriptListLine();
    } else if (!pnlEditBoxes->isHidden()) {
        {
            const dialogs::EventsGuard<bool> quiet(FEventsEnabled, false, true);
            btnFilename->setVisible(false);
            chkOption->setVisible(false);
            for (int n = 1; n <= 6; ++n)
                DefaultLabel(n)->setText("");
            // Only a real click loads the defaults over what the boxes hold.
            for (int n = 1; n <= 6; ++n)
                FillValueField(ValueLabel(n), ValueEdit(n), Sender != nullptr);
        }
        dbeValueChange(nullptr);
        for (int n = 1; n <= 6; ++n)
            UpdateDefaultMark(ValueEdit(n), DefaultLabel(n));
    }
    NumberSequenceValue();
    ComposeJoinedLine();

    // The line as shown now: the carry-over of the next choice of syntax.
    FSavedValues.clear();
    for (int k = 1; k <= 6; ++k) {
        FSavedValueTypes[static_cast<std::size_t>(k - 1)] =
            syntax.fieldByName(schema::ValueTypeColumn(k)).asInteger();
        FSavedValues.push_back(jobs.fieldByName(schema::ValueColumn(k)).asString());
    }
}

void TdlgJob::dbeValueChange(QObject* Sender) {
    if (!FEventsEnabled)
        return;
    const dialogs::EventsGuard<bool> quiet(FEventsEnabled, false, true);
    auto* box = qobject_cast<QLineEdit*>(Sender);
    int selStart = 0;
    int selLength = 0;
    if (box) {
        selStart = box->hasSelectedText() ? box->selectionStart() : box->cursorPosition();
        selLength = static_cast<int>(box->selectedText().size());
    }
    if (FCurrentCode.empty())
        return;

    auto& jobs = DM().tableJobs;
    if (Sender) {
        SetNodeImage(SelectedNode(), 1, false);
        const int tag = Tag(Sender);
        auto* edit = dynamic_cast<dialogs::TDBEdit*>(Sender);
        if (auto* mark = findChild<QLabel*>(QString("textDefault%1").arg(tag)); mark && edit)
            UpdateDefaultMark(edit, mark);
        // A typed value forgets a browsed file.
        jobs.edit();
        jobs.fieldByName(schema::Path).setAsString("");
        jobs.post();
    }
    QTreeWidgetItem* node = SelectedNode();
    if (tree::NodeLevel(node) == 2 || (node && node->childCount() > 0))
        ComposeCommandLine();
    else
        ComposeScriptLine(true);
    ComposeJoinedLine();
    RefreshScriptListLine();

    // The bound box is rewritten when the row posts; the caret stays where the operator left it.
    if (box) {
        if (selLength > 0)
            box->setSelection(selStart, selLength);
        else
            box->setCursorPosition(selStart);
    }
}

void TdlgJob::connectEntryHandlers() {
    // The syntax list: a real click passes the list as sender.
    connect(lstSyntax, &QListWidget::itemClicked, this,
            [this] { Event([&] { lstSyntaxClick(lstSyntax); }); });
    for (int n = 1; n <= 6; ++n) {
        dialogs::TDBEdit* box = ValueEdit(n);
        connect(box, &QLineEdit::textChanged, this,
                [this, box] { Event([&] { dbeValueChange(box); }); });
    }
}
