// Job build: one Jobs row per template row, with section lines, static command lines and command
// lines composed from the template's presets or from the defaults.
#include "job/Job.h"

#include "common/Convert.h"
#include "common/Format.h"
#include "store/DataMod.h"

#include <algorithm>

namespace {

// Jobs columns 1 to 15 in their order; Path (16) stays null at build.
std::vector<store::Value> jobRow(std::int16_t pallet, std::int16_t job, int line,
                                 const std::string& code, int syntaxItem, int level,
                                 const std::string& scriptLine,
                                 const std::array<std::string, 6>& values, int image, int state) {
    std::vector<store::Value> row{pallet, job, line, code, syntaxItem, level, scriptLine};
    for (const auto& v : values)
        row.emplace_back(v);
    row.emplace_back(image);
    row.emplace_back(state);
    return row;
}

} // namespace

void TdlgJob::BuildJobFromTemplate() {
    BindDataControls();
    auto& jobs = DM().tableJobs;
    auto& data = DM().tableTemplateData;
    try {
        store::Transaction transaction(DM().LocalDatabase);
        try {
            // While the job has a row, delete its first (a move, not a count, per row).
            for (jobs.first(); jobs.hasRow(); jobs.first())
                jobs.deleteRecord();
            for (data.first(); !data.eof(); data.next()) {
                // A null Syntax (a section row) reads as 0 and so counts as a preset.
                AppendJobLine(data.fieldByName(schema::Item).asInteger(),
                              data.fieldByName(schema::Code).asString(),
                              data.fieldByName(schema::Syntax_).asInteger() >= 0,
                              data.fieldByName(schema::Node_Level).asInteger());
            }
        } catch (...) {
            if (jobs.state() == store::DatasetState::Edit)
                jobs.cancel();
            throw;
        }
        transaction.commit();
    } catch (...) {
        // The rows are as before the build; the cursor and the bound boxes follow them again.
        try {
            jobs.first();
        } catch (...) {
        }
        throw;
    }
}

void TdlgJob::AppendJobLine(int LineNumber, const std::string& Code, bool Preset, int NodeLevel) {
    const int state = NodeLevel == 2 ? 2 : 0;
    int image = 1;
    auto& syntax = DM().tableSyntax;
    syntax.findNearest({Code});
    // The first syntax of the code decides the kind of line, whichever syntax is chosen.
    const int type = syntax.fieldByName(schema::Type).asInteger();
    if (NodeLevel <= 0 || !syntax.hasRow() || syntax.fieldByName(schema::Code).asString() != Code) {
        AppendSectionLine(LineNumber, Code, NodeLevel, state);
        return;
    }

    auto& data = DM().tableTemplateData;
    int item = std::max(GetDefaultSyntax(Code), 1);
    if (Preset) {
        item = data.fieldByName(schema::Syntax_).asInteger() + 1;
        image = 2;
    }
    // No test that the rows still belong to the code: an item past the last reads the next code.
    for (int i = 1; i < item; ++i)
        syntax.next();

    std::array<std::string, 6> values;
    auto& jobs = DM().tableJobs;
    if (type != 1 && type != 3) {
        jobs.appendRecord(jobRow(FPalletNumber, FJobNumber, LineNumber, Code, item, NodeLevel,
                                 syntax.fieldByName(schema::Syntax_).asString(), values, image,
                                 state));
        return;
    }
    for (int n = 1; n <= 6; ++n) {
        auto& value = values[n - 1];
        if (Preset) {
            value = data.fieldByName(schema::ValueColumn(n)).asString();
            ExpandProgramToken(value);
        } else {
            GetDefaultValue(syntax.fieldByName(schema::ValueTypeColumn(n)).asInteger(), value);
        }
    }
    // A preset value passes a second time and can have a second token expanded.
    for (auto& value : values)
        ExpandProgramToken(value);
    jobs.appendRecord(jobRow(FPalletNumber, FJobNumber, LineNumber, Code, item, NodeLevel, "",
                             values, image, state));
    ComposeScriptLine(true);
}

void TdlgJob::AppendSectionLine(int LineNumber, const std::string& Code, int NodeLevel, int State) {
    std::string label;
    std::string version;
    if (Code == schema::HeaderCode) {
        version = DM().tableTemplateName.fieldByName(schema::Version).asString();
        label = "Header";
        FWorkpieceCounter = 0;
    } else if (Code == schema::FooterCode) {
        label = "Footer";
    } else if (Code != schema::PlaceholderCode) {
        ++FWorkpieceCounter;
        label = "Workpiece" + std::to_string(FWorkpieceCounter);
    }
    const std::string scriptLine = label.empty() ? "" : "(" + common::upperCase(label) + ")";
    const std::array<std::string, 6> values{label, version, "", "", "", ""};
    DM().tableJobs.appendRecord(jobRow(FPalletNumber, FJobNumber, LineNumber, Code, 0, NodeLevel,
                                       scriptLine, values, 1, State));
}

void TdlgJob::ExpandProgramToken(std::string& Value) const {
    const auto at = Value.find("[P");
    if (at == std::string::npos)
        return;
    const char digit = at + 2 < Value.size() ? Value[at + 2] : '\0';
    const int width = digit >= '0' && digit <= '9' ? digit - '0' : 3;
    const auto pallet = common::tryStrToInt(FInfo.PalletNumber);
    if (!pallet)
        throw JobError("Pallet number '" + FInfo.PalletNumber + "' is not a valid integer value");
    // The two letters, the digit and the closing bracket give way to the padded number.
    Value.replace(at, 4, common::format("%*.*d", {width, width, *pallet}));
}
