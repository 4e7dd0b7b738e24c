#include "store/ServerDialect.h"

#include "common/Convert.h"

#include "store/Dialect.h"
#include "store/SqlTokens.h"
#include "store/StoreError.h"

#include <algorithm>
#include <cstdlib>
#include <optional>

namespace store::server {
namespace {

using sql::Kind;
using sql::Token;
using sql::Tokens;

// The engine code of a text the server side refuses (SQLITE_MISUSE).
constexpr int kRefused = 21;

char lowerAscii(char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; }

// A single-quoted SQL literal.
std::string literal(std::string_view s) { return sql::quote(s, '\''); }

// The name a word or a closed quoted name stands for: quotes removed, doubled quotes undone.
std::string nameOf(std::string_view token) {
    if (token.empty() || (token[0] != '"' && token[0] != '`' && token[0] != '['))
        return std::string(token);
    const std::string_view inner = token.substr(1, token.size() - 2);
    if (token[0] == '[')
        return std::string(inner);
    std::string out;
    for (std::size_t i = 0; i < inner.size(); ++i) {
        out += inner[i];
        if (inner[i] == token[0])
            ++i; // the doubled quote
    }
    return out;
}

[[noreturn]] void refuse(std::string_view what, std::string_view text) {
    throw StoreError(
        "The statement cannot run on the database server: " + std::string(what) +
            " belongs to the embedded engine; nothing was run of: " + std::string(text),
        kRefused);
}

// Raises for what the server has no faithful counterpart of.
void checkServerCanRun(const Tokens& t, std::string_view original) {
    bool statementStart = true;
    for (std::size_t i = 0; i < t.size(); ++i) {
        if (t.isPunct(i, ';')) {
            statementStart = true;
            continue;
        }
        const bool first = statementStart;
        statementStart = false;
        if (t.at(i).kind == Kind::Name || t.at(i).kind == Kind::Word) {
            const std::string name = foldName(nameOf(t.textOf(i)));
            if (name == "sqlite_master" || name == "sqlite_schema" || name == "sqlite_sequence" ||
                name == "sqlite_temp_master" || name == "sqlite_temp_schema")
                refuse(name, original);
        }
        if (t.at(i).kind != Kind::Word)
            continue;
        if (first) {
            for (const char* word : {"pragma", "attach", "detach", "vacuum"})
                if (t.isWord(i, word))
                    refuse(word, original);
            if (t.isWord(i, "replace") && t.isWord(i + 1, "into"))
                refuse("replace into", original);
        }
        if (t.isWord(i, "glob") || t.isWord(i, "regexp"))
            refuse(foldName(t.textOf(i)), original);
        if (t.isWord(i, "insert") && t.isWord(i + 1, "or"))
            refuse("insert or " + (i + 2 < t.size() ? foldName(t.textOf(i + 2)) : std::string()),
                   original);
        if (t.isWord(i, "limit")) {
            int depth = 0;
            for (std::size_t j = i + 1; j < t.size() && !t.isPunct(j, ';'); ++j) {
                if (t.isPunct(j, '('))
                    ++depth;
                else if (t.isPunct(j, ')') && --depth < 0)
                    break;
                else if (depth == 0 && t.isPunct(j, ','))
                    refuse("limit with an offset before a comma", original);
            }
        }
    }
}

bool isRowidWord(const Tokens& t, std::size_t i) {
    return t.isWord(i, "rowid") || t.isWord(i, "_rowid_") || t.isWord(i, "oid");
}

// Words after a table name that start a clause rather than name an alias.
bool isClauseWord(const Tokens& t, std::size_t i) {
    for (const char* w :
         {"where",  "set",       "order",  "group",  "limit",     "offset",  "join",  "inner",
          "left",   "right",     "full",   "cross",  "natural",   "on",      "using", "union",
          "except", "intersect", "window", "having", "returning", "indexed", "not"})
        if (t.isWord(i, w))
            return true;
    return false;
}

// A statement naming the row id reads the base table, under the table's own name so that
// qualified columns still resolve: "from Jobs" becomes "from "jobs__rows" as "jobs"". The
// replacements are keyed by the table token's offset in the text. The view hides the row id,
// and a star would show it on the base table, so a star beside a row id is refused.
std::vector<std::pair<std::size_t, std::string>> rowidTables(const Tokens& t,
                                                             std::string_view original) {
    std::vector<std::pair<std::size_t, std::string>> tables;
    bool named = false;
    for (std::size_t i = 0; i < t.size(); ++i)
        named = named || isRowidWord(t, i);
    if (!named)
        return tables;
    for (std::size_t i = 0; i < t.size(); ++i) {
        if (t.isPunct(i, '*') && i > 0 &&
            (t.isWord(i - 1, "select") || t.isWord(i - 1, "distinct") || t.isWord(i - 1, "all") ||
             t.isPunct(i - 1, ',') || t.isPunct(i - 1, '.')))
            refuse("a row id beside *", original);
        if (!(t.isWord(i, "from") || t.isWord(i, "update") || t.isWord(i, "join")) ||
            !t.isName(i + 1) || t.at(i + 1).kind == Kind::Broken || t.isPunct(i + 2, '.') ||
            t.isPunct(i + 2, '('))
            continue;
        const std::string table = nameOf(t.textOf(i + 1));
        const std::string_view suffix = "__rows";
        if (table.size() > suffix.size() &&
            foldName(table).compare(table.size() - suffix.size(), suffix.size(), suffix) == 0)
            continue; // already the base table
        const bool aliased =
            t.isWord(i + 2, "as") ||
            (t.isName(i + 2) && t.at(i + 2).kind != Kind::Broken && !isClauseWord(t, i + 2));
        tables.emplace_back(t.at(i + 1).begin,
                            rowsTable(table) + (aliased ? "" : " as " + quoteName(table)));
    }
    return tables;
}

// The word and name rewrites, on a text already in the embedded engine's dialect.
std::string rewriteForServer(std::string_view text, std::string_view original) {
    const std::vector<Token> tokens = sql::tokenize(text);
    const Tokens significant(text, tokens);
    checkServerCanRun(significant, original);
    const auto tables = rowidTables(significant, original);
    std::string out;
    out.reserve(text.size() + text.size() / 8);
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const Token& t = tokens[i];
        const std::string_view s = text.substr(t.begin, t.end - t.begin);
        const auto table = std::find_if(tables.begin(), tables.end(),
                                        [&](const auto& e) { return e.first == t.begin; });
        if (table != tables.end()) {
            out += table->second;
        } else if (t.kind == Kind::Name) {
            out += quoteName(nameOf(s));
        } else if (t.kind == Kind::Word &&
                   (common::sameText(s, "rowid") || common::sameText(s, "oid"))) {
            out += "_rowid_";
        } else if (t.kind == Kind::Word && common::sameText(s, "true")) {
            out += '1';
        } else if (t.kind == Kind::Word && common::sameText(s, "false")) {
            out += '0';
        } else if (t.kind == Kind::Word && common::sameText(s, "like")) {
            out += "ilike";
        } else if (t.kind == Kind::Word && common::sameText(s, "ifnull")) {
            out += "coalesce";
        } else if (t.kind == Kind::Punct && (s == ":" || s == "@" || s == "$") &&
                   i + 1 < tokens.size() && tokens[i + 1].begin == t.end &&
                   (tokens[i + 1].kind == Kind::Word || tokens[i + 1].kind == Kind::Number)) {
            // A named parameter of the embedded engine stays a parameter, so that the callers'
            // refusal of parameters sees it.
            out += '?';
            ++i;
        } else if (t.kind == Kind::Punct && s == "=" && i + 1 < tokens.size() &&
                   tokens[i + 1].kind == Kind::Punct && text[tokens[i + 1].begin] == '=' &&
                   tokens[i + 1].begin == t.end) {
            out += '=';
            ++i; // "==" is "=" on the server
        } else {
            out += s;
        }
    }
    return out;
}

// ---------------------------------------------------------------------------------------------
// Schema statements of a script

// Reads one schema statement token by token; raises a StoreError naming the statement on
// anything it has no translation for.
class SchemaParser {
public:
    explicit SchemaParser(const Tokens& t) : t_(t) {}

