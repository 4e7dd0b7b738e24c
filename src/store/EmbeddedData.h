#pragma once
// The data/*.sql files compiled into the library, by file name ("schema_local.sql").
#include <string_view>

namespace store {

// Empty when no such file was embedded.
std::string_view embeddedData(std::string_view fileName);

} // namespace store
