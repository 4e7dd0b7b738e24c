// Script line composer: a Syntax row's mask and six values become the line of the program.
//
// Each value specifier of the mask is resolved on its own (string, integer, real or real picture)
// into a text, and the working mask gets "%s" in its place; one final pass then puts the texts in.
#include "job/Job.h"

#include "common/Convert.h"
#include "common/Format.h"
#include "store/DataMod.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

namespace {

constexpr const char* ProgramErrorLine = "Program Error!";
constexpr const char* NotHandledLine = "Not Handled";
// Where a letter that does not occur counts as standing.
constexpr std::size_t Absent = 999;

// 1-based position of `c` in `text`, Absent when it does not occur.
std::size_t letterPos(std::string_view text, char c) {
    const auto p = text.find(c);
    return p == std::string_view::npos ? Absent : p + 1;
}

// Formats by a specifier of the mask; a specifier the formatter refuses names the mask.
std::string formatSpecifier(const std::string& spec, const std::string& mask,
                            const common::FormatArg& arg) {
    try {
        return common::format(spec, {arg});
    } catch (const common::FormatError& e) {
        throw JobError("The mask '" + mask + "' cannot be composed: " + e.what());
    }
}

// A leading "+" in a specifier that is no picture: it is taken out of the specifier, the number
// is formatted without its sign, and the sign is put in front of the text.
bool takePlus(std::string& spec) {
    if (spec.size() < 2 || spec[1] != '+')
        return false;
    spec.erase(1, 1);
    return true;
}

} // namespace

int TdlgJob::CountFormatSpecs(const std::string& Mask, bool Strict) {
    if (Mask.empty())
        throw JobError("An empty mask has no specifiers to count");
    if (Strict &&
        (Mask.find("%-*.*s") != std::string::npos || Mask.find("%p") != std::string::npos))
        return 0;
    if (Mask.back() == '%')
        return 0;
    int count = 0;
    // A specifier is a "%" and the character behind it, so "%%" is one.
    for (auto p = Mask.find('%'); p != std::string::npos; p = Mask.find('%', p + 2))
        ++count;
    return count;
}

std::string TdlgJob::FormatValueForMask(std::string& Mask, int Index, const std::string& Value) {
    if (Index > CountFormatSpecs(Mask, false))
        return {};
    // Walk to the Index-th "%": `at` is its 0-based place, `rest` everything behind it.
    std::size_t at = 0;
    std::size_t from = 0;
    for (int k = 0; k < Index; ++k) {
        at = Mask.find('%', from);
        if (at == std::string::npos)
            throw JobError("The mask '" + Mask + "' has no specifier " + std::to_string(Index));
        from = at + 1;
    }
    const std::string rest = Mask.substr(at + 1);

    // Only the first lower-case s, d and f behind the "%" decide, also in plain text after it.
    const std::size_t posS = letterPos(rest, 's');
    const std::size_t posD = letterPos(rest, 'd');
    const std::size_t posF = letterPos(rest, 'f');
    if (posD > posS && posS < posF)
        return Value; // a string: the specifier stays for the final pass

    std::string spec;
    std::string text;
    if (posD > posF) {
        const double number = common::strToFloatDef(Value.empty() ? "0" : Value, 0);
        spec = "%" + rest.substr(0, posF);
        if (spec.starts_with("%0") || spec.starts_with("%+0")) {
            // A picture such as "+0.000": the minus goes in front of the whole text, so a "+"
            // behind it is dropped. The test is on the number before rounding.
            const std::string picture = spec.substr(1, spec.size() - 2);
            text = common::formatFloat(picture, number);
            if (picture.starts_with('+') && number < 0 && text.size() > 1)
                text.erase(1, 1);
        } else if (takePlus(spec)) {
            text = (number < 0 ? "-" : "+") + formatSpecifier(spec, Mask, std::fabs(number));
        } else {
            text = formatSpecifier(spec, Mask, number);
        }
    } else {
        const std::int32_t number = common::strToIntDef(Value, 0);
        spec = "%" + (posD == Absent ? rest : rest.substr(0, posD));
        if (takePlus(spec)) {
            const std::int64_t magnitude = std::llabs(static_cast<std::int64_t>(number));
            text = (number < 0 ? "-" : "+") + formatSpecifier(spec, Mask, magnitude);
        } else {
            text = formatSpecifier(spec, Mask, number);
        }
    }
    // The specifier's length after a "+" was taken out: for a signed specifier that is no
    // picture one character too few goes, and its closing letter stays in the line ("X%+d"
    // with 5 gives "X+5d"). Templates rely on the picture form for signed numbers.
    Mask.erase(at, spec.size());
    Mask.insert(at, "%s");
    return text;
}

