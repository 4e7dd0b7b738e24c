#pragma once
// Names of the tables and columns of both databases, and the fixed values stored in them.

namespace schema {

// Database files and names.
inline constexpr const char* SharedFile = "ZEL.db";
inline constexpr const char* LocalFile = "Quorvel.db";
inline constexpr const char* SharedDatabaseName = "ZEL";
inline constexpr const char* SharedSessionName = "ZEL";
inline constexpr const char* LocalDatabaseName = "Local";
inline constexpr const char* LocalSessionName = "Default";
inline constexpr const char* SharedPassword = "!!zkt47!!";
inline constexpr const char* PrimaryIndex = "Primary";
// The schema version (`user_version`) of the local database this module reads and writes.
inline constexpr int LocalSchemaVersion = 1;

// Tables.
inline constexpr const char* TemplateName = "TemplateName";
inline constexpr const char* TemplateData = "TemplateData";
inline constexpr const char* TemplateCopy = "TemplateCopy";
inline constexpr const char* TemplateVersion = "TemplateVersion";
inline constexpr const char* TemplateDefaults = "TemplateDefaults";
inline constexpr const char* ValueType = "ValueType";
inline constexpr const char* Commands = "Commands";
inline constexpr const char* Syntax = "Syntax";
inline constexpr const char* Jobs = "Jobs";
inline constexpr const char* FixturePoints = "FixturePoints";
inline constexpr const char* FixtureList = "FixtureList";
inline constexpr const char* BasketList = "BasketList";
inline constexpr const char* Config = "Config";
inline constexpr const char* JobList = "JobList";
inline constexpr const char* JobQueue = "JobQueue";

// Columns.
inline constexpr const char* Template_ID = "Template_ID";
inline constexpr const char* Fixture = "Fixture";
inline constexpr const char* Name = "Name";
inline constexpr const char* Version = "Version";
inline constexpr const char* Auto_Points = "Auto Points";
inline constexpr const char* Item = "Item";
inline constexpr const char* Node_Level = "Node_Level";
inline constexpr const char* Code = "Code";
inline constexpr const char* Syntax_ = "Syntax"; // the column, beside the table of that name
inline constexpr const char* Value_1 = "Value_1";
inline constexpr const char* Value_2 = "Value_2";
inline constexpr const char* Value_3 = "Value_3";
inline constexpr const char* Value_4 = "Value_4";
inline constexpr const char* Value_5 = "Value_5";
inline constexpr const char* Value_6 = "Value_6";
inline constexpr const char* Locked = "Locked";
inline constexpr const char* Special = "Special";
inline constexpr const char* Sequence = "Sequence";
inline constexpr const char* Action = "Action";
inline constexpr const char* Value = "Value";
inline constexpr const char* Number = "Number";
inline constexpr const char* Value_ID = "Value_ID";
inline constexpr const char* Default = "Default";
inline constexpr const char* Type = "Type";
inline constexpr const char* Description = "Description";
inline constexpr const char* Short_Desc = "Short_Desc";
inline constexpr const char* Long_Desc = "Long_Desc";
inline constexpr const char* Default_Syntax = "Default_Syntax";
inline constexpr const char* Command = "Command";
inline constexpr const char* Mask = "Mask";
inline constexpr const char* Value_Type_1 = "Value_Type_1";
inline constexpr const char* Pallet_Number = "Pallet_Number";
inline constexpr const char* Job_Number = "Job_Number";
inline constexpr const char* Line_Number = "Line_Number";
inline constexpr const char* Syntax_Item = "Syntax_Item";
inline constexpr const char* Script_Line = "Script_Line";
inline constexpr const char* Image = "Image";
inline constexpr const char* State = "State";
inline constexpr const char* Path = "Path";
inline constexpr const char* Part_Number = "Part_Number";
inline constexpr const char* Z = "Z";
inline constexpr const char* Workpiece = "Workpiece";
inline constexpr const char* Adjusted_X = "Adjusted_X";
inline constexpr const char* Adjusted_Y = "Adjusted_Y";
inline constexpr const char* Basket_Number = "Basket_Number";
inline constexpr const char* Basket_Full = "Basket_Full";
inline constexpr const char* Cell_Number = "Cell_Number";
inline constexpr const char* Unit_Number = "Unit_Number";
inline constexpr const char* Section = "Section";
inline constexpr const char* Command_File = "Command_File";
inline constexpr const char* File_List = "File_List";

// "Value_1" to "Value_6" by number from 1.
inline const char* ValueColumn(int n) {
    static const char* const names[] = {Value_1, Value_2, Value_3, Value_4, Value_5, Value_6};
    return (n >= 1 && n <= 6) ? names[n - 1] : "";
}
inline const char* ValueTypeColumn(int n) {
    static const char* const names[] = {"Value_Type_1", "Value_Type_2", "Value_Type_3",
                                        "Value_Type_4", "Value_Type_5", "Value_Type_6"};
    return (n >= 1 && n <= 6) ? names[n - 1] : "";
}

// Section codes and the placeholder line.
inline constexpr const char* HeaderCode = "HDR";
inline constexpr const char* WorkpieceCode = "WRK";
inline constexpr const char* FooterCode = "FTR";
inline constexpr const char* PlaceholderCode = "NOP";

} // namespace schema
