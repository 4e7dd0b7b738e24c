-- Shared database "ZEL.db": the cell manager's fixtures, baskets, configuration and queue.
-- Primary indexes are named "<Table>.Primary" (index names are global per database file).

-- One row per fixture or part.
CREATE TABLE FixtureList (
    Part_Number TEXT NOT NULL,
    Z           REAL,
    Description TEXT
);
CREATE UNIQUE INDEX "FixtureList.Primary" ON FixtureList (Part_Number);

-- Auxiliary baskets of the cell.
CREATE TABLE BasketList (
    Basket_Number INTEGER NOT NULL,
    Basket_Full   BOOLEAN
);
CREATE UNIQUE INDEX "BasketList.Primary" ON BasketList (Basket_Number);

-- Cell configuration as item/value pairs. Rows with Unit_Number 0 and Section 'Unit' list
-- the cell's units (Item = unit number, Value = unit type); a unit's own settings stand in
-- rows with Unit_Number = that unit, Section 'Unit', Item = setting name.
CREATE TABLE Config (
    Cell_Number INTEGER NOT NULL,
    Unit_Number INTEGER NOT NULL,
    Section     TEXT NOT NULL,
    Item        TEXT NOT NULL,
    Value       TEXT
);
CREATE UNIQUE INDEX "Config.Primary" ON Config (Cell_Number, Unit_Number, Section, Item);

-- Jobs the cell manager knows of; Template is the template a job uses.
CREATE TABLE JobList (
    Pallet_Number INTEGER NOT NULL,
    Job_Number    INTEGER NOT NULL,
    Template      INTEGER,
    Part_Number   TEXT,
    Machine       TEXT,
    Description   TEXT
);
CREATE UNIQUE INDEX "JobList.Primary" ON JobList (Pallet_Number, Job_Number);
CREATE INDEX "JobList.ByTemplate" ON JobList (Template);

-- Files queued for a job: the master program and the files that travel with it.
CREATE TABLE JobQueue (
    Pallet_Number INTEGER NOT NULL,
    Job_Number    INTEGER NOT NULL,
    Command_File  TEXT,
    File_List     TEXT
);
CREATE UNIQUE INDEX "JobQueue.Primary" ON JobQueue (Pallet_Number, Job_Number);