std::string TdlgJob::ComposeMaskLine(const std::string& Mask, int Type, const std::string& Syntax,
                                     const std::array<std::string, 6>& Values) {
    std::string work = Mask;
    std::array<std::string, 6> texts;
    // A mask that counts no specifier strictly gives the same line whatever the values, so they
    // are not formatted (a "%p" is no specifier the formatter knows).
    if (CountFormatSpecs(Mask, true) > 0)
        for (int i = 0; i < 6; ++i)
            texts[i] = FormatValueForMask(work, i + 1, Values[i]);
    const int n = CountFormatSpecs(work, true);
    if (n >= 1 && n <= 6) {
        std::vector<common::FormatArg> args(texts.begin(), texts.begin() + n);
        try {
            return common::format(work, args);
        } catch (const common::FormatError& e) {
            throw JobError("The mask '" + Mask + "' cannot be composed: " + e.what());
        }
    }
    if (n == 0 && (Type == 1 || Type == 3))
        return NotHandledLine;
    return Syntax;
}

std::string TdlgJob::ComposeCaseLine(const std::string& Case) {
    std::vector<std::string> fields;
    std::size_t from = 0;
    for (auto tab = Case.find('\t'); tab != std::string::npos; tab = Case.find('\t', from)) {
        fields.push_back(Case.substr(from, tab - from));
        from = tab + 1;
    }
    fields.push_back(Case.substr(from));
    if (fields.size() > 9)
        throw JobError("A case has at most 9 fields (mask, type, syntax, 6 values), not " +
                       std::to_string(fields.size()));
    fields.resize(9);
    const auto type = common::tryStrToInt(fields[1]);
    if (!type)
        throw JobError("The type '" + fields[1] + "' is not a valid integer value");
    std::array<std::string, 6> values;
    std::move(fields.begin() + 3, fields.end(), values.begin());
    return ComposeMaskLine(fields[0], *type, fields[2], values);
}

std::string TdlgJob::ComposeScriptLine(bool SaveIt) {
    if (FWriting)
        return ProgramErrorLine;
    auto& syntax = DM().tableSyntax;
    std::array<std::string, 6> values;
    for (int n = 1; n <= 6; ++n)
        values[n - 1] = ValueEdit(n)->text().toStdString();
    std::string line;
    try {
        line = ComposeMaskLine(syntax.fieldByName(schema::Mask).asString(),
                               syntax.fieldByName(schema::Type).asInteger(),
                               syntax.fieldByName(schema::Syntax_).asString(), values);
    } catch (const JobError& e) {
        throw JobError("Syntax " + syntax.fieldByName(schema::Code).asString() + " item " +
                       syntax.fieldByName(schema::Item).asString() + ": " + e.what());
    }
    if (SaveIt)
        StoreScriptLine(line);
    return line;
}

std::string TdlgJob::ComposeSyntaxLine(bool SaveIt) {
    if (FWriting)
        return ProgramErrorLine;
    std::string line = DM().tableSyntax.fieldByName(schema::Syntax_).asString();
    if (SaveIt)
        StoreScriptLine(line);
    return line;
}
