// Syntax item handlers: the job row behind the selected node, the syntax list and the two value
// pages, a command's line with its sub-items, joined lines, running numbers, the script view's
// lines and the roll-up of a line's status.
#include "job/Job.h"
#include "job/JobRows.h"

#include "common/Convert.h"
#include "common/Format.h"
#include "dialogs/EventsGuard.h"
#include "store/DataMod.h"
#include "store/Database.h"
#include "store/Statement.h"

#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>

#include <algorithm>
#include <memory>
#include <string_view>

namespace {

// Value_Type_1 of a syntax whose first value is a running number.
constexpr int RunningNumberType = 3102;
// What a joined line of an empty comment comes out as; it is stored empty.
constexpr const char* EmptyJoinedComment = "      ()";

store::Table& jobs() { return DM().tableJobs; }
store::Table& syntax() { return DM().tableSyntax; }

std::string jobText(std::string_view column) { return jobs().fieldByName(column).asString(); }
int jobInt(std::string_view column) { return jobs().fieldByName(column).asInteger(); }

// One column of the current Jobs row, stored and posted.
void storeJobField(const std::string& column, const store::Value& value) {
    auto& table = jobs();
    table.edit();
    table.fieldByName(column).setValue(value);
    table.post();
}

// The key of the current Syntax row, to seek it back after other seeks.
struct SyntaxKey {
    std::string code;
    int item = 0;
    std::string command;
};

SyntaxKey currentSyntaxKey() {
    auto& table = syntax();
    return {table.fieldByName(schema::Code).asString(), table.fieldByName(schema::Item).asInteger(),
            table.fieldByName(schema::Command).asString()};
}

void seekSyntax(const SyntaxKey& key) { syntax().findNearest({key.code, key.item, key.command}); }

// Seeks the Syntax row of the current Jobs row's Code and Syntax_Item.
void seekRowSyntax() { syntax().findNearest({jobText(schema::Code), jobInt(schema::Syntax_Item)}); }

// Whether a job row continues into the next one, as IsLineContinued answers for the current row,
// read past the job's cursor: the bound boxes do not follow a look at a neighbour. Moves the
// Syntax cursor as IsLineContinued does.
bool rowContinued(int pallet, int job, int line) {
    JobRowsReader stmt(
        "select Node_Level, Code, Syntax_Item, Value_1, Value_2, Value_3, Value_4, Value_5, "
        "Value_6 from Jobs where Pallet_Number = ? and Job_Number = ? and Line_Number = ?",
        pallet, job, line);
    if (!stmt.step() || stmt.columnInteger(0) == 0)
        return false;
    const store::Value code = stmt.column(1);
    syntax().findNearest(
        {code.isText() ? code.text() : std::string(), static_cast<int>(stmt.columnInteger(2))});
    const int count =
        TdlgJob::CountFormatSpecs(syntax().fieldByName(schema::Mask).asString(), false);
    // The value after the mask's own values is the flag; a seventh column does not exist, and
    // asking for it fails as it does on the cursor.
    if (count >= 6)
        return jobs().fieldByName("Value_" + std::to_string(count + 1)).asString() == "1";
    const store::Value flag = stmt.column(3 + count);
    return (flag.isText() && flag.text() == "1") || (flag.isInteger() && flag.integer() == 1);
}

// The nearest running number before `line`, as NumberSequenceValue's walk finds it (-1 for
// none), read past the job's cursor; moves the Syntax cursor as the walk does. False, having
// found nothing, when a row holds values of a kind the cursor's own conversions must read.
bool earlierRunningNumber(int pallet, int job, int line, int& found) {
    JobRowsReader stmt(
        "select Code, Syntax_Item, Value_1 from Jobs where Pallet_Number = ? and Job_Number = ? "
        "and Line_Number < ? order by Line_Number desc",
        pallet, job, line);
    const auto text = [](const store::Value& v) { return v.isText() ? v.text() : std::string(); };
    found = -1;
    while (stmt.step()) {
        const store::Value code = stmt.column(0);
        const store::Value item = stmt.column(1);
        const store::Value value = stmt.column(2);
        if (!(code.isText() || code.isNull()) || !(item.isInteger() || item.isNull()) ||
            !(value.isText() || value.isNull()))
            return false;
        syntax().findNearest(
            {text(code), item.isInteger() ? static_cast<int>(item.integer()) : 0, ""});
        if (syntax().fieldByName(schema::Value_Type_1).asInteger() == RunningNumberType) {
            found = common::strToIntDef(text(value), 0);
            return true;
        }
    }
    return true;
}

void setPageCaption(QTabWidget* pages, QWidget* page, const char* caption) {
    pages->setTabText(pages->indexOf(page), caption);
}

// The workpiece list entry at a list index; a missing one is a list index error.
const TWorkpieceRange& workpieceAt(const std::vector<TWorkpieceRange>& list, int index) {
    if (index < 0 || index >= static_cast<int>(list.size()))
        throw std::out_of_range("List index out of bounds (" + std::to_string(index) +
                                "): the workpiece list has " + std::to_string(list.size()) +
                                " entries");
    return list[static_cast<std::size_t>(index)];
}

// The entry of the workpiece list for a line; nullptr when there is none.
const TWorkpieceRange* workpieceOfLine(const std::vector<TWorkpieceRange>& list, int line) {
    const auto it = std::find_if(list.begin(), list.end(),
                                 [line](const TWorkpieceRange& w) { return w.Line == line; });
    return it == list.end() ? nullptr : &*it;
}

bool isLastSection(const QTreeWidgetItem* node) {
    return tree::NodeLevel(node) == 0 && !tree::NextSibling(node);
}

// The part of a line by the current Syntax row's Type: 1 and 3 from the mask and the value
// boxes, 2 and 4 the Syntax text, any other type the column `other`.
std::string composePart(TdlgJob& form, int type, bool save, const char* other = schema::Syntax_) {
    if (type == 1 || type == 3)
        return form.ComposeScriptLine(save);
    if (type == 2 || type == 4)
        return form.ComposeSyntaxLine(save);
    return syntax().fieldByName(other).asString();
}

} // namespace