    std::vector<std::string> createTable() {
        expectWord("create");
        if (t_.isWord(i_, "temp") || t_.isWord(i_, "temporary"))
            fail("a temporary table");
        expectWord("table");
        const bool ifNotExists = acceptIfExists(true);
        const std::string table = tableName();
        if (t_.isWord(i_, "as"))
            fail("a table created from a select");
        expectPunct('(');
        std::vector<Column> columns;
        std::vector<std::string> constraints;
        for (;;) {
            if (t_.isWord(i_, "constraint")) {
                i_ += 2; // constraint names have no use on the server
            }
            if (t_.isWord(i_, "primary") || t_.isWord(i_, "unique")) {
                const bool primary = t_.isWord(i_, "primary");
                ++i_;
                if (primary)
                    expectWord("key");
                const std::vector<std::string> names = nameList();
                if (primary)
                    for (std::size_t k = 0; k < names.size(); ++k)
                        markPrimary(columns, names[k], int(k) + 1);
                constraints.push_back("unique (" + quotedList(names) + ")");
            } else if (t_.isWord(i_, "check") || t_.isWord(i_, "foreign")) {
                fail("the table constraint " + word(i_));
            } else {
                columns.push_back(column());
            }
            if (t_.isPunct(i_, ','))
                ++i_;
            else
                break;
        }
        expectPunct(')');
        expectEnd();

        std::string body = "_rowid_ bigint generated by default as identity primary key";
        std::string viewColumns;
        std::string catalogRows;
        for (std::size_t k = 0; k < columns.size(); ++k) {
            const Column& c = columns[k];
            body += ", " + quoteName(c.name) + " " + serverType(c.declared) + c.clauses;
            viewColumns += (k ? ", " : "") + quoteName(c.name);
            catalogRows += std::string(k ? ", " : "") + "(" + literal(table) + ", " +
                           std::to_string(k) + ", " + literal(c.name) + ", " + literal(c.declared) +
                           ", " + std::to_string(c.primaryKey) + ")";
        }
        for (const std::string& c : constraints)
            body += ", " + c;
        // A select without an order reads the rows in row id order, as on the embedded engine,
        // where a single INTEGER primary key is the row id itself. (The order keeps the view
        // updatable.)
        std::string rowOrder = "_rowid_";
        int keyColumns = 0;
        for (const Column& c : columns)
            keyColumns += c.primaryKey > 0;
        for (const Column& c : columns)
            if (keyColumns == 1 && c.primaryKey > 0 && serverType(c.declared) == "bigint" &&
                c.declared.size() == 7)
                rowOrder = quoteName(c.name);
        // A view cannot be created "if not exists": it is made only when missing.
        const std::string view = "create view " + quoteName(table) + " as select " + viewColumns +
                                 " from " + rowsTable(table) + " order by " + rowOrder;
        return {
            std::string("create table ") + (ifNotExists ? "if not exists " : "") +
                rowsTable(table) + " (" + body + ")",
            ifNotExists ? "do $view$ begin if to_regclass(" + literal(quoteName(table)) +
                              ") is null then " + view + "; end if; end $view$"
                        : view,
            "insert into quorvel_columns (table_name, position, column_name, declared_type, "
            "primary_key) select * from (values " +
                catalogRows +
                ") as c where not exists (select 1 from quorvel_columns where lower(table_name) "
                "= " +
                literal(foldName(table)) + ")",
        };
    }

