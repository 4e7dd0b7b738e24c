#pragma once
// A cell whose databases live on a database server: a small file in the cell folder says where.
//
//     # quorvel cell on a database server
//     server = postgresql:///shop?host=/run/postgresql
//     name = cell1
//
// Each database file of the folder (ZEL.db, Quorvel.db, ...) is then the schema
// "<name>_<file stem in lower case>" (cell1_zel, cell1_quorvel) of that server's database.
#include <optional>
#include <string>

namespace store {

inline constexpr const char* ServerCellFile = "server.cell";

struct ServerLocation {
    std::string uri;      // the connection string as given
    std::string shownUri; // the same without a password, for messages
    std::string schema;
    std::string file; // the database file it stands for, for messages
};

// Where the database of `databaseFile` lives when its folder holds a server cell file; raises a
// StoreError naming the file when it cannot be read or lacks a line.
std::optional<ServerLocation> serverLocation(const std::string& databaseFile);

// Writes the server cell file into `dir`. `name` is made of letters, digits and '_'.
void writeServerCell(const std::string& dir, const std::string& uri, const std::string& name);

// The connection string without its password (URI or key = value form).
std::string withoutPassword(const std::string& uri);

} // namespace store
