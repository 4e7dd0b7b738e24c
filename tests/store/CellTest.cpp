// The cell's database files: how the module opens them, which files it refuses, and when
// `quorvel init --force` may replace them.
#include "store/CellInit.h"
#include "store/DataMod.h"
#include "store/Database.h"
#include "store/Query.h"
#include "support/CellFixture.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <random>

using store::Database;
using store::StoreError;

namespace {

// Read straight from the engine, so that the probe itself changes nothing.
std::string journalMode(const std::string& file) {
    sqlite3* db = nullptr;
    sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READONLY, nullptr);
    std::string mode;
    sqlite3_exec(
        db, "pragma journal_mode",
        [](void* out, int, char** values, char**) {
            *static_cast<std::string*>(out) = values[0] ? values[0] : "";
            return 0;
        },
        &mode, nullptr);
    sqlite3_close(db);
    return mode;
}

int count(Database& db, const std::string& table) {
    store::Query q(db);
    q.setSql("select count(*) from " + table);
    q.open();
    return q.fields(0).asInteger();
}

class CellTest : public ::testing::Test {
protected:
    void SetUp() override { CreateDM(); }
    void TearDown() override { FreeDM(); }

    testsupport::CellFixture cell{true};
};

} // namespace

TEST_F(CellTest, SharedDatabaseIsOnlyReadAndKeepsItsJournalMode) {
    const std::string shared = cell.tmp.file("ZEL.db");
    const bool files = !testsupport::onTestServer();
    if (files) {
        cell.run("ZEL.db", "pragma journal_mode = delete");
        ASSERT_EQ(journalMode(shared), "delete");
    }
    DM().OpenStore(cell.dir(), cell.dir(), 0, 0);
    ASSERT_TRUE(DM().tableFixtureList.active());
    if (files) {
        EXPECT_EQ(journalMode(shared), "delete");
    }
    const int rows = count(DM().Database, "FixtureList");
    EXPECT_GT(rows, 0);
    EXPECT_THROW(DM().Database.execute("delete from FixtureList"), StoreError);
    EXPECT_EQ(count(DM().Database, "FixtureList"), rows);
    // The module's own database is written as before.
    DM().LocalDatabase.execute("delete from Jobs");
}

TEST_F(CellTest, FilesThatAreNoDatabasesOrOfAnotherSchemaVersionAreRefused) {
    // On a server a database is a schema, which is there or not: no file to get wrong.
    if (!testsupport::onTestServer()) {
        const std::string empty = cell.tmp.file("empty.db");
        testsupport::writeFile(empty, "");
        Database db("Local", "Default");
        db.setFileName(empty);
        auto text = testsupport::storeErrorText([&] { db.open(); });
        EXPECT_NE(text.find(empty + " is empty"), std::string::npos) << text;
        EXPECT_EQ(std::filesystem::file_size(empty), 0u);

        const std::string folder = cell.tmp.file("folder.db");
        std::filesystem::create_directory(folder);
        db.setFileName(folder);
        text = testsupport::storeErrorText([&] { db.open(); });
        EXPECT_NE(text.find(folder + " is a folder"), std::string::npos) << text;
    }

    // The local database of the cell must have the schema version the module knows.
    cell.run("Quorvel.db", "pragma user_version = 0");
    auto text = testsupport::storeErrorText([&] { DM().OpenStore(cell.dir(), cell.dir(), 0, 0); });
    EXPECT_NE(text.find("Quorvel.db"), std::string::npos) << text;
    EXPECT_NE(text.find("quorvel init --force"), std::string::npos) << text;
    EXPECT_FALSE(DM().LocalDatabase.connected());
    cell.run("Quorvel.db", "pragma user_version = 2");
    text = testsupport::storeErrorText([&] { DM().OpenStore(cell.dir(), cell.dir(), 0, 0); });
    EXPECT_NE(text.find("newer version"), std::string::npos) << text;
    cell.run("Quorvel.db", "pragma user_version = 1");
    DM().OpenStore(cell.dir(), cell.dir(), 0, 0);
    EXPECT_TRUE(DM().tableTemplateName.active());
}

