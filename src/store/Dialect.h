#pragma once
// Rewrites a statement text of the system, as written, into one the engine accepts.
//
// The texts keep their formatting; what the engine does not take is rewritten: "truncate T",
// "insert into T (select ...)", a bare Default in an insert's column list, and unquoted numbers
// placed as values (quoted so that a text column keeps the exact digits typed).
#include <string>
#include <string_view>

namespace store {

std::string translateStatement(std::string_view text);

} // namespace store