void TdlgJob::SyncJobRow(QTreeWidgetItem* Node) {
    auto& table = jobs();
    if (!table.active() || !SelectedNode())
        return;
    if (!Node)
        Node = SelectedNode();
    const dialogs::EventsGuard<bool> quiet(FEventsEnabled, false, FEventsEnabled);
    const int index = tree::AbsoluteIndex(Node);
    if (index != jobInt(schema::Line_Number))
        table.findNearest({FPalletNumber, FJobNumber, index});
}

void TdlgJob::LocateSyntaxRow(const std::string& Code, int Level, const std::string& ParentCode) {
    auto& table = syntax();
    table.setFiltered(false);
    if (Level == 2) {
        std::string parent = ParentCode;
        if (parent.empty() && SelectedNode() && SelectedNode()->parent())
            parent = tree::NodeText(SelectedNode()->parent()).toStdString();
        table.setFilter(common::format("Command = 'ALL' or Command = '%s'", {parent}));
        table.setFiltered(true);
    }
    while (!table.eof() && table.fieldByName(schema::Code).asString() != Code)
        table.next();
    if (table.eof())
        ReportInputError("JOB_S0035");
}

void TdlgJob::ClearSyntaxList() {
    lstSyntax->clear();
    for (QLabel* mark : textDefSyn)
        mark->setText("");
}

void TdlgJob::ShowItemValues() {
    ClearSyntaxList();
    auto& table = syntax();
    do {
        lstSyntax->addItem(QString::fromStdString(table.fieldByName(schema::Syntax_).asString()));
        table.next();
    } while (!table.eof() && table.fieldByName(schema::Code).asString() == FCurrentCode);
    pnlEditBoxes->setVisible(true);
    setPageCaption(pageValues, tabValues, "Item Values");
}

void TdlgJob::ShowItemSelection() {
    ClearSyntaxList();
    auto& table = syntax();
    int top = FItemTop;
    for (int n = 1; n <= 6; ++n) {
        QRadioButton* radio = RadioItem(n);
        QLabel* label = ItemLabel(n);
        if (table.eof() || table.fieldByName(schema::Code).asString() != FCurrentCode) {
            radio->setVisible(false);
            label->setVisible(false);
            continue;
        }
        const QString text = QString::fromStdString(table.fieldByName(schema::Syntax_).asString());
        radio->setVisible(true);
        radio->setToolTip(text);
        label->setVisible(true);
        label->setText(QString::fromStdString(table.fieldByName(schema::Description).asString()));
        radio->move(radio->x(), top);
        label->move(label->x(), top);
        // A fixed width with word wrap: a long description grows the label downward.
        label->setWordWrap(true);
        const int height = label->heightForWidth(FItemWidth);
        label->resize(FItemWidth, height > 0 ? height : label->sizeHint().height());
        top += label->height() + 10;
        lstSyntax->addItem(text);
        table.next();
    }
    {
        // The page's own set-up ticks items 1 to 3 only; others follow from lstSyntax.
        const dialogs::EventsGuard<bool> quiet(FEventsEnabled, false, true);
        const int item = jobInt(schema::Syntax_Item);
        if (item >= 1 && item <= 3)
            RadioItem(item)->setChecked(true);
    }
    pnlRadioButtons->setVisible(true);
    setPageCaption(pageValues, tabValues, "Item Selection");
}