    std::vector<std::string> createIndex() {
        expectWord("create");
        const bool unique = t_.isWord(i_, "unique");
        if (unique)
            ++i_;
        expectWord("index");
        const bool ifNotExists = acceptIfExists(true);
        const std::string index = tableName();
        expectWord("on");
        const std::string table = tableName();
        expectPunct('(');
        std::vector<std::string> names;
        std::string keys;
        for (;;) {
            names.push_back(name());
            if (t_.isWord(i_, "asc"))
                ++i_;
            else if (t_.isName(i_) && !t_.isPunct(i_, ','))
                fail("the index key clause " + word(i_));
            keys += (names.size() > 1 ? ", " : "") + quoteName(names.back()) + " nulls first";
            if (!t_.isPunct(i_, ','))
                break;
            ++i_;
        }
        expectPunct(')');
        expectEnd();
        // Equal keys of a non-unique index are ordered by row id, as the cursor reads them.
        if (!unique)
            keys += ", _rowid_";
        std::string columns;
        for (const std::string& n : names)
            columns += (columns.empty() ? "" : ",") + n;
        return {
            std::string("create ") + (unique ? "unique " : "") + "index " +
                (ifNotExists ? "if not exists " : "") + quoteName(index) + " on " +
                rowsTable(table) + " (" + keys + ")",
            "insert into quorvel_indexes (index_name, table_name, is_unique, columns) select " +
                literal(index) + ", " + literal(table) + ", " + (unique ? "1" : "0") + ", " +
                literal(columns) +
                " where not exists (select 1 from quorvel_indexes where lower(index_name) = " +
                literal(foldName(index)) + ")",
        };
    }

