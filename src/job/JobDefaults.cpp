// Default lookups. Global defaults live in ValueType.Default and Commands.Default_Syntax, local
// ones (for the current template) in TemplateDefaults, keyed by a value type id or by a code.
// The global syntax counts from 0 in the data, the local one from 1; both are answered from 1.
#include "job/Job.h"

#include "common/Format.h"
#include "common/Services.h"
#include "job/SyntaxItemDelegate.h"
#include "store/DataMod.h"

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QMenu>

namespace {

// The current template: the first field of the current TemplateName row.
int currentTemplateId() { return DM().tableTemplateName.fields(0).asInteger(); }

// Filters TemplateDefaults (off, text, on); true with exactly one row, which is then current.
bool findLocalDefault(const std::string& filter) {
    auto& defaults = DM().tableTemplateDefaults;
    defaults.refilter(filter);
    return defaults.recordCount() == 1;
}

void setBold(QWidget* widget, bool bold) {
    if (widget->font().bold() == bold)
        return;
    QFont font = widget->font();
    font.setBold(bold);
    widget->setFont(font);
}

} // namespace

int TdlgJob::GetLocalDefaultSyntax(const std::string& Code) {
    if (!findLocalDefault(
            common::format("Template_ID = %d and Value_ID = '%s'", {currentTemplateId(), Code})))
        return 0;
    return DM().tableTemplateDefaults.fieldByName(schema::Default).asInteger();
}

int TdlgJob::GetGlobalDefaultSyntax(const std::string& Code) {
    // A nearest seek: a code that is missing reads the row after it.
    auto& commands = DM().tableCommands;
    commands.findNearest({Code});
    auto field = commands.fieldByName(schema::Default_Syntax);
    if (field.asString().empty())
        return 0;
    return field.asInteger() + 1;
}

int TdlgJob::GetDefaultSyntax(const std::string& Code) {
    const int local = GetLocalDefaultSyntax(Code);
    return local != 0 ? local : GetGlobalDefaultSyntax(Code);
}

void TdlgJob::GetGlobalDefaultValue(int ValueId, std::string& Value) {
    Value.clear();
    auto query = DM().NewLocalQuery();
    query->setSql("select [Default] from ValueType where Value_ID = " + std::to_string(ValueId));
    query->open();
    if (!query->isEmpty())
        Value = query->fields(0).asString();
}

void TdlgJob::GetDefaultValue(int ValueId, std::string& Value) {
    GetGlobalDefaultValue(ValueId, Value);
    if (findLocalDefault(
            common::format("Template_ID = %d and Value_ID = '%d'", {currentTemplateId(), ValueId})))
        Value = DM().tableTemplateDefaults.fieldByName(schema::Default).asString();
}

void TdlgJob::UpdateDefaultMark(dialogs::TDBEdit* Edit, QLabel* Label) {
    const int k = Tag(Edit);
    const std::string text = Edit->text().toStdString();
    const auto valueTypeField = DM().tableSyntax.fieldByName(schema::ValueTypeColumn(k));
    const std::string valueType = valueTypeField.asString();
    // The check box shares the marker of the value it stands for.
    const auto mark = [&](bool bold, const char* marker, const char* hint) {
        setBold(Edit, bold);
        if (Tag(chkOption) == k)
            setBold(chkOption, bold);
        Label->setText(marker);
        Label->setToolTip(hint);
    };
    if (findLocalDefault(common::format("Template_ID = %d and Value_ID = '%s'",
                                        {currentTemplateId(), valueType})) &&
        DM().tableTemplateDefaults.fieldByName(schema::Default).asString() == text) {
        mark(true, "L", "Local Default");
        return;
    }
    std::string global;
    GetGlobalDefaultValue(valueTypeField.asInteger(), global);
    if (!text.empty() && text == global) {
        mark(true, "G", "Global Default");
        return;
    }
    mark(false, "", "");
}

void TdlgJob::SetDefaultSyntaxMark(int SyntaxNumber, const std::string& Marker) {
    if (SyntaxNumber >= 1 && SyntaxNumber <= static_cast<int>(textDefSyn.size()))
        textDefSyn[static_cast<std::size_t>(SyntaxNumber - 1)]->setText(
            QString::fromStdString(Marker));
}