void TdlgJob::FillValueField(QLabel* Label, dialogs::TDBEdit* Edit, bool LoadDefault) {
    const int k = Tag(Edit);
    const std::string column = schema::ValueColumn(k);
    const int valueType = syntax().fieldByName(schema::ValueTypeColumn(k)).asInteger();
    auto& types = DM().tableValueType;
    types.findNearest({valueType});
    const int kind = types.fieldByName(schema::Type).asInteger();
    const QString description =
        QString::fromStdString(types.fieldByName(schema::Description).asString());

    if (kind == 0) {
        Label->setVisible(false);
        Edit->setVisible(false);
        Edit->setText("");
        return;
    }
    switch (kind) {
    case 1:
    case 2:
    case 7:
        Edit->resize(49, Edit->height());
        break;
    case 3:
        Edit->resize(99, Edit->height());
        break;
    case 8:
        break;
    default:
        Edit->resize(243, Edit->height());
        break;
    }

    if (kind == 8) {
        Label->setVisible(false);
        Edit->setVisible(false);
        chkOption->setText(description);
        chkOption->setVisible(true);
        SetTag(chkOption, k);
        chkOption->move(chkOption->x(), Edit->y());
        chkOption->setChecked(jobText(column) == "1");
    } else {
        Label->setVisible(true);
        Edit->setVisible(true);
        Label->setText(description);
        if (LoadDefault || Edit->text().isEmpty()) {
            std::string value = types.fieldByName(schema::Default).asString();
            ExpandProgramToken(value);
            storeJobField(column, value);
        }
        if (kind == 6) {
            btnFilename->move(btnFilename->x(), Edit->y() + 2);
            btnFilename->setVisible(true);
            SetTag(btnFilename, k);
        }
    }

    // Carry-over: a value type the last shown syntax had keeps its value.
    for (std::size_t i = 0; i < FSavedValueTypes.size(); ++i) {
        if (FSavedValueTypes[i] != valueType || i >= FSavedValues.size())
            continue;
        storeJobField(column, FSavedValues[i]);
        if (kind == 8)
            chkOption->setChecked(Edit->text() == "1");
        break;
    }
}

void TdlgJob::ComposeCommandLine() {
    if (FWriting)
        return;
    QTreeWidgetItem* selected = SelectedNode();
    if (!selected)
        return;
    QTreeWidgetItem* node = tree::NodeLevel(selected) == 2 ? selected->parent() : selected;
    std::string line;
    const SyntaxKey saved = currentSyntaxKey();
    auto& table = syntax();

    SyncJobRow(node);
    seekRowSyntax();
    bool current = table.fieldByName(schema::Code).asString() == FCurrentCode;
    const int type = table.fieldByName(schema::Type).asInteger();
    const bool closed = type == 3 || type == 4;
    line = composePart(*this, type, current);

    const std::string nodeText = tree::NodeText(node).toStdString();
    for (int i = 0; i < node->childCount(); ++i) {
        QTreeWidgetItem* child = node->child(i);
        SyncJobRow(child);
        table.findNearest({jobText(schema::Code), jobInt(schema::Syntax_Item), nodeText});
        current = table.fieldByName(schema::Code).asString() == FCurrentCode;
        if (closed) {
            tree::SetStateIndex(child, 1);
        } else if (jobInt(schema::State) == 2) {
            tree::SetStateIndex(child, 2);
            // The command's type decides, not that of the child's own syntax.
            line += composePart(*this, type, current);
        }
    }

    SyncJobRow(node);
    StoreScriptLine(line);
    for (int i = 0; i < node->childCount(); ++i) {
        SyncJobRow(node->child(i));
        StoreScriptLine(line);
    }
    seekSyntax(saved);
    SyncJobRow(nullptr);
}

