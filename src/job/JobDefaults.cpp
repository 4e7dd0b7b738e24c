// Default lookups. Global defaults live in ValueType.Default and Commands.Default_Syntax, local
// ones (for the current template) in TemplateDefaults, keyed by a value type id or by a code.
// The global syntax counts from 0 in the data, the local one from 1; both are answered from 1.
#include "job/Job.h"

#include "common/Format.h"
#include "store/DataMod.h"

#include <QCheckBox>
#include <QListWidget>
#include <QMenu>
#include <QLabel>

namespace {

// The current template: the first field of the current TemplateName row.
int currentTemplateId() { return DM().tableTemplateName.fields(0).asInteger(); }

// Filters TemplateDefaults (off, text, on); true with exactly one row, which is then current.
bool findLocalDefault(const std::string& filter) {
    auto& defaults = DM().tableTemplateDefaults;
    defaults.setFiltered(false);
    defaults.setFilter(filter);
    defaults.setFiltered(true);
    return defaults.recordCount() == 1;
}

void setBold(QWidget* widget, bool bold) {
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

void TdlgJob::connectDefaultMenus() {
    // A right click on a value box, the option or the syntax list opens its menu.
    for (int n = 1; n <= 6; ++n) {
        dialogs::TDBEdit* box = ValueEdit(n);
        connect(box, &QWidget::customContextMenuRequested, this,
                [this, box](const QPoint& at) { mnuDefaultValue->popup(box->mapToGlobal(at)); });
    }
    connect(chkOption, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        mnuDefaultValue->popup(chkOption->mapToGlobal(at));
    });
    connect(lstSyntax, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        mnuDefaultSyntax->popup(lstSyntax->viewport()->mapToGlobal(at));
    });
}
