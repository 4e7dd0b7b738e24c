PRAGMA user_version = 1;

-- Local database "Quorvel.db": templates, jobs and the command vocabulary.
-- Rows are inserted by position, so the column order of every table is fixed.
-- Index names are global per database file: a table's primary index is named
-- "<Table>.Primary" and is always the first index created for that table.

-- One row per template.
CREATE TABLE TemplateName (
    Template_ID   INTEGER PRIMARY KEY NOT NULL,
    Fixture       TEXT,
    Name          TEXT,
    Version       INTEGER,
    "Auto Points" BOOLEAN
);
CREATE UNIQUE INDEX "TemplateName.Primary" ON TemplateName (Template_ID);

-- One row per tree node of a template; Item is the node's absolute (pre-order) index.
CREATE TABLE TemplateData (
    Template_ID INTEGER NOT NULL,
    Item        INTEGER NOT NULL,
    Node_Level  INTEGER,
    Code        TEXT,
    Syntax      INTEGER,
    Value_1     TEXT,
    Value_2     TEXT,
    Value_3     TEXT,
    Value_4     TEXT,
    Value_5     TEXT,
    Value_6     TEXT,
    Reserved    TEXT,
    Locked      BOOLEAN,
    Special     INTEGER
);
CREATE UNIQUE INDEX "TemplateData.Primary" ON TemplateData (Template_ID, Item);

-- Work table of the template copy; same layout as TemplateData, column for column.
CREATE TABLE TemplateCopy (
    Template_ID INTEGER NOT NULL,
    Item        INTEGER NOT NULL,
    Node_Level  INTEGER,
    Code        TEXT,
    Syntax      INTEGER,
    Value_1     TEXT,
    Value_2     TEXT,
    Value_3     TEXT,
    Value_4     TEXT,
    Value_5     TEXT,
    Value_6     TEXT,
    Reserved    TEXT,
    Locked      BOOLEAN,
    Special     INTEGER
);
CREATE UNIQUE INDEX "TemplateCopy.Primary" ON TemplateCopy (Template_ID, Item);

-- Change journal. Many rows share Sequence 0 within one version, so the key is not
-- unique; rows with equal keys keep their write order (rowid).
CREATE TABLE TemplateVersion (
    Template_ID INTEGER NOT NULL,
    Version     INTEGER NOT NULL,
    Sequence    INTEGER NOT NULL,
    Item        INTEGER,
    Action      TEXT,
    Value       TEXT,
    Number      INTEGER
);
CREATE INDEX "TemplateVersion.Primary" ON TemplateVersion (Template_ID, Version, Sequence);

-- Local defaults: Value_ID is a value type id as text, or a command code for a default syntax.
CREATE TABLE TemplateDefaults (
    Template_ID INTEGER,
    Value_ID    TEXT,
    "Default"   TEXT
);
CREATE INDEX "TemplateDefaults.ByTemplate" ON TemplateDefaults (Template_ID, Value_ID);

-- One row per kind of value; Type is the validation class (0 to 8).
CREATE TABLE ValueType (
    Value_ID    INTEGER NOT NULL,
    Type        INTEGER,
    Description TEXT,
    "Default"   TEXT
);
CREATE UNIQUE INDEX "ValueType.Primary" ON ValueType (Value_ID);

-- One row per CNC command; Default_Syntax counts from 0, null for none.
CREATE TABLE Commands (
    Code           TEXT NOT NULL,
    Short_Desc     TEXT,
    Long_Desc      TEXT,
    Default_Syntax INTEGER
);
CREATE UNIQUE INDEX "Commands.Primary" ON Commands (Code);

-- One row per syntax of a command; Item counts from 1 within the code, Command is 'ALL'
-- or the parent command a sub-item syntax holds for.
CREATE TABLE Syntax (
    Code         TEXT NOT NULL,
    Item         INTEGER NOT NULL,
    Command      TEXT NOT NULL,
    Syntax       TEXT,
    Type         INTEGER,
    Mask         TEXT,
    Description  TEXT,
    Value_Type_1 INTEGER,
    Value_Type_2 INTEGER,
    Value_Type_3 INTEGER,
    Value_Type_4 INTEGER,
    Value_Type_5 INTEGER,
    Value_Type_6 INTEGER
);
CREATE UNIQUE INDEX "Syntax.Primary" ON Syntax (Code, Item, Command);

-- One row per line of a job; Line_Number is the absolute index of the tree node.
CREATE TABLE Jobs (
    Pallet_Number INTEGER NOT NULL,
    Job_Number    INTEGER NOT NULL,
    Line_Number   INTEGER NOT NULL,
    Code          TEXT,
    Syntax_Item   INTEGER,
    Node_Level    INTEGER,
    Script_Line   TEXT,
    Value_1       TEXT,
    Value_2       TEXT,
    Value_3       TEXT,
    Value_4       TEXT,
    Value_5       TEXT,
    Value_6       TEXT,
    Image         INTEGER,
    State         INTEGER,
    Path          TEXT
);
CREATE UNIQUE INDEX "Jobs.Primary" ON Jobs (Pallet_Number, Job_Number, Line_Number);

-- Adjusted workpiece points of a part.
CREATE TABLE FixturePoints (
    Part_Number TEXT NOT NULL,
    Workpiece   INTEGER NOT NULL,
    Adjusted_X  REAL,
    Adjusted_Y  REAL
);
CREATE UNIQUE INDEX "FixturePoints.Primary" ON FixturePoints (Part_Number, Workpiece);
