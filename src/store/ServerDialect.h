#pragma once
// The text layer of the PostgreSQL engine: statement texts and scripts of the system rewritten
// for the server, with no connection of its own.
//
// On the server each table T of the system is a base table "t__rows" (a row id column first,
// then the declared columns, names folded to lower case) and a view "t" with exactly the declared
// columns, so that select *, positional inserts, updates and deletes written for the embedded
// engine run on the view unchanged. Three catalog tables per schema keep what the server cannot
// tell back in the system's own terms: the user version, the declared columns and the indexes.
#include <string>
#include <string_view>
#include <vector>

namespace store::server {

// A name as the server stores it: ASCII letters folded to lower case.
std::string foldName(std::string_view name);
// foldName, double-quoted, with '"' doubled: "jobs".
std::string quoteName(std::string_view name);
// The quoted base table that holds the rows of table `name` with their row ids: "jobs__rows".
std::string rowsTable(std::string_view name);

// A statement text of the system, or a condition (a filter text), rewritten for PostgreSQL.
// Runs store::translateStatement first, then: quoted names ("x", [x], `x`) become the quoted
// folded name; the words true/false become 1/0; like becomes ilike (the embedded like ignores
// case); ifnull becomes coalesce; == becomes =. A statement naming the row id (rowid, oid,
// _rowid_) reads the base table: the tables after from, update and join become
// "t__rows" as "t", and the word becomes _rowid_. Raises a StoreError (engine code 21) naming the
// text for what has no faithful rewrite: pragma, attach, detach, vacuum, the embedded engine's
// own tables, glob, regexp, "insert or ...", "replace into", "limit a, b", a row id beside a
// star column. Literals, comments and everything else are left exactly as written; an open
// literal stays open.
std::string translateStatement(std::string_view text);

// The `?` marks of a statement numbered $1, $2, ... in order (outside literals, quoted names and
// comments); `?N` keeps its number and the next bare `?` counts on from it, as the embedded
// engine numbers them. `count` gets the highest number used.
std::string numberParameters(std::string_view text, int& count);

// The catalog tables, as statements that can run again without harm; the user version row
// starts at 0.
std::vector<std::string> catalogStatements();

// A script of the system (statements separated by ';', comments, CREATE TABLE,
// CREATE [UNIQUE] INDEX, DROP TABLE, DROP INDEX, PRAGMA user_version, anything else) rewritten
// as PostgreSQL statements, one string each, in order. Other statements go through
// translateStatement. A table or index clause with no counterpart here (check, collate,
// references, descending keys, ...) raises a StoreError naming the statement.
std::vector<std::string> translateScript(std::string_view script);

} // namespace store::server