namespace {

// Keeps the filter of TemplateDefaults across a lookup: the menu items read the filter that the
// last marker left, and drawing the list must not change it.
class KeepDefaultsFilter {
public:
    KeepDefaultsFilter()
        : filter_(DM().tableTemplateDefaults.filter()),
          filtered_(DM().tableTemplateDefaults.filtered()) {}
    ~KeepDefaultsFilter() {
        auto& defaults = DM().tableTemplateDefaults;
        if (defaults.filter() == filter_ && defaults.filtered() == filtered_)
            return;
        try {
            if (filtered_) {
                defaults.refilter(filter_);
            } else {
                defaults.setFiltered(false);
                defaults.setFilter(filter_);
            }
        } catch (...) {
            // A filter that was valid before cannot fail now; a destructor throws nothing.
        }
    }
    KeepDefaultsFilter(const KeepDefaultsFilter&) = delete;
    KeepDefaultsFilter& operator=(const KeepDefaultsFilter&) = delete;

private:
    std::string filter_;
    bool filtered_;
};

void runLocal(const std::string& sql) {
    auto query = DM().NewLocalQuery();
    query->setSql(sql);
    query->execSQL();
}

} // namespace

void TdlgJob::SetGlobalDefaultValue(dialogs::TDBEdit* Edit, QLabel* Label, int ValueId) {
    // A browsed file can become the default only from the default input directory.
    if (!DM().tableJobs.fieldByName(schema::Path).asString().empty() &&
        !ValidateValue(Edit, ValueId, true)) {
        common::ui().beep();
        common::ui().message(common::MessageKind::Error,
                             "To use this file as the defaut you must copy it into your default "
                             "input directory.",
                             common::MessageButtons::Ok);
        return;
    }
    // The text goes in as it stands: a number works, other text is the engine's error.
    runLocal(common::format("update ValueType set [Default] = %s where Value_ID = %d",
                            {Edit->text().toStdString(), ValueId}));
    UpdateDefaultMark(Edit, Label);
}

void TdlgJob::LoadGlobalDefaultValue(int ValueNumber) {
    auto& jobs = DM().tableJobs;
    if (jobs.state() != store::DatasetState::Edit)
        jobs.edit();
    std::string value;
    GetGlobalDefaultValue(
        DM().tableSyntax.fieldByName(schema::ValueTypeColumn(ValueNumber)).asInteger(), value);
    jobs.fieldByName(schema::ValueColumn(ValueNumber)).setAsString(value);
    if (ValueNumber == 1)
        return;
    // Boxes 2 to 6 then get the routine's own result, which stays empty; typed into the open
    // row, the empty text reaches the row and the line.
    const std::string result;
    if (jobs.state() != store::DatasetState::Edit)
        jobs.edit();
    ValueEdit(ValueNumber)->setText(QString::fromStdString(result));
}

void TdlgJob::SetLocalDefaultValue(bool Clear) {
    const int k = Tag(mnuDefaultValue);
    dialogs::TDBEdit* box = ValueEdit(k); // the menu's tag names a box 1..6
    const std::string value = DM().tableJobs.fieldByName(schema::ValueColumn(k)).asString();
    const std::string valueId = DM().tableSyntax.fieldByName(schema::ValueTypeColumn(k)).asString();
    const std::string templateId = std::to_string(currentTemplateId());
    {
        // Both statements or neither.
        store::Transaction transaction(DM().LocalDatabase);
        runLocal("delete from TemplateDefaults where Template_ID = " + templateId +
                 " and Value_ID = '" + valueId + "'");
        if (!Clear)
            runLocal("insert into TemplateDefaults (Template_ID, Value_ID, Default) values(" +
                     templateId + ", '" + valueId + "', '" + value + "')");
        transaction.commit();
    }
    UpdateDefaultMark(box, DefaultLabel(k));
}

void TdlgJob::SetLocalDefaultSyntax(bool Clear) {
    const std::string templateId = std::to_string(currentTemplateId());
    {
        store::Transaction transaction(DM().LocalDatabase);
        runLocal("delete from TemplateDefaults where Template_ID = " + templateId +
                 " and Value_ID = '" + FCurrentCode + "'");
        if (!Clear)
            runLocal("insert into TemplateDefaults (Template_ID, Value_ID, Default) values(" +
                     templateId + ", '" + FCurrentCode + "', '" +
                     std::to_string(lstSyntax->currentRow() + 1) + "')");
        transaction.commit();
    }
    lstSyntax->viewport()->update();
}

bool TdlgJob::lstSyntaxDrawItem(int Index) {
    auto& commands = DM().tableCommands;
    if (!FCurrentCode.empty())
        commands.findNearest({FCurrentCode});
    const auto global = commands.fieldByName(schema::Default_Syntax);
    bool isDefault = !global.asString().empty() && global.asInteger() == Index;
    if (!isDefault) {
        const KeepDefaultsFilter keep;
        isDefault = GetLocalDefaultSyntax(FCurrentCode) - 1 == Index;
    }
    // The heading above the value page turns into the code from then on.
    if (isDefault)
        txtValues->setText(QString::fromStdString(commands.fieldByName(schema::Code).asString()));
    return isDefault;
}

