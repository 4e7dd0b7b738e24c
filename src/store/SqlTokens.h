#pragma once
// The SQL lexer shared by the dialects of the store (internal to src/store).
//
// It follows SQLite's own tokenizer closely enough that every place it finds a literal, a quoted
// name or a comment is one for the engine too; rewrites only ever touch other tokens.
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace store::sql {

enum class Kind {
    Space,
    Comment,
    Word,   // identifier or keyword
    Number, // decimal literal: 12, 0.500, .5, 5., 1e3
    String, // '...'
    Name,   // "...", [...], `...`
    Punct,  // one character
    Other,  // anything the engine rejects or that is no plain decimal (12abc, 0x1F)
    Broken, // a literal or quoted name left open, to the end of the text
};

struct Token {
    Kind kind;
    std::size_t begin;
    std::size_t end;
};

bool isSpace(char c);
bool isDigit(char c);
bool isIdStart(char c);
bool isIdChar(char c);

// Splits the text into tokens. A literal or quoted name left open becomes one last token that
// runs to the end: it is never closed here, so the engine still sees it broken and refuses it.
std::vector<Token> tokenize(std::string_view s);

// The significant tokens of a text (no blanks, no comments), with their text.
class Tokens {
public:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    explicit Tokens(std::string_view text) : Tokens(text, tokenize(text)) {}
    // From the text's tokens; `toFirstSemicolon` stops at the end of the first statement.
    Tokens(std::string_view text, const std::vector<Token>& all, bool toFirstSemicolon = false);

    std::size_t size() const { return sig_.size(); }
    const Token& at(std::size_t i) const { return sig_[i]; }
    std::string_view textOf(const Token& t) const { return text_.substr(t.begin, t.end - t.begin); }
    std::string_view textOf(std::size_t i) const { return textOf(sig_[i]); }
    // Without regard to ASCII case.
    bool isWord(std::size_t i, std::string_view word) const;
    bool isPunct(std::size_t i, char c) const {
        return i < sig_.size() && sig_[i].kind == Kind::Punct && text_[sig_[i].begin] == c;
    }
    bool isName(std::size_t i) const {
        return i < sig_.size() && (sig_[i].kind == Kind::Word || sig_[i].kind == Kind::Name);
    }
    // The text from token `from` to the end of token `to` (inclusive), as written.
    std::string_view span(std::size_t from, std::size_t to) const {
        return text_.substr(sig_[from].begin, sig_[to].end - sig_[from].begin);
    }
    // Index of the ')' that closes the '(' at `open`, or npos.
    std::size_t closing(std::size_t open) const;

private:
    std::string_view text_;
    std::vector<Token> sig_;
};

// True when the text holds nothing but blanks, semicolons and comments: no statement at all.
bool onlyNoise(std::string_view text);

// `text` between two `mark`s, each `mark` inside doubled: a literal ('), a quoted name (").
std::string quote(std::string_view text, char mark);

} // namespace store::sql
