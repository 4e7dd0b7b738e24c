// The exports that answer from the store, driven as the host drives them.
#include "boundary/Exports.h"
#include "store/DataMod.h"
#include "support/CellFixture.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

class ExportsTest : public ::testing::Test {
protected:
    void SetUp() override { boundary::LibraryLoad(); }
    void TearDown() override { boundary::LibraryUnload(); }
    void init() { boundary::Initialize(cell.dir(), cell.dir()); }
    testsupport::CellFixture cell;
};

} // namespace

TEST_F(ExportsTest, InitializeOpensEveryTableAndPrimaryIndex) {
    boundary::Initialize(cell.dir() + "/", cell.dir());
    auto& dm = DM();
    EXPECT_EQ(dm.SharedDir(), cell.dir() + "/");
    std::string path;
    dm.SharedDatabasePath(path);
    EXPECT_EQ(path, cell.dir() + "/ZEL.db");
    for (auto* t : {&dm.tableTemplateName, &dm.tableTemplateVersion, &dm.tableTemplateData,
                    &dm.tableValueType, &dm.tableTemplateDefaults, &dm.tableCommands,
                    &dm.tableSyntax, &dm.tableJobs, &dm.tableFixtureList})
        EXPECT_TRUE(t->active()) << t->tableName();
    EXPECT_FALSE(dm.tableFixturePoints.active());
    EXPECT_FALSE(dm.tableBasketList.active());
    EXPECT_EQ(dm.tableJobs.indexName(), "Primary");
    EXPECT_EQ(dm.tableTemplateDefaults.indexName(), "");
    EXPECT_TRUE(dm.BasketListExists());
}

TEST_F(ExportsTest, MissingTablesAreNamedAndEndTheHost) {
    cell.run("ZEL.db", "drop table BasketList;");
    cell.run("Quorvel.db", "drop table Syntax; drop index \"Commands.Primary\";"
                           "create index \"Commands.ByDesc\" on Commands(Short_Desc);");
    init();
    auto& dm = DM();
    EXPECT_FALSE(dm.BasketListExists());
    ASSERT_EQ(cell.ui.messages(), std::vector<std::string>{"Syntax is missing from Local"});
    EXPECT_TRUE(dm.tableCommands.active()); // opened, with no index selected
    EXPECT_EQ(dm.tableCommands.indexName(), "");
    EXPECT_FALSE(dm.tableJobs.active()); // comes after Syntax
}

TEST_F(ExportsTest, MissingSharedTableStopsBeforeLocalDatabase) {
    cell.run("ZEL.db", "drop table FixtureList;");
    init();
    ASSERT_EQ(cell.ui.messages(), std::vector<std::string>{"FixtureList is missing from ZEL"});
    EXPECT_EQ(cell.host.terminateCalls, 1);
    EXPECT_FALSE(DM().LocalDatabase.connected());
}

TEST_F(ExportsTest, TemplateNamesAndLookups) {
    init();
    TStringList list;
    boundary::LoadTemplateNames("FX", list, true);
    ASSERT_EQ(list.Count(), 1);
    EXPECT_EQ(list.Strings(0), "(New)");
    EXPECT_EQ(list.Objects(0)->TemplateId, 0);
    cell.run("Quorvel.db", "insert into TemplateName values (7, 'FX', 'Seven', 1, 0);"
                           "insert into TemplateName values (3, 'FY', 'Three', 2, 0);"
                           "insert into TemplateName values (5, 'FX', 'Five', 1, 1);");
    boundary::LoadTemplateNames("FX", list, true);
    boundary::LoadTemplateNames("FX", list, true); // again on the same list: no doubles
    ASSERT_EQ(list.Count(), 3);
    EXPECT_EQ(list.Strings(1), "Five"); // id order
    EXPECT_EQ(list.Objects(2)->TemplateId, 7);
    boundary::LoadTemplateNames("ignored", list, false);
    EXPECT_EQ(list.Count(), 4);

    std::string name = "stale";
    boundary::GetTemplateName(99, name);
    EXPECT_EQ(name, "");

    // A quote in the fixture breaks the statement: a clear error naming it, nothing changed.
    auto text =
        testsupport::storeErrorText([&] { boundary::LoadTemplateNames("O'Brien", list, true); });
    EXPECT_EQ(text.rfind("The fixture name O'Brien cannot be used in a statement: ", 0), 0u)
        << text;
    EXPECT_NE(text.find("where Fixture = 'O'Brien'"), std::string::npos) << text;
    text = testsupport::storeErrorText([&] { boundary::DeleteJob("7'", "1"); });
    EXPECT_EQ(text.rfind("The pallet number 7' or job number 1 cannot be used", 0), 0u) << text;
    boundary::GetTemplateName(3, name);
    EXPECT_EQ(name, "Three");

    // The current template follows the nearest key, and the editor is told.
    int selected = 0;
    DM().SelectTemplate = [&] { ++selected; };
    DM().PositionTemplate(4);
    EXPECT_EQ(DM().tableTemplateName.fieldByName("Template_ID").asInteger(), 5);
    EXPECT_EQ(selected, 1);
}

TEST_F(ExportsTest, DeleteJobAndFixturePointsRefusal) {
    init();
    cell.run("Quorvel.db", "insert into Jobs (Pallet_Number, Job_Number, Line_Number) values "
                           "(1, 1, 0), (1, 1, 1), (1, 2, 0), (2, 1, 0);");
    boundary::DeleteJob("1", "1");
    auto q = DM().NewLocalQuery();
    q->setSql("select count(*) from Jobs");
    q->open();
    EXPECT_EQ(q->fields(0).asInteger(), 2);
    auto& points = DM().tableFixturePoints;
    points.open();
    points.appendRecord({"P1", 1, 0.5, 0.5});
    EXPECT_EQ(points.recordCount(), 0);
}

TEST(JobFileExists, MatchesNcFilesOnly) {
    testsupport::TempDir dir;
    EXPECT_FALSE(boundary::JobFileExists(dir.str()));
    EXPECT_FALSE(boundary::JobFileExists(dir.file("missing")));
    std::filesystem::create_directory(dir.file("folder.NC"));
    testsupport::writeFile(dir.file(".hidden.NC"), "");
    testsupport::writeFile(dir.file("notes.txt"), "");
    testsupport::writeFile(dir.file("x.NCX"), "");
    EXPECT_FALSE(boundary::JobFileExists(dir.str()));
    testsupport::writeFile(dir.file("o1234.nc"), "");
    EXPECT_TRUE(boundary::JobFileExists(dir.str()));
    EXPECT_TRUE(boundary::JobFileExists(dir.str() + "/"));
}