bool TdlgJob::IsLineContinued() {
    if (jobInt(schema::Node_Level) == 0)
        return false;
    seekRowSyntax();
    const int count = CountFormatSpecs(syntax().fieldByName(schema::Mask).asString(), false);
    // The value after the mask's own values is the flag; a seventh column does not exist.
    return jobText("Value_" + std::to_string(count + 1)) == "1";
}

void TdlgJob::ComposeJoinedLine() {
    QTreeWidgetItem* selected = SelectedNode();
    if (!selected || tree::NodeLevel(selected) == 0 || !tree::NextSibling(selected) ||
        FCurrentCode == "M98" || FCurrentCode == "G65" || FWriting)
        return;
    const dialogs::EventsGuard<bool> quiet(FEventsEnabled, false, true);
    std::string line;
    const SyntaxKey saved = currentSyntaxKey();
    auto& table = jobs();

    // Back to the first row of the chain: the first row before that is not continued, plus one.
    // The rows before are looked at past the cursor, which moves only when the chain starts
    // earlier.
    SyncJobRow(selected);
    const int selectedLine = jobInt(schema::Line_Number);
    int firstLine = selectedLine;
    while (firstLine > 0 && rowContinued(FPalletNumber, FJobNumber, firstLine - 1))
        --firstLine;
    if (firstLine != selectedLine)
        table.findNearest({FPalletNumber, FJobNumber, firstLine});
    const store::Bookmark first = table.getBookmark();

    for (;;) {
        seekRowSyntax();
        const int type = syntax().fieldByName(schema::Type).asInteger();
        if (!line.empty())
            line += ' ';
        line += composePart(*this, type, true, schema::Mask);
        if (!IsLineContinued())
            break;
        table.next();
        if (table.eof())
            break;
    }
    if (line == EmptyJoinedComment)
        line.clear();

    table.gotoBookmark(first);
    for (;;) {
        StoreScriptLine(line);
        if (!IsLineContinued())
            break;
        table.next();
        if (table.eof())
            break;
    }
    seekSyntax(saved);
    SyncJobRow(selected);
}

void TdlgJob::NumberSequenceValue() {
    if (FWriting)
        return;
    const dialogs::EventsGuard<bool> quiet(FEventsEnabled, false, true);
    auto& table = jobs();
    if (syntax().fieldByName(schema::Value_Type_1).asInteger() != RunningNumberType ||
        !jobText(schema::Value_1).empty())
        return;
    // Backward from the row before this one: the nearest earlier running number. The rows are
    // read past the job's cursor while their values are plain; the cursor walks otherwise.
    table.checkBrowseMode();
    int found = -1;
    if (!earlierRunningNumber(FPalletNumber, FJobNumber, jobInt(schema::Line_Number), found)) {
        found = -1;
        for (table.prior(); !table.bof(); table.prior()) {
            syntax().findNearest({jobText(schema::Code), jobInt(schema::Syntax_Item), ""});
            if (syntax().fieldByName(schema::Value_Type_1).asInteger() == RunningNumberType) {
                found = common::strToIntDef(jobText(schema::Value_1), 0);
                break;
            }
        }
    }
    const int number = found == -1 ? 1 : (found == 0 ? 0 : found + 1);
    SyncJobRow(nullptr);
    seekRowSyntax();
    if (number >= 1)
        storeJobField(schema::Value_1, std::to_string(number));
}

std::string TdlgJob::ScriptViewLine() {
    auto& table = jobs();
    const int level = jobInt(schema::Node_Level);
    table.next();
    const int nextLevel = jobInt(schema::Node_Level);
    // At the last row the step forward fails and the walk ends there.
    if (!table.eof())
        table.prior();

    if (level < 2 && nextLevel < 2)
        return jobText(schema::Script_Line);
    const std::string code = jobText(schema::Code);
    LocateSyntaxRow(code, level, FScriptParentCode);
    seekRowSyntax();
    if (level == 1 && nextLevel == 2)
        FScriptParentCode = code;
    const std::string part =
        composePart(*this, syntax().fieldByName(schema::Type).asInteger(), false);
    if (level == 2)
        return jobInt(schema::State) == 1 ? std::string() : "  " + part;
    return part;
}