    std::vector<std::string> drop() {
        expectWord("drop");
        const bool table = t_.isWord(i_, "table");
        ++i_;
        const bool ifExists = acceptIfExists(false);
        const std::string target = tableName();
        expectEnd();
        const std::string guard = ifExists ? "if exists " : "";
        const std::string folded = literal(foldName(target));
        if (!table)
            return {"drop index " + guard + quoteName(target),
                    "delete from quorvel_indexes where lower(index_name) = " + folded};
        return {"drop view " + guard + quoteName(target), "drop table " + guard + rowsTable(target),
                "delete from quorvel_indexes where lower(table_name) = " + folded,
                "delete from quorvel_columns where lower(table_name) = " + folded};
    }

    // pragma user_version = N, or pragma user_version(N); nullopt for any other pragma.
    std::optional<std::string> userVersion() {
        expectWord("pragma");
        if (t_.isName(i_) && t_.isPunct(i_ + 1, '.'))
            i_ += 2;
        if (!t_.isWord(i_, "user_version"))
            return std::nullopt;
        ++i_;
        const bool call = t_.isPunct(i_, '(');
        if (!call && !t_.isPunct(i_, '='))
            return std::nullopt;
        ++i_;
        std::string sign;
        if (t_.isPunct(i_, '-') || t_.isPunct(i_, '+'))
            sign = t_.textOf(i_++);
        if (i_ >= t_.size() || t_.at(i_).kind != Kind::Number)
            fail("a user version that is no number");
        const std::string number = sign + std::string(t_.textOf(i_++));
        if (call)
            expectPunct(')');
        expectEnd();
        return "update quorvel_meta set user_version = " + number;
    }

private:
    struct Column {
        std::string name;
        std::string declared; // the type as written, "" for none
        std::string clauses;  // " not null", " default ...", " unique"
        int primaryKey = 0;   // position within the primary key, from 1; 0 if not in it
    };

