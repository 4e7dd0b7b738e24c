#pragma once
// The database server engine: a database of the system as one schema of a PostgreSQL database,
// reached through libpq.
#include "store/CellFile.h"
#include "store/Engine.h"
#include "store/SqliteEngine.h"

namespace store {

// Connects and selects the schema; `create` makes the schema and its catalog when missing.
// Raises a StoreError naming the server when it cannot be reached, and the schema when it is
// missing.
std::unique_ptr<Connection> openServer(const ServerLocation& location,
                                       const FileOpenOptions& options);

// True when the schema exists on the server.
bool serverSchemaExists(const ServerLocation& location);
// True when another connection of quorvel works in the schema.
bool serverSchemaInUse(const ServerLocation& location);
// Drops the schema and everything in it.
void dropServerSchema(const ServerLocation& location);

} // namespace store