void TdlgJob::RefreshScriptListLine() {
    if (pageScript->currentWidget() != tabScript)
        return;
    // Code changes the list's rows and item index without running its handler.
    const QSignalBlocker blocker(lstScript);
    std::unique_ptr<QListWidgetItem> removed(lstScript->takeItem(FLastScriptIndex));

    syntax().findNearest({FCurrentCode, lstSyntax->currentRow() + 1, FParentCode});
    QTreeWidgetItem* node = SelectedNode();
    const int level = tree::NodeLevel(node);
    const int type = syntax().fieldByName(schema::Type).asInteger();
    std::string text;
    if (node && level == 2)
        text = tree::StateIndex(node) == 1 ? std::string() : "  " + composePart(*this, type, false);
    else if (node && level == 1 && node->childCount() > 0)
        text = composePart(*this, type, false);
    else
        text = jobText(schema::Script_Line);

    // The nearest non-empty line above, or line 0: a line like it shows as an empty one.
    int above = std::max(FLastScriptIndex - 1, 0);
    while (above > 0 && lstScript->item(above) && lstScript->item(above)->text().isEmpty())
        --above;
    const QString previous = lstScript->item(above) ? lstScript->item(above)->text() : QString();
    const QString shown = QString::fromStdString(text);
    lstScript->insertItem(FLastScriptIndex, previous == shown ? QString() : shown);
    lstScript->setCurrentRow(FLastScriptIndex);
}

void TdlgJob::SetNodeImage(QTreeWidgetItem* Node, int Image, bool Force) {
    if (FWriting)
        return;
    if (Image == 1)
        btnNext->setEnabled(true);
    if (!Node)
        return;
    // A command with sub-items takes its status only from them.
    if (Node->childCount() > 0 && !Force)
        return;
    SyncJobRow(Node);
    storeJobField(schema::Image, Image);
    tree::SetImageIndex(Node, Image);
    QTreeWidgetItem* parent = Node->parent();
    if (!parent) {
        SyncJobRow(Node);
        tvwTemplate->viewport()->update();
        return;
    }
    bool allDone = true;
    for (int i = 0; i < parent->childCount(); ++i)
        allDone = allDone && tree::ImageIndex(parent->child(i)) == 2;
    SetNodeImage(parent, allDone ? 2 : 1, true);
    SyncJobRow(Node);
    tvwTemplate->viewport()->update();
}

std::string TdlgJob::WorkpieceRangeText(QTreeWidgetItem* Node) {
    if (!Node || tree::AbsoluteIndex(Node) == 0 || isLastSection(Node))
        return {};
    const TWorkpieceRange* entry = workpieceOfLine(FWorkpieces, tree::AbsoluteIndex(Node));
    if (!entry)
        return {};
    if (entry->RangeEnd == 0)
        entry = &workpieceAt(FWorkpieces, entry->RangeStart - 1);
    if (entry->FirstPiece == entry->RangeStart && entry->RangeStart == entry->RangeEnd)
        return "Unique Workpiece";
    return "(" + std::to_string(entry->RangeStart) + " - " + std::to_string(entry->RangeEnd) + ")";
}

void TdlgJob::UpdateCopyPasteButtons() {
    btnCopy->setEnabled(true);
    btnPaste->setEnabled(false);
    QTreeWidgetItem* node = SelectedNode();
    if (!node)
        return;
    const int level = tree::NodeLevel(node);
    if (level == 0 && (tree::AbsoluteIndex(node) == 0 || isLastSection(node))) {
        btnCopy->setEnabled(false);
        btnSkipDown->setEnabled(false);
        return;
    }
    btnSkipDown->setEnabled(FInfo.AllowSkipDown && level == 0);
    if (!FCopiedNode || tree::NodeLevel(FCopiedNode) != level)
        return;
    if (level > 0) {
        auto& data = DM().tableTemplateData;
        data.findNearest({FTemplateId, tree::AbsoluteIndex(FCopiedNode)});
        btnPaste->setEnabled(data.fieldByName(schema::Code).asString() == FCurrentCode);
        return;
    }
    // Sections compare the range starts of their entries; the list has no writer, so the
    // lookup fails with a list index error.
    const auto rangeStart = [this](QTreeWidgetItem* section) {
        const int line = tree::AbsoluteIndex(section);
        if (const TWorkpieceRange* entry = workpieceOfLine(FWorkpieces, line))
            return entry->RangeStart;
        throw std::out_of_range("List index out of bounds: the workpiece list has no entry "
                                "for the section on line " +
                                std::to_string(line));
    };
    btnPaste->setEnabled(rangeStart(FCopiedNode) == rangeStart(node));
}