    [[noreturn]] void fail(const std::string& what) const {
        throw StoreError("The schema statement cannot be translated for the database server (" +
                             what + "): " + std::string(t_.size() ? t_.span(0, t_.size() - 1) : ""),
                         kRefused);
    }
    std::string word(std::size_t i) const {
        return i < t_.size() ? std::string(t_.textOf(i)) : "the end";
    }
    void expectWord(std::string_view w) {
        if (!t_.isWord(i_, w))
            fail("\"" + std::string(w) + "\" expected, found " + word(i_));
        ++i_;
    }
    void expectPunct(char c) {
        if (!t_.isPunct(i_, c))
            fail("\"" + std::string(1, c) + "\" expected, found " + word(i_));
        ++i_;
    }
    void expectEnd() const {
        if (i_ < t_.size())
            fail("unexpected " + word(i_));
    }
    bool acceptIfExists(bool negated) {
        if (!t_.isWord(i_, "if"))
            return false;
        ++i_;
        if (negated)
            expectWord("not");
        expectWord("exists");
        return true;
    }
    std::string name() {
        if (!t_.isName(i_) || t_.at(i_).kind == Kind::Broken)
            fail("a name expected, found " + word(i_));
        return nameOf(t_.textOf(i_++));
    }
    // A table or index name; a schema written before it is dropped (the connection picks it).
    std::string tableName() {
        std::string n = name();
        if (t_.isPunct(i_, '.')) {
            ++i_;
            n = name();
        }
        return n;
    }
    std::vector<std::string> nameList() {
        expectPunct('(');
        std::vector<std::string> names{name()};
        while (t_.isPunct(i_, ',')) {
            ++i_;
            names.push_back(name());
        }
        expectPunct(')');
        return names;
    }
    static std::string quotedList(const std::vector<std::string>& names) {
        std::string out;
        for (const std::string& n : names)
            out += (out.empty() ? "" : ", ") + quoteName(n);
        return out;
    }
    void markPrimary(std::vector<Column>& columns, const std::string& name, int position) const {
        for (Column& c : columns)
            if (foldName(c.name) == foldName(name)) {
                c.primaryKey = position;
                return;
            }
        fail("the key names no column " + name);
    }

    static bool isConstraintWord(const Tokens& t, std::size_t i) {
        for (const char* w : {"constraint", "primary", "not", "null", "unique", "check", "default",
                              "collate", "references", "generated", "as"})
            if (t.isWord(i, w))
                return true;
        return false;
    }

    // Type affinity as the embedded engine reads a declared type, on the server's types; a
    // text is compared byte for byte, as the embedded engine does.
    static std::string serverType(const std::string& declared) {
        const std::string upper = common::upperCase(declared);
        const auto has = [&](const char* part) { return upper.find(part) != std::string::npos; };
        if (has("INT"))
            return "bigint";
        if (has("BOOL"))
            return "smallint";
        if (has("REAL") || has("FLOA") || has("DOUB"))
            return "double precision";
        return "text collate \"C\"";
    }

    Column column() {
        Column c;
        c.name = name();
        // The declared type: words, with an optional size such as (10) or (10, 2).
        const std::size_t typeFrom = i_;
        while (i_ < t_.size() && t_.at(i_).kind == Kind::Word && !isConstraintWord(t_, i_))
            ++i_;
        if (i_ > typeFrom && t_.isPunct(i_, '(')) {
            while (i_ < t_.size() && !t_.isPunct(i_, ')'))
                ++i_;
            ++i_;
        }
        if (i_ > typeFrom)
            c.declared = std::string(t_.span(typeFrom, i_ - 1));
        while (i_ < t_.size() && !t_.isPunct(i_, ',') && !t_.isPunct(i_, ')')) {
            if (t_.isWord(i_, "constraint")) {
                i_ += 2;
            } else if (t_.isWord(i_, "not")) {
                ++i_;
                expectWord("null");
                c.clauses += " not null";
            } else if (t_.isWord(i_, "null")) {
                ++i_;
            } else if (t_.isWord(i_, "primary")) {
                ++i_;
                expectWord("key");
                if (t_.isWord(i_, "asc") || t_.isWord(i_, "desc"))
                    ++i_;
                if (t_.isWord(i_, "autoincrement"))
                    fail("autoincrement");
                // The row id stays the server's own: the key is only kept unique.
                c.primaryKey = 1;
                c.clauses += " unique";
            } else if (t_.isWord(i_, "unique")) {
                ++i_;
                c.clauses += " unique";
            } else if (t_.isWord(i_, "default")) {
                ++i_;
                c.clauses += " default " + defaultValue();
            } else {
                fail("the column clause " + word(i_));
            }
        }
        return c;
    }

