#include "Commands.h"

#include "CellSession.h"
#include "boundary/Exports.h"
#include "common/Services.h"
#include "store/CellInit.h"
#include "store/StoreError.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace app {

std::string defaultCellDirectory() {
    if (const char* cell = std::getenv("QUORVEL_CELL"); cell && *cell)
        return cell;
    if (const char* data = std::getenv("XDG_DATA_HOME"); data && *data)
        return (std::filesystem::path(data) / "quorvel" / "cell").string();
    const char* home = std::getenv("HOME");
    return (std::filesystem::path(home && *home ? home : ".") / ".local" / "share" / "quorvel" /
            "cell")
        .string();
}

int runInit(const std::string& cellDir, bool force, bool empty, const std::string& server,
            const std::string& serverName) {
    store::CellOptions options;
    options.overwrite = force;
    options.demoData = !empty;
    options.server = server;
    options.serverName = serverName;
    store::createCell(cellDir, options);
    std::cout << "Created " << (empty ? "an empty" : "the demo") << " cell in " << cellDir;
    if (!server.empty())
        std::cout << " (databases on the server, schemas " << serverName << "_zel and "
                  << serverName << "_quorvel)";
    std::cout << '\n';
    return 0;
}

int runTemplates(const std::string& cellDir, const std::string& fixture, bool byFixture) {
    CellSession session(cellDir);
    TStringList list;
    boundary::LoadTemplateNames(fixture, list, byFixture);
    for (int i = 0; i < list.Count(); ++i)
        std::cout << list.Objects(i)->TemplateId << '\t' << list.Strings(i) << '\n';
    boundary::FreeTemplateNames(&list);
    return 0;
}

} // namespace app
