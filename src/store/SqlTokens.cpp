#include "store/SqlTokens.h"

#include "common/Convert.h"

namespace store::sql {

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isIdStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}
bool isIdChar(char c) { return isIdStart(c) || isDigit(c) || c == '$'; }

namespace {

bool isHexDigit(char c) { return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

// Index just past a number starting at `i`, and whether it is a plain decimal literal.
std::size_t scanNumber(std::string_view s, std::size_t i, Kind& kind) {
    const std::size_t n = s.size();
    kind = Kind::Number;
    if (s[i] == '0' && i + 2 < n && (s[i + 1] == 'x' || s[i + 1] == 'X') && isHexDigit(s[i + 2])) {
        kind = Kind::Other;
        i += 2;
        while (i < n && isHexDigit(s[i]))
            ++i;
    } else {
        while (i < n && isDigit(s[i]))
            ++i;
        if (i < n && s[i] == '.') {
            ++i;
            while (i < n && isDigit(s[i]))
                ++i;
        }
        if (i < n && (s[i] == 'e' || s[i] == 'E')) {
            std::size_t j = i + 1;
            if (j < n && (s[j] == '+' || s[j] == '-'))
                ++j;
            if (j < n && isDigit(s[j])) {
                i = j;
                while (i < n && isDigit(s[i]))
                    ++i;
            }
        }
    }
    // The engine refuses a number run into a name ("12abc"); keep it whole and leave it alone.
    if (i < n && isIdChar(s[i])) {
        kind = Kind::Other;
        while (i < n && isIdChar(s[i]))
            ++i;
    }
    return i;
}

} // namespace

std::vector<Token> tokenize(std::string_view s) {
    std::vector<Token> tokens;
    const std::size_t n = s.size();
    std::size_t i = 0;
    while (i < n) {
        const std::size_t start = i;
        const char c = s[i];
        Kind kind = Kind::Punct;
        if (isSpace(c)) {
            kind = Kind::Space;
            while (i < n && isSpace(s[i]))
                ++i;
        } else if (c == '-' && i + 1 < n && s[i + 1] == '-') {
            kind = Kind::Comment;
            const std::size_t eol = s.find('\n', i);
            i = eol == std::string_view::npos ? n : eol + 1;
        } else if (c == '/' && i + 1 < n && s[i + 1] == '*') {
            // An unclosed block comment runs to the end, as the engine reads it.
            kind = Kind::Comment;
            const std::size_t close = s.find("*/", i + 2);
            i = close == std::string_view::npos ? n : close + 2;
        } else if (c == '\'' || c == '"' || c == '`') {
            kind = c == '\'' ? Kind::String : Kind::Name;
            ++i;
            bool closed = false;
            while (i < n) {
                if (s[i] == c) {
                    if (i + 1 < n && s[i + 1] == c) {
                        i += 2; // doubled quote inside the literal
                        continue;
                    }
                    ++i;
                    closed = true;
                    break;
                }
                ++i;
            }
            if (!closed)
                kind = Kind::Broken;
        } else if (c == '[') {
            kind = Kind::Name;
            const std::size_t close = s.find(']', i + 1);
            if (close == std::string_view::npos)
                kind = Kind::Broken;
            i = close == std::string_view::npos ? n : close + 1;
        } else if (isDigit(c) || (c == '.' && i + 1 < n && isDigit(s[i + 1]))) {
            i = scanNumber(s, i, kind);
        } else if (isIdStart(c)) {
            kind = Kind::Word;
            while (i < n && isIdChar(s[i]))
                ++i;
        } else {
            ++i;
        }
        tokens.push_back({kind, start, i});
    }
    return tokens;
}

Tokens::Tokens(std::string_view text, const std::vector<Token>& all, bool toFirstSemicolon)
    : text_(text) {
    for (const Token& t : all) {
        if (t.kind == Kind::Space || t.kind == Kind::Comment)
            continue;
        if (toFirstSemicolon && t.kind == Kind::Punct && text[t.begin] == ';')
            break;
        sig_.push_back(t);
    }
}

bool Tokens::isWord(std::size_t i, std::string_view word) const {
    return i < sig_.size() && sig_[i].kind == Kind::Word && common::sameText(textOf(i), word);
}

std::size_t Tokens::closing(std::size_t open) const {
    int depth = 0;
    for (std::size_t i = open; i < sig_.size(); ++i) {
        if (isPunct(i, '('))
            ++depth;
        else if (isPunct(i, ')') && --depth == 0)
            return i;
    }
    return npos;
}

bool onlyNoise(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        const char c = text[i];
        if (c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == ';') {
            ++i;
        } else if (text.substr(i, 2) == "--") {
            i = text.find('\n', i);
            if (i == std::string_view::npos)
                return true;
        } else if (text.substr(i, 2) == "/*") {
            i = text.find("*/", i + 2);
            if (i == std::string_view::npos)
                return true;
            i += 2;
        } else {
            return false;
        }
    }
    return true;
}

std::string quote(std::string_view text, char mark) {
    std::string out(1, mark);
    for (const char c : text) {
        out += c;
        if (c == mark)
            out += mark;
    }
    return out + mark;
}

} // namespace store::sql