    // A default: a literal, a signed number, a keyword value, or a parenthesised expression.
    std::string defaultValue() {
        const std::size_t from = i_;
        if (t_.isPunct(i_, '(')) {
            i_ = t_.closing(i_);
            if (i_ == Tokens::npos)
                i_ = t_.size();
        } else if (t_.isPunct(i_, '-') || t_.isPunct(i_, '+')) {
            ++i_;
        }
        if (i_ >= t_.size())
            fail("a default value expected");
        const std::string_view value = t_.span(from, i_++);
        return rewriteForServer(value, value);
    }

    const Tokens& t_;
    std::size_t i_ = 0;
};

// One statement of a script, from its first to its last significant token.
std::vector<std::string> translateOne(const Tokens& t) {
    SchemaParser parser(t);
    if (t.isWord(0, "create") && t.isWord(1, "table"))
        return parser.createTable();
    if (t.isWord(0, "create") && (t.isWord(1, "temp") || t.isWord(1, "temporary")))
        return parser.createTable(); // refused with its reason
    if (t.isWord(0, "create") &&
        (t.isWord(1, "index") || (t.isWord(1, "unique") && t.isWord(2, "index"))))
        return parser.createIndex();
    if (t.isWord(0, "drop") && (t.isWord(1, "table") || t.isWord(1, "index")))
        return parser.drop();
    const std::string_view text = t.span(0, t.size() - 1);
    if (t.isWord(0, "pragma"))
        if (std::optional<std::string> update = parser.userVersion())
            return {*update};
    return {translateStatement(text)};
}

} // namespace

std::string foldName(std::string_view name) {
    std::string out(name);
    for (char& c : out)
        c = lowerAscii(c);
    return out;
}

std::string quoteName(std::string_view name) { return sql::quote(foldName(name), '"'); }

std::string rowsTable(std::string_view name) { return quoteName(std::string(name) + "__rows"); }

std::string translateStatement(std::string_view text) {
    return rewriteForServer(store::translateStatement(text), text);
}

std::string numberParameters(std::string_view text, int& count) {
    const std::vector<Token> tokens = sql::tokenize(text);
    std::string out;
    out.reserve(text.size() + 8);
    count = 0;
    int last = 0;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const Token& t = tokens[i];
        const std::string_view s = text.substr(t.begin, t.end - t.begin);
        if (t.kind != Kind::Punct || s != "?") {
            out += s;
            continue;
        }
        // "?N" names its number; a bare "?" takes the one after the last used.
        const Token* next = i + 1 < tokens.size() ? &tokens[i + 1] : nullptr;
        const std::string_view digits = next && next->kind == Kind::Number && next->begin == t.end
                                            ? text.substr(next->begin, next->end - next->begin)
                                            : std::string_view();
        if (!digits.empty() && std::all_of(digits.begin(), digits.end(), sql::isDigit)) {
            last = std::atoi(std::string(digits).c_str());
            ++i;
        } else {
            ++last;
        }
        count = std::max(count, last);
        out += "$" + std::to_string(last);
    }
    return out;
}

std::vector<std::string> catalogStatements() {
    return {
        "create table if not exists quorvel_meta (user_version bigint not null)",
        "insert into quorvel_meta (user_version) select 0 where not exists (select 1 from "
        "quorvel_meta)",
        "create table if not exists quorvel_columns (table_name text collate \"C\", position int, "
        "column_name text collate \"C\", declared_type text, primary_key smallint)",
        "create table if not exists quorvel_indexes (position bigint generated always as "
        "identity, index_name text collate \"C\", table_name text collate \"C\", is_unique "
        "smallint, columns text)",
    };
}

std::vector<std::string> translateScript(std::string_view script) {
    std::vector<std::string> out;
    std::vector<Token> statement;
    const auto flush = [&] {
        if (statement.empty())
            return;
        for (std::string& s : translateOne(Tokens(script, statement)))
            out.push_back(std::move(s));
        statement.clear();
    };
    for (const Token& t : sql::tokenize(script)) {
        if (t.kind == Kind::Space || t.kind == Kind::Comment)
            continue;
        if (t.kind == Kind::Punct && script[t.begin] == ';')
            flush();
        else
            statement.push_back(t);
    }
    flush();
    return out;
}

} // namespace store::server
