#pragma once
// Reads a filter text made only of "column = literal" terms joined by "and", so that a table can
// tell which leading key columns a filter pins to constants.
#include "store/Value.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace store {

// The terms in order, or nullopt when the filter has any other shape (or, other operators, ...).
// Literals are integers or single-quoted texts; column names may be bracketed or double-quoted.
std::optional<std::vector<std::pair<std::string, Value>>> equalityTerms(const std::string& filter);

} // namespace store