TEST_F(CellTest, ForceIsRefusedWhileAnotherConnectionHoldsTheCell) {
    store::CellOptions force;
    force.overwrite = true;
    DM().OpenStore(cell.dir(), cell.dir(), 0, 0);
    const int templates = count(DM().LocalDatabase, "TemplateName");
    ASSERT_GT(templates, 0);
    auto text = testsupport::storeErrorText([&] { store::createCell(cell.dir(), force); });
    EXPECT_NE(text.find("in use"), std::string::npos) << text;
    // Nothing was replaced: a write of the holder lands in the cell's file.
    DM().LocalDatabase.execute("delete from TemplateName");
    DM().CloseStore();
    Database local("Local", "Default");
    local.setFileName(cell.tmp.file("Quorvel.db"));
    local.open();
    EXPECT_EQ(count(local, "TemplateName"), 0);
    local.close();

    // The host's database alone, held by a reading connection, also keeps the cell.
    Database shared("ZEL", "ZEL");
    shared.setFileName(cell.tmp.file("ZEL.db"));
    shared.setOpenForReading(true);
    shared.open();
    count(shared, "FixtureList");
    text = testsupport::storeErrorText([&] { store::createCell(cell.dir(), force); });
    EXPECT_NE(text.find("ZEL.db is open"), std::string::npos) << text;
    if (!testsupport::onTestServer()) {
        EXPECT_EQ(journalMode(cell.tmp.file("ZEL.db")), "wal");
    }
    shared.close();

    // A writer inside a transaction holds the cell whatever the journal mode.
    if (!testsupport::onTestServer()) {
        cell.run("ZEL.db", "pragma journal_mode = delete");
        Database writer("ZEL", "ZEL");
        writer.setFileName(cell.tmp.file("ZEL.db"));
        writer.open();
        store::Transaction writing(writer);
        text = testsupport::storeErrorText([&] { store::createCell(cell.dir(), force); });
        EXPECT_NE(text.find("ZEL.db is open"), std::string::npos) << text;
    }

    store::createCell(cell.dir(), force);
    local.open();
    EXPECT_EQ(count(local, "TemplateName"), templates);
}

// A server cell whose server is down: the message names the server, never its password.
TEST(ServerCell, AServerThatCannotBeReachedIsNamedWithoutItsPassword) {
    testsupport::TempDir dir;
    testsupport::writeFile(dir.file("server.cell"),
                           "# down\nserver = postgresql://quorvel:s3cret@/shop?host=" + dir.str() +
                               "/nothing\nname = shop\n");
    Database db("Local", "Default");
    db.setFileName(dir.file("Quorvel.db"));
    const auto text = testsupport::storeErrorText([&] { db.open(); });
    EXPECT_NE(text.find("Cannot open database Local on server postgresql://quorvel@/shop?host="),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("cannot be reached"), std::string::npos) << text;
    EXPECT_EQ(text.find("s3cret"), std::string::npos) << text;
    EXPECT_FALSE(db.connected());
}

// `quorvel init --server`: the cell file names the server, both schemas hold the demo, and a
// second init without --force is refused.
TEST(ServerCell, InitMakesBothSchemasAndTheCellFile) {
    if (!testsupport::onTestServer())
        GTEST_SKIP() << "a database server only";
    testsupport::TempDir dir;
    const std::string cellDir = dir.file("cell");
    store::CellOptions options;
    options.server = std::getenv("QUORVEL_TEST_SERVER");
    options.serverName = "init" + std::to_string(std::random_device()() % 1000000000);
    store::createCell(cellDir, options);
    EXPECT_NE(testsupport::readFile(cellDir + "/server.cell").find("name = " + options.serverName),
              std::string::npos);
    for (const char* file : {"ZEL.db", "Quorvel.db"})
        EXPECT_FALSE(std::filesystem::exists(cellDir + "/" + file)) << file;
    Database local("Local", "Default");
    local.setFileName(cellDir + "/Quorvel.db");
    local.open();
    EXPECT_GT(count(local, "TemplateName"), 0);
    local.close();
    const auto text = testsupport::storeErrorText([&] { store::createCell(cellDir, options); });
    EXPECT_NE(text.find("give --force"), std::string::npos) << text;
}
