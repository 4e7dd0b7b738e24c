#include "CellSession.h"

#include "boundary/Exports.h"
#include "store/CellFile.h"

#include <filesystem>
#include <stdexcept>

namespace app {

CellSession::CellSession(const std::string& cellDir, common::Ui* ui)
    : platform_(cellDir), services_(common::Services{ui ? ui : &consoleUi_, &platform_, &host_}) {
    const std::filesystem::path dir(cellDir);
    if (!std::filesystem::is_regular_file(dir / "ZEL.db") &&
        !std::filesystem::is_regular_file(dir / store::ServerCellFile))
        throw std::runtime_error("no cell in " + cellDir + " (run `quorvel init` first)");
    boundary::LibraryLoad();
    try {
        boundary::Initialize(cellDir, cellDir);
    } catch (...) {
        boundary::LibraryUnload();
        throw;
    }
    if (host_.terminated) {
        boundary::LibraryUnload();
        throw std::runtime_error("the cell in " + cellDir + " is incomplete");
    }
}

CellSession::~CellSession() { boundary::LibraryUnload(); }

} // namespace app
