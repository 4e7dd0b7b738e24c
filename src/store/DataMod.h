#pragma once
// The one store module: both databases, the table objects the forms bind to, and the two factories
// of ad-hoc queries. Created when the library loads and freed when it unloads.
#include "common/StringList.h"
#include "store/Database.h"
#include "store/Dataset.h"
#include "store/Query.h"
#include "store/Schema.h"
#include "store/Table.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

// A named session; every database names its session by string.
struct TSession {
    std::string SessionName;
    bool Active = false;
};

class TDM {
public:
    TDM();
    ~TDM();
    TDM(const TDM&) = delete;
    TDM& operator=(const TDM&) = delete;

    // Components, in declaration order.
    store::DataSource sourceFixturePoints;
    store::DataSource sourceTemplateName;
    store::DataSource sourceCommands;
    store::DataSource sourceJobs;
    store::DataSource sourceFixtureList;
    TSession Session;
    store::Database Database;
    store::Table tableFixturePoints;
    store::Table tableTemplateName;
    store::Table tableTemplateData;
    store::Table tableTemplateVersion;
    store::Table tableCommands;
    store::Table tableFixtureList;
    store::Table tableJobs;
    store::Table tableValueType;
    store::Table tableTemplateDefaults;
    store::Database LocalDatabase;
    store::Table tableBasketList;
    store::Table tableSyntax;

    // Opens both databases and the tables, in the fixed order. A table that cannot be opened is
    // named in a message and the host is told to terminate; a database file that cannot be
    // opened raises a StoreError to the caller. The two numbers are ignored.
    void OpenStore(const std::string& localDir, const std::string& sharedDir,
                   std::int32_t reserved1, std::int32_t reserved2);
    // Closes every table and both databases; a second OpenStore starts from here.
    void CloseStore();
    // Opens a table and selects its "Primary" index when that is the first one.
    bool OpenTable(store::Table& table, bool reportFailure);

    // New queries; the caller owns them.
    std::unique_ptr<store::Query> NewSharedQuery();
    std::unique_ptr<store::Query> NewLocalQuery();

    // Makes `templateId` (or the nearest key after it) the current template and selects it.
    void PositionTemplate(std::int32_t templateId);
    // Frees the objects beside the names and empties the list; nothing given, nothing done.
    static void ClearTemplateNames(TStringList* list);
    void SharedDatabasePath(std::string& path) const { path = FSharedDatabasePath; }
    std::int32_t PluginDatabaseMode();
    bool BasketListExists() const { return FBasketListExists; }

    const std::string& LocalDir() const { return FLocalDir; }
    const std::string& SharedDir() const { return FSharedDir; }

    // Installed by the template layer: selects the current template in the editor's state.
    std::function<void()> SelectTemplate;

private:
    // Refuse every insert and delete on the fixture points unless point edits are allowed.
    bool tableFixturePointsBeforeDelete();
    bool tableFixturePointsBeforeInsert();

    bool FAllowPointEdits = false;
    std::string FLocalDir;
    std::string FSharedDir;
    std::string FSharedDatabasePath;
    std::int32_t FPluginDatabaseMode = 0;
    bool FBasketListExists = false;
};

// The instance of the loaded library.
TDM& DM();
bool DMExists();
void CreateDM();
void FreeDM();
