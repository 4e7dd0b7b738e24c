// Job build: one Jobs row per template row, with section lines, static command lines and command
// lines composed from the template's presets or from the defaults.
#include "job/Job.h"

#include "common/Convert.h"
#include "common/Format.h"
#include "job/JobReplay.h"
#include "store/DataMod.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

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

// The default lookups of one build. The build runs in one transaction that writes only Jobs,
// and with the form's handlers quiet nothing else moves the tables the lookups use, so a lookup
// of the same template and key gives the same answer throughout: only the first is run. The
// lookups also leave tableTemplateDefaults filtered on their key and tableCommands on a code;
// `settle` runs the last lookup again when later ones were answered from memory, so that both
// tables end as they would have.
class BuildDefaults {
public:
    BuildDefaults(TdlgJob& form, BuildDefaults*& active)
        : form_(form), active_(active), outer_(active) {
        active_ = this;
    }
    ~BuildDefaults() { active_ = outer_; }
    BuildDefaults(const BuildDefaults&) = delete;
    BuildDefaults& operator=(const BuildDefaults&) = delete;

    const TdlgJob& form() const { return form_; }

    // As TdlgJob::GetDefaultSyntax: the local default, else the global one.
    int syntax(const std::string& code) {
        const SyntaxKey key{templateId(), code};
        lastLocal_ = Last::Syntax;
        lastCode_ = code;
        if (const auto found = syntaxes_.find(key); found != syntaxes_.end()) {
            localStale_ = true;
            if (!found->second.local) {
                lastGlobal_ = code;
                globalStale_ = true;
            }
            return found->second.result;
        }
        localStale_ = false;
        int result = form_.GetLocalDefaultSyntax(code);
        const bool local = result != 0;
        if (!local) {
            lastGlobal_ = code;
            globalStale_ = false;
            result = form_.GetGlobalDefaultSyntax(code);
        }
        syntaxes_.emplace(key, Syntax{result, local});
        return result;
    }

    // As TdlgJob::GetDefaultValue.
    void value(int valueId, std::string& value) {
        const ValueKey key{templateId(), valueId};
        lastLocal_ = Last::Value;
        lastValueId_ = valueId;
        if (const auto found = values_.find(key); found != values_.end()) {
            localStale_ = true;
            value = found->second;
            return;
        }
        localStale_ = false;
        form_.GetDefaultValue(valueId, value);
        values_.emplace(key, value);
    }

    // Runs the last lookup of each table again if it was answered from memory.
    void settle() {
        if (globalStale_) {
            globalStale_ = false;
            form_.GetGlobalDefaultSyntax(lastGlobal_);
        }
        if (localStale_) {
            localStale_ = false;
            if (lastLocal_ == Last::Value) {
                std::string value;
                form_.GetDefaultValue(lastValueId_, value);
            } else {
                form_.GetLocalDefaultSyntax(lastCode_);
            }
        }
    }

private:
    using SyntaxKey = std::pair<int, std::string>; // template id, code
    using ValueKey = std::pair<int, int>;          // template id, value type id
    struct Syntax {
        int result;
        bool local; // found in TemplateDefaults, so tableCommands was not consulted
    };
    enum class Last { Syntax, Value };

    // The template is the current TemplateName row, as the lookups read it.
    static int templateId() { return DM().tableTemplateName.fields(0).asInteger(); }

    TdlgJob& form_;
    BuildDefaults*& active_;
    BuildDefaults* outer_;
    std::map<SyntaxKey, Syntax> syntaxes_;
    std::map<ValueKey, std::string> values_;
    // The last lookup of tableTemplateDefaults, and whether it was answered from memory.
    Last lastLocal_ = Last::Syntax;
    std::string lastCode_;
    int lastValueId_ = 0;
    bool localStale_ = false;
    // The last code sought in tableCommands, and whether that seek was answered from memory.
    std::string lastGlobal_;
    bool globalStale_ = false;
};

// The lookups of the build that runs, if any.
BuildDefaults* activeDefaults = nullptr;

BuildDefaults* defaultsOf(const TdlgJob& form) {
    return activeDefaults && &activeDefaults->form() == &form ? activeDefaults : nullptr;
}

} // namespace

bool job::IsSectionLine(const std::string& code, int level) {
    auto& syntax = DM().tableSyntax;
    syntax.findNearest({code});
    return level <= 0 || !syntax.hasRow() || syntax.fieldByName(schema::Code).asString() != code;
}

int job::CountSectionLine(const std::string& code, int counter) {
    if (code == schema::HeaderCode)
        return 0;
    if (code == schema::FooterCode || code == schema::PlaceholderCode)
        return counter;
    return counter + 1;
}

void TdlgJob::BuildJobFromTemplate() {
    BindDataControls();
    auto& jobs = DM().tableJobs;
    auto& data = DM().tableTemplateData;
    // With the form's handlers quiet, the lookups are answered once per key (BuildDefaults).
    std::optional<BuildDefaults> defaults;
    if (!FEventsEnabled)
        defaults.emplace(*this, activeDefaults);
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
            if (defaults)
                defaults->settle();
        } catch (...) {
            if (jobs.state() == store::DatasetState::Edit)
                jobs.cancel();
            if (defaults) {
                try {
                    defaults->settle();
                } catch (...) {
                }
            }
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
    const bool section = job::IsSectionLine(Code, NodeLevel);
    // The first syntax of the code decides the kind of line, whichever syntax is chosen.
    const int type = syntax.fieldByName(schema::Type).asInteger();
    if (section) {
        AppendSectionLine(LineNumber, Code, NodeLevel, state);
        return;
    }

    auto& data = DM().tableTemplateData;
    auto* defaults = defaultsOf(*this);
    int item = std::max(defaults ? defaults->syntax(Code) : GetDefaultSyntax(Code), 1);
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
            const int valueId = syntax.fieldByName(schema::ValueTypeColumn(n)).asInteger();
            if (defaults)
                defaults->value(valueId, value);
            else
                GetDefaultValue(valueId, value);
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
    FWorkpieceCounter = job::CountSectionLine(Code, FWorkpieceCounter);
    if (Code == schema::HeaderCode) {
        version = DM().tableTemplateName.fieldByName(schema::Version).asString();
        label = "Header";
    } else if (Code == schema::FooterCode) {
        label = "Footer";
    } else if (Code != schema::PlaceholderCode) {
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
