// The change journal and the two ends of an opening of the editor. Every structural edit writes
// its journal row at once under the working version; OK makes that version the template's.
#include "common/Format.h"
#include "common/Services.h"
#include "store/DataMod.h"
#include "template/Template.h"

std::int32_t TdlgTemplate::NextJournalSequence(std::int32_t templateId, std::int32_t version) {
    auto query = DM().NewLocalQuery();
    query->setSql(common::format("select coalesce(max(Sequence), 0) from TemplateVersion where "
                                 "Template_ID = %d and Version = %d",
                                 {templateId, version}));
    query->open();
    return query->fields(0).asInteger() + 1;
}

void TdlgTemplate::WriteJournal(std::int32_t sequence, int item, const std::string& action,
                                const std::string& value, int number) {
    DM().tableTemplateVersion.appendRecord(
        {FTemplateID, FVersion, sequence, item, action, value, number});
}

void TdlgTemplate::btnOKClick() {
    auto& names = DM().tableTemplateName;
    // The version and the rows change together, or neither does.
    store::Transaction transaction(DM().LocalDatabase);
    if (names.state() != store::DatasetState::Edit)
        names.edit();
    // The name typed goes into its column first: a change of another column refreshes the bound
    // controls from the row, which would drop the typed text.
    DM().sourceTemplateName.updateRecord();
    names.fieldByName(schema::Version).setAsInteger(FVersion);
    names.post();
    SaveTemplateTree();
    transaction.commit();
    FModified = false;
}

void TdlgTemplate::btnCancelClick() {
    if (FModified) {
        common::ui().beep();
        if (common::ui().message(common::MessageKind::Confirmation,
                                 "Are you sure you want to cancel all changes?",
                                 common::MessageButtons::YesNo) == common::ModalResult::No) {
            FModalResult = common::ModalResult::None;
            return;
        }
    }
    if (!FModified)
        return;
    FModified = false;
    auto& journal = DM().tableTemplateVersion;
    journal.findNearest({FTemplateID, FVersion});
    while (!journal.eof()) {
        // The template column is asked for as "Template"; the table names it Template_ID, so
        // this raises the field-not-found error before any row is deleted.
        if (journal.fieldByName("Template").asInteger() != FTemplateID ||
            journal.fieldByName(schema::Version).asInteger() != FVersion)
            break;
        journal.deleteRecord();
    }
}

bool TdlgTemplate::FormCloseQuery() {
    if (!FModified)
        return true;
    common::ui().beep();
    switch (common::ui().message(common::MessageKind::Warning,
                                 "Changes have not been saved.\r\nSave them now?",
                                 common::MessageButtons::YesNoCancel)) {
    case common::ModalResult::Cancel:
        return false;
    case common::ModalResult::Yes:
        btnOKClick();
        return true;
    default:
        FModified = false;
        btnCancelClick();
        return true;
    }
}
