// The template editor through the C ABI: it needs the host's Qt application, and a cancelled
// NewTemplate leaves no template behind. Each case runs in a child process, so that the host's
// application and the library's windows never outlive one another.
#include "RobocutAbi.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QDialog>
#include <QTimer>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdlib>
#include <string>

namespace {

std::string cellWithSchema(const testsupport::TempDir& dir) {
    for (const auto& [file, schema] :
         {std::pair{"ZEL.db", "schema_shared.sql"}, std::pair{"Quorvel.db", "schema_local.sql"}}) {
        sqlite3* db = nullptr;
        sqlite3_open(dir.file(file).c_str(), &db);
        const auto sql = testsupport::readFile(std::string(QUORVEL_DATA_DIR) + "/" + schema);
        sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr);
        sqlite3_close(db);
    }
    return dir.str();
}

int templateRows(const testsupport::TempDir& dir) {
    sqlite3* db = nullptr;
    sqlite3_open(dir.file("Quorvel.db").c_str(), &db);
    sqlite3_stmt* stmt = nullptr;
    sqlite3_prepare_v2(db, "select count(*) from TemplateName", -1, &stmt, nullptr);
    sqlite3_step(stmt);
    const int n = sqlite3_column_int(stmt, 0);
    sqlite3_finalize(stmt);
    sqlite3_close(db);
    return n;
}

// Runs the exports in this (child) process and ends it with 0 when every check held.
[[noreturn]] void runEditorCase(bool withApplication) {
    testsupport::TempDir dir;
    const std::string cell = cellWithSchema(dir);
    void* lib = dlopen(QUORVEL_ABI_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (!lib)
        std::_Exit(10);
    auto initialize = reinterpret_cast<int32_t (*)(const char*, const char*, int32_t, int32_t)>(
        dlsym(lib, "Initialize"));
    auto newTemplate = reinterpret_cast<int32_t (*)(const char*, int32_t, char*, int32_t)>(
        dlsym(lib, "NewTemplate"));
    auto lastError = reinterpret_cast<const char* (*)()>(dlsym(lib, "RcLastError"));
    auto deleteTemplate = reinterpret_cast<int32_t (*)()>(dlsym(lib, "DeleteTemplate"));
    if (initialize(cell.c_str(), cell.c_str(), 0, 0) != 0)
        std::_Exit(11);
    char name[64] = "stale";
    if (!withApplication) {
        const bool refused = newTemplate("FX", 2, name, sizeof name) == -1 && *lastError() != 0 &&
                             deleteTemplate() == -1;
        std::_Exit(refused && templateRows(dir) == 0 ? 0 : 12);
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int argc = 1;
    char appName[] = "host";
    char* argv[] = {appName, nullptr};
    QApplication app(argc, argv);
    // The operator closes each window as soon as it shows.
    int shown = 0;
    const auto closeWhenShown = [&] {
        QTimer::singleShot(0, [&] {
            if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                ++shown;
                dialog->reject();
            }
        });
    };
    closeWhenShown();
    const int length = newTemplate("FX", 2, name, sizeof name);
    closeWhenShown();
    const int deleted = deleteTemplate();
    std::_Exit(shown == 2 && length == 0 && name[0] == 0 && deleted == 0 && templateRows(dir) == 0
                   ? 0
                   : 13);
}

} // namespace

TEST(CAbiTemplateEditor, RefusedWithoutTheHostsApplication) {
    EXPECT_EXIT(runEditorCase(false), ::testing::ExitedWithCode(0), "");
}

TEST(CAbiTemplateEditor, WindowsShowInTheHostsApplicationAndCancelLeavesNothing) {
    EXPECT_EXIT(runEditorCase(true), ::testing::ExitedWithCode(0), "");
}
