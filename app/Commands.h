#pragma once
// The subcommands of `quorvel`; each returns the process exit code.
#include <string>

namespace app {

// The cell used when none is given: $QUORVEL_CELL, else $XDG_DATA_HOME/quorvel/cell, else
// ~/.local/share/quorvel/cell.
std::string defaultCellDirectory();

// `server` empty: SQLite files in the folder; otherwise both databases on that server.
int runInit(const std::string& cellDir, bool force, bool empty, const std::string& server,
            const std::string& serverName);
int runTemplates(const std::string& cellDir, const std::string& fixture, bool byFixture);

} // namespace app
