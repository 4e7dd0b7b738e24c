#include "Commands.h"

#include "Console.h"
#include "boundary/Exports.h"
#include "common/Services.h"
#include "store/CellInit.h"
#include "store/StoreError.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace app {

namespace {

// Loads the module against a cell with console services, the way a host would.
class Session {
public:
    explicit Session(const std::string& cellDir)
        : services_(common::Services{&ui_, nullptr, &host_}) {
        boundary::LibraryLoad();
        const auto shared = std::filesystem::path(cellDir) / "ZEL.db";
        if (!std::filesystem::is_regular_file(shared))
            throw std::runtime_error("no cell in " + cellDir + " (run `quorvel init` first)");
        boundary::Initialize(cellDir, cellDir);
        if (host_.terminated)
            throw std::runtime_error("the cell in " + cellDir + " is incomplete");
    }
    ~Session() { boundary::LibraryUnload(); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

private:
    ConsoleUi ui_;
    ConsoleHost host_;
    common::ScopedServices services_;
};

} // namespace

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

int runInit(const std::string& cellDir, bool force, bool empty) {
    store::createCell(cellDir, {.overwrite = force, .demoData = !empty});
    std::cout << "Created " << (empty ? "an empty" : "the demo") << " cell in " << cellDir << '\n';
    return 0;
}

int runTemplates(const std::string& cellDir, const std::string& fixture, bool byFixture) {
    Session session(cellDir);
    TStringList list;
    boundary::LoadTemplateNames(fixture, list, byFixture);
    for (int i = 0; i < list.Count(); ++i)
        std::cout << list.Objects(i)->TemplateId << '\t' << list.Strings(i) << '\n';
    boundary::FreeTemplateNames(&list);
    return 0;
}

} // namespace app
