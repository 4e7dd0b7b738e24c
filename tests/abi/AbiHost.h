#pragma once
// What the tests of the C ABI share as a foreign host: cells made with the engine's own API, a
// Qt application of the host's, and checks for cases that run in a child process.
#include "support/TestSupport.h"

#include <QApplication>
#include <dlfcn.h>
#include <sqlite3.h>

#include <iostream>
#include <string>

// The export `name` of the library loaded as `lib`, typed as the header declares it.
#define RC(name) reinterpret_cast<decltype(&name)>(dlsym(lib, #name))

namespace abitest {

// Runs statements on a database file; the first column of the first row they yield.
inline std::string sql(const std::string& file, const std::string& statements) {
    std::string first;
    sqlite3* db = nullptr;
    sqlite3_open(file.c_str(), &db);
    const auto keep = [](void* out, int, char** values, char**) {
        *static_cast<std::string*>(out) = values[0] ? values[0] : "";
        return 1; // one row is enough
    };
    sqlite3_exec(db, statements.c_str(), keep, &first, nullptr);
    sqlite3_close(db);
    return first;
}

// Both databases of a cell in `dir`, from the schema files and, with `demo`, the demo rows.
inline void makeCell(const testsupport::TempDir& dir, bool demo) {
    const std::string data = QUORVEL_DATA_DIR "/";
    for (const char* kind : {"schema_", "demo_"}) {
        if (!demo && std::string(kind) == "demo_")
            break;
        sql(dir.file("ZEL.db"), testsupport::readFile(data + kind + "shared.sql"));
        sql(dir.file("Quorvel.db"), testsupport::readFile(data + kind + "local.sql"));
    }
}

// The host's Qt application, on the offscreen platform (chosen before the application is made).
struct OffscreenPlatform {
    OffscreenPlatform() { qputenv("QT_QPA_PLATFORM", "offscreen"); }
};
struct HostApplication : OffscreenPlatform {
    int argc = 1;
    char name[5] = "host";
    char* argv[2] = {name, nullptr};
    QApplication app{argc, argv};
};

// Checks of a case in a child process: each failure is named on standard error.
inline int failures = 0;
inline void check(bool ok, const std::string& what) {
    if (!ok) {
        std::cerr << "failed: " << what << '\n';
        ++failures;
    }
}

} // namespace abitest
