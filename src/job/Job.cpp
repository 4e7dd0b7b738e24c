#include "job/Job.h"

#include "common/Convert.h"
#include "common/Format.h"
#include "store/DataMod.h"

#include <QVBoxLayout>

#include <limits>

namespace {

// A key of the Jobs table is a 16-bit number; wrapping would silently address another job.
std::int16_t toInt16(std::int64_t value, const char* what) {
    if (value < std::numeric_limits<std::int16_t>::min() ||
        value > std::numeric_limits<std::int16_t>::max())
        throw JobError(std::string(what) + " " + std::to_string(value) +
                       " is outside -32768..32767");
    return static_cast<std::int16_t>(value);
}

} // namespace

TdlgJob::TdlgJob(QWidget* parent) : QDialog(parent) {
    setObjectName("dlgJob");
    setWindowTitle("Master Program Wizard");
    tvwTemplate = new tree::TTreeView(this);
    tvwTemplate->setObjectName("tvwTemplate");
    tvwTemplate->setHeaderHidden(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(tvwTemplate);
    dialogs::TDBEdit** boxes[] = {&dbeValue1, &dbeValue2, &dbeValue3,
                                  &dbeValue4, &dbeValue5, &dbeValue6};
    for (int n = 1; n <= 6; ++n) {
        auto* box = new dialogs::TDBEdit(this);
        box->setObjectName(QString("dbeValue%1").arg(n));
        layout->addWidget(box);
        *boxes[n - 1] = box;
    }
}

TdlgJob::~TdlgJob() = default;

void TdlgJob::SetWizardInfo(const TJobWizardInfo& Info) { FInfo = Info; }

void TdlgJob::TakeJobKeys() {
    const auto pallet = common::tryStrToInt(FInfo.PalletNumber);
    if (!pallet)
        throw JobError("Pallet number '" + FInfo.PalletNumber + "' is not a valid integer value");
    FPalletNumber = toInt16(*pallet, "Pallet number");
    FJobNumber = toInt16(FInfo.JobNumber, "Job number");
    FTemplateId = toInt16(FInfo.TemplateID, "Template id");
}

void TdlgJob::PrepareJob(const TJobWizardInfo& Info) {
    SetWizardInfo(Info);
    TakeJobKeys();
    BindDataControls();
    FilterJobTables();
}

void TdlgJob::BindDataControls() {
    if (FControlsBound)
        return;
    for (int n = 1; n <= 6; ++n) {
        ValueEdit(n)->setDataSource(&DM().sourceJobs);
        ValueEdit(n)->setDataField(schema::ValueColumn(n));
    }
    FControlsBound = true;
}

void TdlgJob::FilterJobTables() {
    auto& jobs = DM().tableJobs;
    jobs.setFiltered(false);
    jobs.setFilter(
        common::format("Pallet_Number = %d and Job_Number = %d", {FPalletNumber, FJobNumber}));
    jobs.setFiltered(true);
    auto& data = DM().tableTemplateData;
    data.setFiltered(false);
    data.setFilter(common::format("Template_ID = %d", {FTemplateId}));
    data.setFiltered(true);
}

dialogs::TDBEdit* TdlgJob::ValueEdit(int Number) const {
    switch (Number) {
    case 1:
        return dbeValue1;
    case 2:
        return dbeValue2;
    case 3:
        return dbeValue3;
    case 4:
        return dbeValue4;
    case 5:
        return dbeValue5;
    case 6:
        return dbeValue6;
    default:
        throw JobError("There is no value box " + std::to_string(Number));
    }
}

void TdlgJob::StoreScriptLine(const std::string& Line) {
    auto& jobs = DM().tableJobs;
    jobs.edit();
    jobs.fieldByName(schema::Script_Line).setAsString(Line);
    jobs.post();
}
