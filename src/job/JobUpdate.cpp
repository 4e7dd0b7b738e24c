// Job update: a job built from an older version of its template replays the template's journal on
// its own lines, so the new structure arrives and the operator's values stay. The line moves run
// on a picture of the job in memory and are written back at once, in one transaction.
#include "job/Job.h"

#include "common/Convert.h"
#include "common/Format.h"
#include "job/JobReplay.h"
#include "store/DataMod.h"

namespace {

void filterOnTemplate(store::Table& table, int templateId) {
    table.setFiltered(false);
    table.setFilter(common::format("Template_ID = %d", {templateId}));
    table.setFiltered(true);
}

} // namespace

void TdlgJob::UpdateJobFromJournal(int JobVersion) {
    int newVersion = JobVersion;
    // Every replayed ADD counts as AppendJobLine counts, at the moment it is replayed: a workpiece
    // line that a later row deletes still takes its number from the counter.
    int counter = FWorkpieceCounter;
    const int templateId = DM().tableTemplateName.fields(0).asInteger();
    filterOnTemplate(DM().tableTemplateData, templateId);
    auto& journal = DM().tableTemplateVersion;
    filterOnTemplate(journal, templateId);
    RunLineChanges(
        [&](job::JobLineReplay& replay) {
            for (journal.first(); !journal.eof(); journal.next()) {
                const int version = journal.fieldByName(schema::Version).asInteger();
                if (version <= JobVersion)
                    continue;
                newVersion = version;
                const int item = journal.fieldByName(schema::Item).asInteger();
                const std::string action = journal.fieldByName(schema::Action).asString();
                const std::string value = journal.fieldByName(schema::Value).asString();
                const int number = journal.fieldByName(schema::Number).asInteger();
                if (action == "ADD") {
                    const int added = replay.InsertJobLine(item, value, number);
                    if (job::IsSectionLine(value, number)) {
                        counter = job::CountSectionLine(value, counter);
                        if (value != schema::HeaderCode && value != schema::FooterCode &&
                            value != schema::PlaceholderCode)
                            replay.setWorkpiece(added, counter);
                    }
                } else if (action == "DEL") {
                    replay.DeleteJobLines(item, number);
                } else if (action == "MOV") {
                    const auto to = common::tryStrToInt(value);
                    if (!to)
                        throw JobError("'" + value + "' is not a valid integer value");
                    replay.MoveJobLines(item, *to, number);
                }
            }
        },
        [&] {
            FWorkpieceCounter = counter;
            SetJobHeaderValue(schema::Value_2, std::to_string(newVersion));
        });
}

void TdlgJob::SetJobHeaderValue(const std::string& Column, const std::string& Value) {
    auto query = DM().NewLocalQuery();
    query->setSql(common::format("update Jobs set %s = '%s' where Pallet_Number = %d and "
                                 "Job_Number = %d and Line_Number = 0",
                                 {Column, Value, FPalletNumber, FJobNumber}));
    query->execSQL();
}

void TdlgJob::InsertJobLine(int LineNumber, const std::string& Code, int NodeLevel) {
    RunLineChanges(
        [&](job::JobLineReplay& replay) { replay.InsertJobLine(LineNumber, Code, NodeLevel); });
}

void TdlgJob::DeleteJobLines(int LineNumber, int Count) {
    RunLineChanges([&](job::JobLineReplay& replay) { replay.DeleteJobLines(LineNumber, Count); });
}

void TdlgJob::MoveJobLines(int FromLine, int ToLine, int Count) {
    RunLineChanges(
        [&](job::JobLineReplay& replay) { replay.MoveJobLines(FromLine, ToLine, Count); });
}

void TdlgJob::RunLineChanges(const std::function<void(job::JobLineReplay&)>& changes,
                             const std::function<void()>& afterWrite) {
    BindDataControls();
    auto& jobs = DM().tableJobs;
    auto& db = DM().LocalDatabase;
    // A pending edit of a line is settled before the lines are read.
    if (jobs.state() == store::DatasetState::Edit)
        jobs.post();
    try {
        store::Transaction transaction(db);
        const auto original = job::loadJobLines(db, FPalletNumber, FJobNumber);
        job::JobLineReplay replay(original);
        changes(replay);
        // New lines are made as an insert makes them: default syntax and values, composed.
        job::writeJobLines(db, FPalletNumber, FJobNumber, original, replay,
                           [&](int line, const job::CreatedLine& created) {
                               // A workpiece line takes the number it got when it was made.
                               if (created.workpiece > 0)
                                   FWorkpieceCounter = created.workpiece - 1;
                               AppendJobLine(line, created.code, false, created.level);
                           });
        if (afterWrite)
            afterWrite();
        transaction.commit();
    } catch (...) {
        if (jobs.state() == store::DatasetState::Edit)
            jobs.cancel();
        try {
            jobs.first();
        } catch (...) {
        }
        throw;
    }
    jobs.first();
}
