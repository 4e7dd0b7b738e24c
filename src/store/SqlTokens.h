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

// `text` between two `mark`s, each `mark` inside doubled: a literal ('), a quoted name (").
std::string quote(std::string_view text, char mark);

} // namespace store::sql
