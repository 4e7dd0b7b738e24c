#include "machine/MachineInfo.h"

#include "common/Convert.h"
#include "common/Format.h"
#include "store/DataMod.h"

void LoadMachines(QComboBox* cmbMachines) {
    FreeMachines(cmbMachines);
    cmbMachines->addItem("(Select a machine)");
    cmbMachines->setCurrentIndex(0);

    auto units = DM().NewSharedQuery();
    units->setSql("select * from Config where Unit_Number = 0 and [Section] = 'Unit'");
    units->open();
    // One text per setting for all rows: a setting a unit lacks keeps the previous unit's value.
    std::string machineType, machineName, displayNumber, host, port;
    for (; !units->eof(); units->next()) {
        const std::int32_t cell = units->fieldByName(schema::Cell_Number).asInteger();
        if (!common::sameText(units->fieldByName(schema::Value).asString(), "fanuc robocut"))
            continue;
        const std::int32_t unit = units->fieldByName(schema::Item).asInteger();
        auto machine = std::make_shared<TMachineInfo>();
        machine->Unit = static_cast<std::int16_t>(unit);
        ReadUnitValue("Machine Type", machineType, cell, unit);
        machine->MachineType = machineType;
        ReadUnitValue("Machine Name", machineName, cell, unit);
        machine->MachineName = machineName;
        ReadUnitValue("Display Number", displayNumber, cell, unit);
        machine->DisplayNumber = static_cast<std::int16_t>(common::strToIntDef(displayNumber, 0));
        ReadUnitValue("Host", host, cell, unit);
        machine->Host = host;
        ReadUnitValue("Port", port, cell, unit);
        machine->Port = port;

        const std::string text = common::format(
            "%2.2d.%2.2d     %s", {cell, machine->DisplayNumber, machine->MachineName});
        cmbMachines->addItem(QString::fromStdString(text), QVariant::fromValue(machine));
    }
}

void ReadUnitValue(const std::string& setting, std::string& value, std::int32_t cellNumber,
                   std::int32_t unitNumber) {
    auto query = DM().NewSharedQuery();
    query->setSql(common::format("select [Value] from Config where Cell_Number = %d and "
                                 "Unit_Number = %d and [Section] = 'Unit' and Item = '%s'",
                                 {cellNumber, unitNumber, setting}));
    query->open();
    if (!query->eof())
        value = query->fieldByName(schema::Value).asString();
}

void FreeMachines(QComboBox* cmbMachines) {
    // The entries' data hold the only references to the machines.
    cmbMachines->clear();
}

void LoadBaskets(QComboBox* cmbAuxPallet) {
    cmbAuxPallet->clear();
    auto baskets = DM().NewSharedQuery();
    baskets->setSql("select * from BasketList order by Basket_Number");
    baskets->open();
    for (; !baskets->eof(); baskets->next())
        cmbAuxPallet->addItem(
            QString::fromStdString(baskets->fieldByName(schema::Basket_Number).asString()),
            baskets->fieldByName(schema::Basket_Full).asBoolean() ? 1 : 0);
}

const TMachineInfo* MachineOf(const QComboBox* cmbMachines, int index) {
    if (index <= 0 || index >= cmbMachines->count())
        return nullptr;
    return cmbMachines->itemData(index).value<std::shared_ptr<TMachineInfo>>().get();
}

bool BasketFull(const QComboBox* cmbAuxPallet, int index) {
    if (index < 0 || index >= cmbAuxPallet->count())
        return false;
    return cmbAuxPallet->itemData(index).toInt() != 0;
}
