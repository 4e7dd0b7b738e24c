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

// The statement's significant tokens (no blanks, no comments) up to its first ';', and the
// edits made to them.
class Rewriter {
public:
    Rewriter(std::string_view text, const std::vector<Token>& tokens) : text_(text) {
        for (const Token& t : tokens) {
            if (t.kind == Kind::Space || t.kind == Kind::Comment)
                continue;
            if (isPunct(t, ';'))
                break;
            sig_.push_back(t);
        }
    }

    std::string run() {
        if (isWord(0, "truncate"))
            truncateToDelete();
        else if (isWord(0, "insert"))
            insert();
        else if (isWord(0, "update"))
            update();
        return apply();
    }

private:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    std::string_view textOf(const Token& t) const { return text_.substr(t.begin, t.end - t.begin); }
    bool isPunct(const Token& t, char c) const {
        return t.kind == Kind::Punct && text_[t.begin] == c;
    }
    bool isPunct(std::size_t i, char c) const { return i < sig_.size() && isPunct(sig_[i], c); }
    bool isWord(std::size_t i, std::string_view word) const {
        if (i >= sig_.size() || sig_[i].kind != Kind::Word)
            return false;
        const std::string_view t = textOf(sig_[i]);
        return std::equal(t.begin(), t.end(), word.begin(), word.end(), [](char a, char b) {
            const auto lower = [](char x) {
                return x >= 'A' && x <= 'Z' ? char(x - 'A' + 'a') : x;
            };
            return lower(a) == lower(b);
        });
    }
    bool isName(std::size_t i) const {
        return i < sig_.size() && (sig_[i].kind == Kind::Word || sig_[i].kind == Kind::Name);
    }

    // Index of the ')' that closes the '(' at `open`, or npos.
    std::size_t closing(std::size_t open) const {
        int depth = 0;
        for (std::size_t i = open; i < sig_.size(); ++i) {
            if (isPunct(i, '('))
                ++depth;
            else if (isPunct(i, ')') && --depth == 0)
                return i;
        }
        return npos;
    }

    // Past a table name, with its optional schema.
    std::size_t skipTableName(std::size_t i) const {
        if (!isName(i))
            return npos;
        if (isPunct(i + 1, '.') && isName(i + 2))
            return i + 3;
        return i + 1;
    }

    // "truncate [table] T" -> "delete from T"
    void truncateToDelete() {
        std::size_t last = 0;
        if (isWord(1, "table") && isName(2))
            last = 1;
        if (!isName(last + 1))
            return;
        edits_.push_back({sig_[0].begin, sig_[last].end, "delete from"});
    }

    void insert() {
        std::size_t i = 1;
        if (isWord(i, "or"))
            i += 2;
        if (!isWord(i, "into"))
            return;
        i = skipTableName(i + 1);
        if (i == npos)
            return;
        if (isPunct(i, '(')) {
            const std::size_t close = closing(i);
            if (close == npos)
                return;
            if (startsSelect(i + 1)) {
                unwrap(i, close);
                return;
            }
            bracketKeywordColumns(i + 1, close);
            i = close + 1;
            if (isPunct(i, '(') && startsSelect(i + 1)) {
                if (const std::size_t inner = closing(i); inner != npos)
                    unwrap(i, inner);
                return;
            }
        }
        if (isWord(i, "values"))
            quoteValueRows(i + 1);
    }

    void update() {
        std::size_t i = 1;
        while (i < sig_.size() && !isWord(i, "set"))
            ++i;
        if (i == sig_.size())
            return;
        // Assignments run to the first clause word outside parentheses.
        std::size_t start = i + 1;
        int depth = 0;
        for (i = start; i <= sig_.size(); ++i) {
            const bool atEnd = i == sig_.size();
            if (!atEnd && isPunct(i, '(')) {
                ++depth;
                continue;
            }
            if (!atEnd && isPunct(i, ')')) {
                --depth;
                continue;
            }
            const bool clauseEnd =
                atEnd ||
                (depth == 0 && (isWord(i, "where") || isWord(i, "from") || isWord(i, "returning") ||
                                isWord(i, "order") || isWord(i, "limit")));
            if (clauseEnd || (depth == 0 && isPunct(i, ','))) {
                quoteAssignedNumber(start, i);
                start = i + 1;
            }
            if (clauseEnd)
                break;
        }
    }

    bool startsSelect(std::size_t i) const { return isWord(i, "select") || isWord(i, "with"); }

    // Drops the parentheses around an inserted select, keeping the words apart.
    void unwrap(std::size_t open, std::size_t close) {
        for (const std::size_t i : {open, close}) {
            const Token& t = sig_[i];
            const bool spaced = t.begin == 0 || isSpace(text_[t.begin - 1]) ||
                                t.end == text_.size() || isSpace(text_[t.end]);
            edits_.push_back({t.begin, t.end, spaced ? "" : " "});
        }
    }

    // A keyword standing as a column name (Default) is bracketed; the engine's own list decides.
    void bracketKeywordColumns(std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < to; ++i) {
            const Token& t = sig_[i];
            if (t.kind != Kind::Word)
                continue;
            const std::string_view word = textOf(t);
            if (sqlite3_keyword_check(word.data(), static_cast<int>(word.size())) != 0)
                edits_.push_back({t.begin, t.end, "[" + std::string(word) + "]"});
        }
    }

    // values (...), (...): each element that is just a number is quoted.
    void quoteValueRows(std::size_t i) {
        while (isPunct(i, '(')) {
            const std::size_t close = closing(i);
            if (close == npos)
                return;
            std::size_t start = i + 1;
            int depth = 0;
            for (std::size_t j = i + 1; j <= close; ++j) {
                if (isPunct(j, '('))
                    ++depth;
                else if (isPunct(j, ')') && j != close)
                    --depth;
                else if ((depth == 0 && isPunct(j, ',')) || j == close) {
                    quoteNumber(start, j);
                    start = j + 1;
                }
            }
            if (!isPunct(close + 1, ','))
                return;
            i = close + 2;
        }
    }

    // `column = number` with the number quoted; tokens [from, to).
    void quoteAssignedNumber(std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < to; ++i) {
            if (isPunct(i, '=')) {
                quoteNumber(i + 1, to);
                return;
            }
        }
    }

    // Quotes tokens [from, to) when they are exactly one number, with a sign written against it.
    void quoteNumber(std::size_t from, std::size_t to) {
        std::size_t first = from;
        if (to == from + 2 && (isPunct(from, '-') || isPunct(from, '+')) &&
            sig_[from].end == sig_[from + 1].begin)
            ++first;
        if (first + 1 != to || sig_[first].kind != Kind::Number)
            return;
        const std::size_t begin = sig_[from].begin;
        const std::size_t end = sig_[first].end;
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
    std::vector<Token> sig_;
    std::vector<Edit> edits_;
};

} // namespace

std::string translateStatement(std::string_view text) {
    return Rewriter(text, tokenize(text)).run();
}

} // namespace store
