#pragma once
// The subcommands of `quorvel`; each returns the process exit code.
#include <string>

namespace app {

// The cell used when none is given: $QUORVEL_CELL, else $XDG_DATA_HOME/quorvel/cell, else
// ~/.local/share/quorvel/cell.
std::string defaultCellDirectory();

int runInit(const std::string& cellDir, bool force, bool empty);
int runTemplates(const std::string& cellDir, const std::string& fixture, bool byFixture);

} // namespace app
