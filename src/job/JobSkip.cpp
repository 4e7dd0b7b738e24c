// Workpieces and lines left out of the program (skip), and the values of one line or section
// brought to another of the same kind (copy and paste).
#include "job/Job.h"

#include "common/Convert.h"
#include "dialogs/EventsGuard.h"
#include "store/DataMod.h"

#include <QPushButton>

#include <array>

void TdlgJob::connectSkipHandlers() {
    // btnSkip and btnUnskip are a group of two toggles that may both be up: pressing one down
    // raises the other, pressing a down one raises it.
    connect(btnSkip, &QPushButton::clicked, this, [this] {
        if (btnSkip->isChecked()) {
            const QSignalBlocker blocker(btnUnskip);
            btnUnskip->setChecked(false);
        }
        Event([&] { btnSkipClick(btnSkip); });
    });
    connect(btnUnskip, &QPushButton::clicked, this, [this] {
        if (btnUnskip->isChecked()) {
            const QSignalBlocker blocker(btnSkip);
            btnSkip->setChecked(false);
        }
        Event([&] { btnUnskipClick(); });
    });
    connect(btnSkipDown, &QPushButton::clicked, this,
            [this] { Event([&] { btnSkipDownClick(); }); });
    connect(btnCopy, &QPushButton::clicked, this, [this] { Event([&] { btnCopyClick(); }); });
    connect(btnPaste, &QPushButton::clicked, this, [this] { Event([&] { btnPasteClick(); }); });
}

void TdlgJob::btnSkipClick(QObject* Sender) {
    if (!FEventsEnabled)
        return;
    QTreeWidgetItem* selected = SelectedNode();
    if (!selected)
        return;
    const int image = btnSkip->isChecked() ? 3 : 1;
    SetNodeImage(selected, image, true);
    if (tree::NodeLevel(selected) >= 1) {
        btnNextClick(nullptr);
        return;
    }
    if (!DM().tableTemplateName.fieldByName(schema::Auto_Points).asBoolean()) {
        btnNextClick(Sender);
        return;
    }

    // With automatic points the workpiece's "SEP" line in the Header goes with it: the line of
    // workpiece n is the n-th row after the Header's own row.
    auto& jobs = DM().tableJobs;
    const int returnLine = jobs.fieldByName(schema::Line_Number).asInteger();
    // Kept as it stands: the return is a key search with the line as the only key value, so it
    // goes against the leading key column; its result does not matter, Next positions anyway.
    const auto returnStep = [&] { jobs.findKey({returnLine}); };
    int place = -1;
    for (;;) {
        if (jobs.fieldByName(schema::Node_Level).asInteger() == 0)
            ++place;
        jobs.prior();
        if (jobs.bof())
            break;
    }
    jobs.first();
    jobs.next();
    for (int i = 0;; jobs.next()) {
        if (jobs.eof()) {
            returnStep();
            btnNextClick(Sender);
            return;
        }
        if (jobs.fieldByName(schema::Node_Level).asInteger() == 0) {
            btnNextClick(nullptr);
            return;
        }
        const std::string line = jobs.fieldByName(schema::Script_Line).asString();
        ++i;
        if (common::upperCase(line.substr(0, 3)) == "SEP" && i == place) {
            jobs.edit();
            jobs.fieldByName(schema::Image).setAsInteger(image);
            jobs.post();
            if (QTreeWidgetItem* node =
                    FindNodeByIndex(jobs.fieldByName(schema::Line_Number).asInteger(), true))
                tree::SetImageIndex(node, image);
            tvwTemplate->viewport()->update();
            returnStep();
            btnNextClick(Sender);
            return;
        }
    }
}

void TdlgJob::btnSkipDownClick() {
    for (;;) {
        QTreeWidgetItem* selected = SelectedNode();
        if (!selected)
            return;
        selected->setExpanded(false);
        {
            const QSignalBlocker blocker(btnSkip);
            btnSkip->setChecked(true);
        }
        btnSkipClick(btnSkipDown);
        // Until the selected section is the last; a skip that did not move on ends it too.
        if (!tree::NextSibling(SelectedNode()) || SelectedNode() == selected)
            return;
    }
}

void TdlgJob::btnUnskipClick() {
    // Kept as the button stands: the loop would run while the first node is its own next
    // sibling, which it never is, so nothing is unskipped here. The operator unskips a section
    // or line by raising btnSkip on it.
    FUnskipCursor = tree::FindNodeByIndex(tvwTemplate, 0);
    while (FUnskipCursor && FUnskipCursor == tree::NextSibling(FUnskipCursor))
        FUnskipCursor = tree::NextSibling(FUnskipCursor);
}

void TdlgJob::btnCopyClick() {
    FCopiedNode = SelectedNode();
    UpdateCopyPasteButtons();
}

void TdlgJob::btnPasteClick() {
    QTreeWidgetItem* selected = SelectedNode();
    if (!FCopiedNode || !selected)
        return;
    if (tree::NodeLevel(FCopiedNode) != 0) {
        PasteLineValues(FCopiedNode, selected);
        return;
    }
    QTreeWidgetItem* source = FCopiedNode->child(0);
    QTreeWidgetItem* target = selected->child(0);
    while (source) {
        PasteLineValues(source, target);
        source = tree::NextSibling(source);
        target = target ? tree::NextSibling(target) : nullptr;
    }
    if (QTreeWidgetItem* next = tree::NextSibling(selected))
        SelectNode(next);
}

void TdlgJob::PasteLineValues(QTreeWidgetItem* Source, QTreeWidgetItem* Target) {
    if (!Source || !Target)
        return;
    auto& jobs = DM().tableJobs;
    const dialogs::EventsGuard<bool> quiet(FEventsEnabled, false, FEventsEnabled);
    static const std::array<const char*, 9> columns = {
        schema::Code,    schema::Syntax_Item, schema::Script_Line, schema::Value_1, schema::Value_2,
        schema::Value_3, schema::Value_4,     schema::Value_5,     schema::Value_6};
    std::array<store::Value, columns.size()> values;
    jobs.findNearest({FPalletNumber, FJobNumber, tree::AbsoluteIndex(Source)});
    for (std::size_t i = 0; i < columns.size(); ++i)
        values[i] = jobs.fieldByName(columns[i]).value();
    // Image, State and Path of the target stay.
    jobs.findNearest({FPalletNumber, FJobNumber, tree::AbsoluteIndex(Target)});
    jobs.edit();
    for (std::size_t i = 0; i < columns.size(); ++i)
        jobs.fieldByName(columns[i]).setValue(values[i]);
    jobs.post();
}
