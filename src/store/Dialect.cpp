#include "store/Dialect.h"

#include "store/SqlTokens.h"

#include <sqlite3.h>

#include <algorithm>
#include <vector>

namespace store {
namespace {

using sql::isSpace;
using sql::Kind;
using sql::Token;
using sql::tokenize;

struct Edit {
    std::size_t begin;
    std::size_t end;
    std::string text;
};

// The statement's significant tokens up to its first ';', and the edits made to them.
class Rewriter {
public:
    explicit Rewriter(std::string_view text) : text_(text), t_(text, tokenize(text), true) {}

    std::string run() {
        if (t_.isWord(0, "truncate"))
            truncateToDelete();
        else if (t_.isWord(0, "insert"))
            insert();
        else if (t_.isWord(0, "update"))
            update();
        return apply();
    }

private:
    static constexpr std::size_t npos = sql::Tokens::npos;

    // Past a table name, with its optional schema.
    std::size_t skipTableName(std::size_t i) const {
        if (!t_.isName(i))
            return npos;
        if (t_.isPunct(i + 1, '.') && t_.isName(i + 2))
            return i + 3;
        return i + 1;
    }

    // "truncate [table] T" -> "delete from T"
    void truncateToDelete() {
        std::size_t last = 0;
        if (t_.isWord(1, "table") && t_.isName(2))
            last = 1;
        if (!t_.isName(last + 1))
            return;
        edits_.push_back({t_.at(0).begin, t_.at(last).end, "delete from"});
    }

    void insert() {
        std::size_t i = 1;
        if (t_.isWord(i, "or"))
            i += 2;
        if (!t_.isWord(i, "into"))
            return;
        i = skipTableName(i + 1);
        if (i == npos)
            return;
        if (t_.isPunct(i, '(')) {
            const std::size_t close = t_.closing(i);
            if (close == npos)
                return;
            if (startsSelect(i + 1)) {
                unwrap(i, close);
                return;
            }
            bracketKeywordColumns(i + 1, close);
            i = close + 1;
            if (t_.isPunct(i, '(') && startsSelect(i + 1)) {
                if (const std::size_t inner = t_.closing(i); inner != npos)
                    unwrap(i, inner);
                return;
            }
        }
        if (t_.isWord(i, "values"))
            quoteValueRows(i + 1);
    }

    void update() {
        std::size_t i = 1;
        while (i < t_.size() && !t_.isWord(i, "set"))
            ++i;
        if (i == t_.size())
            return;
        // Assignments run to the first clause word outside parentheses.
        std::size_t start = i + 1;
        int depth = 0;
        for (i = start; i <= t_.size(); ++i) {
            const bool atEnd = i == t_.size();
            if (!atEnd && t_.isPunct(i, '(')) {
                ++depth;
                continue;
            }
            if (!atEnd && t_.isPunct(i, ')')) {
                --depth;
                continue;
            }
            const bool clauseEnd =
                atEnd || (depth == 0 && (t_.isWord(i, "where") || t_.isWord(i, "from") ||
                                         t_.isWord(i, "returning") || t_.isWord(i, "order") ||
                                         t_.isWord(i, "limit")));
            if (clauseEnd || (depth == 0 && t_.isPunct(i, ','))) {
                quoteAssignedNumber(start, i);
                start = i + 1;
            }
            if (clauseEnd)
                break;
        }
    }

    bool startsSelect(std::size_t i) const {
        return t_.isWord(i, "select") || t_.isWord(i, "with");
    }

    // Drops the parentheses around an inserted select, keeping the words apart.
    void unwrap(std::size_t open, std::size_t close) {
        for (const std::size_t i : {open, close}) {
            const Token& t = t_.at(i);
            const bool spaced = t.begin == 0 || isSpace(text_[t.begin - 1]) ||
                                t.end == text_.size() || isSpace(text_[t.end]);
            edits_.push_back({t.begin, t.end, spaced ? "" : " "});
        }
    }

    // A keyword standing as a column name (Default) is bracketed; the engine's own list decides.
    void bracketKeywordColumns(std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < to; ++i) {
            const Token& t = t_.at(i);
            if (t.kind != Kind::Word)
                continue;
            const std::string_view word = t_.textOf(t);
            if (sqlite3_keyword_check(word.data(), static_cast<int>(word.size())) != 0)
                edits_.push_back({t.begin, t.end, "[" + std::string(word) + "]"});
        }
    }

    // values (...), (...): each element that is just a number is quoted.
    void quoteValueRows(std::size_t i) {
        while (t_.isPunct(i, '(')) {
            const std::size_t close = t_.closing(i);
            if (close == npos)
                return;
            std::size_t start = i + 1;
            int depth = 0;
            for (std::size_t j = i + 1; j <= close; ++j) {
                if (t_.isPunct(j, '('))
                    ++depth;
                else if (t_.isPunct(j, ')') && j != close)
                    --depth;
                else if ((depth == 0 && t_.isPunct(j, ',')) || j == close) {
                    quoteNumber(start, j);
                    start = j + 1;
                }
            }
            if (!t_.isPunct(close + 1, ','))
                return;
            i = close + 2;
        }
    }

    // `column = number` with the number quoted; tokens [from, to).
    void quoteAssignedNumber(std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < to; ++i) {
            if (t_.isPunct(i, '=')) {
                quoteNumber(i + 1, to);
                return;
            }
        }
    }

    // Quotes tokens [from, to) when they are exactly one number, with a sign written against it.
    void quoteNumber(std::size_t from, std::size_t to) {
        std::size_t first = from;
        if (to == from + 2 && (t_.isPunct(from, '-') || t_.isPunct(from, '+')) &&
            t_.at(from).end == t_.at(from + 1).begin)
            ++first;
        if (first + 1 != to || t_.at(first).kind != Kind::Number)
            return;
        const std::size_t begin = t_.at(from).begin;
        const std::size_t end = t_.at(first).end;
        edits_.push_back({begin, end, "'" + std::string(text_.substr(begin, end - begin)) + "'"});
    }

    std::string apply() {
        std::sort(edits_.begin(), edits_.end(),
                  [](const Edit& a, const Edit& b) { return a.begin < b.begin; });
        std::string out;
        out.reserve(text_.size() + 8 * edits_.size());
        std::size_t pos = 0;
        for (const Edit& e : edits_) {
            out.append(text_.substr(pos, e.begin - pos));
            out.append(e.text);
            pos = e.end;
        }
        out.append(text_.substr(pos));
        return out;
    }

    std::string_view text_;
    sql::Tokens t_;
    std::vector<Edit> edits_;
};

} // namespace

std::string translateStatement(std::string_view text) { return Rewriter(text).run(); }

} // namespace store
