#pragma once
// Chief header of the machine link: the machines of this type and the auxiliary baskets of the
// cell, as the shared database's Config and BasketList tables list them, read into the wizard's
// combo boxes. Nothing here writes to the shared database.
#include <QComboBox>
#include <QMetaType>

#include <cstdint>
#include <memory>
#include <string>

// A machine of the cell, beside its entry in cmbMachines.
struct TMachineInfo {
    std::int16_t Unit = 0;          // unit number within the cell
    std::int16_t DisplayNumber = 0; // number shown to the operator
    std::string Host;               // network address of the machine's CNC
    std::string MachineType;
    std::string MachineName;
    std::string Port; // TCP port, as text
};

// An entry of cmbMachines owns its machine through its item data.
Q_DECLARE_METATYPE(std::shared_ptr<TMachineInfo>)

// Fills cmbMachines with "(Select a machine)" (selected) and one entry "CC.DD     Name" per unit of
// type "FANUC Robocut" (case ignored), in the order the query returns them. A unit number that is
// no integer raises a store::StoreError. Needs the store module open.
void LoadMachines(QComboBox* cmbMachines);
// Reads one setting of a unit into `value`; when the unit has no such setting, `value` keeps what
// it held.
void ReadUnitValue(const std::string& setting, std::string& value, std::int32_t cellNumber,
                   std::int32_t unitNumber);
// Frees the machines and empties the list.
void FreeMachines(QComboBox* cmbMachines);
// Fills cmbAuxPallet with the basket numbers in order; an entry's item data is 1 when the basket is
// full, else 0.
void LoadBaskets(QComboBox* cmbAuxPallet);

// The machine of an entry; nullptr for entry 0 and outside the list. Valid while the entry stands.
const TMachineInfo* MachineOf(const QComboBox* cmbMachines, int index);
// Whether the basket of an entry is full; false outside the list.
bool BasketFull(const QComboBox* cmbAuxPallet, int index);
