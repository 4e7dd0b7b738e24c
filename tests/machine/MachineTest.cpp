// Machines and baskets of the cell as the shared database lists them.
#include "machine/MachineInfo.h"

#include "store/DataMod.h"
#include "support/CellFixture.h"

#include <gtest/gtest.h>

namespace {

class MachineTest : public ::testing::Test {
protected:
    void SetUp() override {
        CreateDM();
        DM().OpenStore(cell.dir(), cell.dir(), 0, 0);
    }
    void TearDown() override { FreeDM(); }

    // Lists the units, then reads the entries' texts.
    QStringList load(const std::string& config) {
        cell.run("ZEL.db", config);
        LoadMachines(&cmbMachines);
        QStringList texts;
        for (int i = 0; i < cmbMachines.count(); ++i)
            texts << cmbMachines.itemText(i);
        return texts;
    }

    testsupport::CellFixture cell;
    QComboBox cmbMachines;
};

} // namespace

TEST_F(MachineTest, ListsUnitsOfTheTypeIgnoringCaseOnly) {
    EXPECT_EQ(
        load("insert into Config values (1, 0, 'Unit', '4', 'Robot'),"
             " (1, 0, 'Unit', '3', 'FANUC ROBOCUT'), (1, 0, 'Unit', '5', 'Fanuc Robocut '),"
             " (1, 0, 'Unit', '1', 'Fanuc Robocut'), (1, 0, 'Cell', '6', 'fanuc robocut');"
             "insert into Config values (1, 3, 'Unit', 'Machine Name', 'Upper'),"
             " (1, 3, 'Unit', 'Display Number', '2'), (1, 3, 'Unit', 'Host', '127.0.0.1'),"
             " (1, 3, 'Unit', 'Port', '8193'), (1, 3, 'Unit', 'Machine Type', 'Robocut'),"
             " (1, 1, 'Unit', 'Machine Name', 'Mixed'), (1, 1, 'Unit', 'Display Number', '1')"),
        QStringList({"(Select a machine)", "01.02     Upper", "01.01     Mixed"}));
    EXPECT_EQ(cmbMachines.currentIndex(), 0);
    EXPECT_EQ(MachineOf(&cmbMachines, 3), nullptr);
    const TMachineInfo* upper = MachineOf(&cmbMachines, 1);
    ASSERT_NE(upper, nullptr);
    EXPECT_EQ(upper->Unit, 3);
    // The second unit lacks Host, Port and Machine Type: it carries the first one's.
    const TMachineInfo* mixed = MachineOf(&cmbMachines, 2);
    EXPECT_EQ(mixed->Host, "127.0.0.1");
    EXPECT_EQ(mixed->Port, "8193");
    EXPECT_EQ(mixed->MachineType, "Robocut");

    LoadMachines(&cmbMachines); // a reload replaces the entries
    EXPECT_EQ(cmbMachines.count(), 3);
}

TEST_F(MachineTest, EntryShowsCellAndDisplayNumberAndABadUnitNumberIsNamed) {
    EXPECT_EQ(load("insert into Config values (1, 0, 'Unit', '1', 'Robot')"),
              QStringList({"(Select a machine)"}));
    EXPECT_EQ(load("insert into Config values (1, 0, 'Unit', '2', 'FANUC Robocut'),"
                   " (142, 0, 'Unit', '2', 'FANUC Robocut'), (1, 2, 'Unit', 'Machine Name', 'A'),"
                   " (1, 2, 'Unit', 'Display Number', '7'), (142, 2, 'Unit', 'Machine Name', 'B'),"
                   " (142, 2, 'Unit', 'Display Number', '7x')"),
              QStringList({"(Select a machine)", "01.07     A", "142.00     B"}));
    EXPECT_EQ(MachineOf(&cmbMachines, 2)->DisplayNumber, 0);
    cell.run("ZEL.db", "insert into Config values (1, 0, 'Unit', 'two', 'FANUC Robocut')");
    const std::string error = testsupport::storeErrorText([&] { LoadMachines(&cmbMachines); });
    EXPECT_NE(error.find("'two'"), std::string::npos) << error;
}

TEST_F(MachineTest, BasketsInNumberOrderWithTheirState) {
    cell.run("ZEL.db", "insert into BasketList values (12, False), (3, True), (7, False)");
    QComboBox cmbAuxPallet;
    cmbAuxPallet.addItem("old");
    LoadBaskets(&cmbAuxPallet);
    ASSERT_EQ(cmbAuxPallet.count(), 3);
    EXPECT_EQ(cmbAuxPallet.itemText(0), "3");
    EXPECT_EQ(cmbAuxPallet.itemText(2), "12");
    EXPECT_TRUE(BasketFull(&cmbAuxPallet, 0));
    EXPECT_FALSE(BasketFull(&cmbAuxPallet, 1));
    EXPECT_FALSE(BasketFull(&cmbAuxPallet, 3));
}