void TdlgJob::mnuDefaultValuePopup() {
    // The filter is the one the last marker left, not necessarily that of the box clicked.
    const bool one = DM().tableTemplateDefaults.recordCount() == 1;
    itemLoadLocal->setEnabled(one);
    itemClearLocal->setEnabled(one);
}

void TdlgJob::itemSetGlobalClick() {
    const int k = Tag(mnuDefaultValue);
    SetGlobalDefaultValue(ValueEdit(k), DefaultLabel(k),
                          DM().tableSyntax.fieldByName(schema::ValueTypeColumn(k)).asInteger());
}

void TdlgJob::itemLoadGlobalClick() {
    const int k = Tag(mnuDefaultValue);
    LoadGlobalDefaultValue(k);
    UpdateDefaultMark(ValueEdit(k), DefaultLabel(k));
}

void TdlgJob::itemSetLocalClick() { SetLocalDefaultValue(false); }

void TdlgJob::itemLoadLocalClick() {
    const int k = Tag(mnuDefaultValue);
    QLabel* mark = DefaultLabel(k);
    auto& jobs = DM().tableJobs;
    if (jobs.state() != store::DatasetState::Edit)
        jobs.edit();
    // Whatever row the filter of the last marker stands on.
    jobs.fieldByName(schema::ValueColumn(k))
        .setAsString(DM().tableTemplateDefaults.fieldByName(schema::Default).asString());
    mark->setText("L");
    mark->setToolTip("Local Default");
}

void TdlgJob::itemClearLocalClick() { SetLocalDefaultValue(true); }

void TdlgJob::itemSetGlobalDefSynClick() {
    auto& commands = DM().tableCommands;
    commands.findNearest({FCurrentCode});
    commands.edit();
    commands.fieldByName(schema::Default_Syntax).setAsInteger(lstSyntax->currentRow());
    commands.post();
    // The rows are drawn anew; the labels wait for the next selection.
    lstSyntax->viewport()->update();
}

void TdlgJob::itemSetLocalDefSynClick() {
    SetLocalDefaultSyntax(false);
    for (QLabel* mark : textDefSyn)
        if (mark->text() == "L")
            mark->setText("");
    SetDefaultSyntaxMark(lstSyntax->currentRow() + 1, "L");
}

void TdlgJob::itemClearLocalDefSynClick() {
    SetLocalDefaultSyntax(true);
    // Whatever the label held, a "G" too.
    SetDefaultSyntaxMark(lstSyntax->currentRow() + 1, "");
}

void TdlgJob::connectDefaultMenus() {
    // A right click on a value box, the option or the syntax list opens its menu.
    for (int n = 1; n <= 6; ++n) {
        dialogs::TDBEdit* box = ValueEdit(n);
        connect(box, &QWidget::customContextMenuRequested, this,
                [this, box](const QPoint& at) { mnuDefaultValue->popup(box->mapToGlobal(at)); });
    }
    connect(chkOption, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at) { mnuDefaultValue->popup(chkOption->mapToGlobal(at)); });
    connect(lstSyntax, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        mnuDefaultSyntax->popup(lstSyntax->viewport()->mapToGlobal(at));
    });
    connect(mnuDefaultValue, &QMenu::aboutToShow, this,
            [this] { Event([&] { mnuDefaultValuePopup(); }); });
    using Self = TdlgJob;
    const auto item = [this](QAction* action, void (Self::*handler)()) {
        connect(action, &QAction::triggered, this,
                [this, handler] { Event([&] { (this->*handler)(); }); });
    };
    item(itemSetGlobal, &Self::itemSetGlobalClick);
    item(itemLoadGlobal, &Self::itemLoadGlobalClick);
    item(itemSetLocal, &Self::itemSetLocalClick);
    item(itemLoadLocal, &Self::itemLoadLocalClick);
    item(itemClearLocal, &Self::itemClearLocalClick);
    item(itemSetGlobalDefSyn, &Self::itemSetGlobalDefSynClick);
    item(itemSetLocalDefSyn, &Self::itemSetLocalDefSynClick);
    item(itemClearLocalDefSyn, &Self::itemClearLocalDefSynClick);
    // The owner-drawn rows of the syntax list.
    lstSyntax->setItemDelegate(new job::SyntaxItemDelegate(
        [this](int row) {
            bool bold = false;
            Event([&] { bold = lstSyntaxDrawItem(row); });
            return bold;
        },
        lstSyntax));
}
