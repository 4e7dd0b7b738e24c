#pragma once
// Rewrites a statement text of the system, as written, into one the engine accepts.
//
// The texts keep their formatting; what the engine does not take is rewritten: "truncate T",
// "insert into T (select ...)", a bare keyword such as Default in an insert's column list, and
// unquoted numbers placed as values or assigned by an update (quoted so that a text column keeps
// the exact digits typed; numeric columns take them back as numbers). Numbers in conditions and
// selects stay as they are. Literals, quoted names and comments are never touched, an open
// literal stays open for the engine to refuse, and text after the first statement is passed on
// unchanged so that the caller can refuse it.
#include <string>
#include <string_view>

namespace store {

std::string translateStatement(std::string_view text);

} // namespace store
