// Checks of values and the one way of reporting a bad one.
#include "job/Job.h"

#include "common/Convert.h"
#include "common/FileNames.h"
#include "common/Services.h"
#include "job/FileSource.h"
#include "store/DataMod.h"

#include <QCheckBox>

#include <filesystem>
#include <system_error>

namespace {

// The wait for a copied file: up to 101 rounds of 50 milliseconds, about five seconds.
constexpr int WaitRounds = 101;
constexpr std::uint32_t WaitStep = 50;

// A file exists only as a regular file; a directory of that name does not count.
bool fileExists(const std::string& path) {
    std::error_code ec;
    return !path.empty() && std::filesystem::is_regular_file(path, ec);
}

} // namespace

void TdlgJob::ReportInputError(const std::string& Identifier) {
    // The identifier names the condition for a future table of texts; the operator reads one
    // fixed text for all of them.
    (void)Identifier;
    common::ui().beep();
    FStatusMessage = "Code)";
    RepaintStatusBar();
    FStopFlag = true;
}

bool TdlgJob::ValidateValue(dialogs::TDBEdit* Edit, int ValueType, bool CheckOnly) {
    if (ValueType > 9999)
        return true;
    const std::string text = Edit->text().toStdString();
    if (text.empty()) {
        ReportInputError("JOB_S0016");
        return false;
    }
    auto& types = DM().tableValueType;
    types.findNearest({ValueType});
    const int kind = types.fieldByName(schema::Type).asInteger();
    switch (kind) {
    case 1:
    case 2:
        // -5, 1.5 and abc fail alike.
        if (common::strToIntDef(text, -1) < 0) {
            ReportInputError("JOB_S0017");
            return false;
        }
        return true;
    case 3:
        if (!common::tryStrToFloat(text)) {
            ReportInputError("JOB_S0018");
            return false;
        }
        return true;
    case 4:
    case 5:
        return true;
    default:
        break;
    }

    // Every other kind goes on as a file; only a file name (kind 6) has paths to look at.
    auto& jobs = DM().tableJobs;
    std::string target;
    std::string source;
    std::string previous;
    if (kind == 6) {
        previous = jobs.fieldByName(schema::Path).asString();
        target = common::includeTrailingPathDelimiter(FInfo.LocalDirectory) +
                 common::extractFileName(previous);
        source = common::includeTrailingPathDelimiter(FInfo.InputDirectory) + text;
    }
    if (chkOption->isHidden() || !chkOption->isChecked())
        return true;

    if (!fileExists(target) || CheckOnly) {
        bool hasSource = fileExists(source);
        bool hasPrevious = fileExists(previous);
        if (CheckOnly)
            return hasSource;
        if (common::upperCase(source) == common::upperCase(previous))
            hasPrevious = false;
        if (hasSource && hasPrevious) {
            TdlgFileSource form(this);
            form.SetItems(source, previous);
            form.SetItemIndex(0);
            common::ui().showModal(&form);
            // Only the choice counts, not how the form was closed.
            if (form.ItemIndex() == 0) {
                hasPrevious = false;
                jobs.edit();
                jobs.fieldByName(schema::Path).setAsString("");
                jobs.post();
            } else {
                hasSource = false;
            }
        }
        // The copy's own result is not looked at: the wait decides.
        if (hasSource)
            common::platform().copyFile(source, target, false);
        else if (hasPrevious)
            common::platform().copyFile(previous, target, false);
    }

    bool arrived = false;
    for (int round = 0; round < WaitRounds && !arrived; ++round) {
        common::platform().sleep(WaitStep);
        arrived = fileExists(target);
    }
    if (!arrived) {
        ReportInputError("JOB_S0019");
        return false;
    }
    // A plain substring test: a name inside a longer one already listed is not added.
    const std::string name = common::extractFileName(target);
    if (FFileList.find(name) == std::string::npos) {
        if (!FFileList.empty())
            FFileList += '|';
        FFileList += name;
    }
    return true;
}
