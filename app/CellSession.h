#pragma once
// The module loaded against a cell, the way a host loads it: the library, Initialize on the cell
// directory, and the seams installed for the time of one command.
#include "Console.h"
#include "common/Services.h"

#include <memory>
#include <string>

namespace app {

class CellSession {
public:
    // Messages go to `ui` when given (a window's message boxes), otherwise to standard error.
    // Raises when the cell has no databases or a table is missing.
    explicit CellSession(const std::string& cellDir, common::Ui* ui = nullptr);
    ~CellSession();
    CellSession(const CellSession&) = delete;
    CellSession& operator=(const CellSession&) = delete;

private:
    ConsoleUi consoleUi_;
    ConsoleHost host_;
    CellPlatform platform_;
    common::ScopedServices services_;
};

} // namespace app
