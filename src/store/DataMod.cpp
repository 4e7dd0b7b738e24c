#include "store/DataMod.h"

#include "common/Services.h"

#include <memory>

namespace {

std::string withTrailingSeparator(const std::string& dir) {
    if (dir.empty() || dir.back() == '/')
        return dir;
    return dir + '/';
}

std::unique_ptr<TDM>& instance() {
    static std::unique_ptr<TDM> dm;
    return dm;
}

} // namespace

TDM::TDM()
    : Session{schema::SharedSessionName, true},
      Database(schema::SharedDatabaseName, schema::SharedSessionName),
      tableFixturePoints(LocalDatabase, schema::FixturePoints),
      tableTemplateName(LocalDatabase, schema::TemplateName),
      tableTemplateData(LocalDatabase, schema::TemplateData),
      tableTemplateVersion(LocalDatabase, schema::TemplateVersion),
      tableCommands(LocalDatabase, schema::Commands),
      tableFixtureList(Database, schema::FixtureList), tableJobs(LocalDatabase, schema::Jobs),
      tableValueType(LocalDatabase, schema::ValueType),
      tableTemplateDefaults(LocalDatabase, schema::TemplateDefaults),
      LocalDatabase(schema::LocalDatabaseName, schema::LocalSessionName),
      tableBasketList(Database, schema::BasketList), tableSyntax(LocalDatabase, schema::Syntax) {
    // The sources are declared before their tables, so they are tied once all exist.
    sourceFixturePoints.setDataSet(&tableFixturePoints);
    sourceTemplateName.setDataSet(&tableTemplateName);
    sourceCommands.setDataSet(&tableCommands);
    sourceJobs.setDataSet(&tableJobs);
    sourceFixtureList.setDataSet(&tableFixtureList);
    tableFixturePoints.beforeDelete = [this] { return tableFixturePointsBeforeDelete(); };
    tableFixturePoints.beforeInsert = [this] { return tableFixturePointsBeforeInsert(); };
}

TDM::~TDM() = default;

void TDM::OpenStore(const std::string& localDir, const std::string& sharedDir, std::int32_t,
                    std::int32_t) {
    CloseStore();
    FLocalDir = withTrailingSeparator(localDir);
    FSharedDir = withTrailingSeparator(sharedDir);
    FSharedDatabasePath = FSharedDir + schema::SharedFile;
    Session.Active = true;

    // The host's database is only read here: opened for reading, its journal mode left alone.
    Database.setFileName(FSharedDatabasePath);
    Database.setPassword(schema::SharedPassword);
    Database.setOpenForReading(true);
    Database.open();
    if (!OpenTable(tableFixtureList, true))
        return;
    FBasketListExists = Database.tableExists(schema::BasketList);

    LocalDatabase.setFileName(FLocalDir + schema::LocalFile);
    LocalDatabase.setSchemaVersion(schema::LocalSchemaVersion);
    LocalDatabase.open();
    for (store::Table* table :
         {&tableTemplateName, &tableTemplateVersion, &tableTemplateData, &tableValueType,
          &tableTemplateDefaults, &tableCommands, &tableSyntax, &tableJobs}) {
        if (!OpenTable(*table, true))
            return;
    }
}

void TDM::CloseStore() {
    for (store::Table* table :
         {&tableFixturePoints, &tableTemplateName, &tableTemplateData, &tableTemplateVersion,
          &tableCommands, &tableFixtureList, &tableJobs, &tableValueType, &tableTemplateDefaults,
          &tableBasketList, &tableSyntax})
        table->close();
    Database.close();
    LocalDatabase.close();
    FBasketListExists = false;
}

bool TDM::OpenTable(store::Table& table, bool reportFailure) {
    try {
        table.open();
        const auto defs = table.indexDefs();
        if (!defs.empty() && defs.front() == schema::PrimaryIndex)
            table.setIndexName(schema::PrimaryIndex);
        return true;
    } catch (...) {
        if (reportFailure) {
            common::ui().message(common::MessageKind::Plain,
                                 table.tableName() + " is missing from " +
                                     table.database().databaseName(),
                                 common::MessageButtons::Ok);
            common::hostApplication().terminate();
        }
        return false;
    }
}

std::unique_ptr<store::Query> TDM::NewSharedQuery() {
    return std::make_unique<store::Query>(Database);
}

std::unique_ptr<store::Query> TDM::NewLocalQuery() {
    return std::make_unique<store::Query>(LocalDatabase);
}

void TDM::PositionTemplate(std::int32_t templateId) {
    tableTemplateName.findNearest({templateId});
    if (SelectTemplate)
        SelectTemplate();
}

void TDM::ClearTemplateNames(TStringList* list) {
    if (!list)
        return;
    for (int i = list->Count() - 1; i >= 0; --i)
        list->FreeObject(i);
    list->Clear();
}

std::int32_t TDM::PluginDatabaseMode() {
    if (FPluginDatabaseMode < 1 || FPluginDatabaseMode > 5)
        FPluginDatabaseMode = 1;
    return FPluginDatabaseMode;
}

bool TDM::tableFixturePointsBeforeDelete() { return FAllowPointEdits; }

bool TDM::tableFixturePointsBeforeInsert() { return FAllowPointEdits; }

TDM& DM() {
    if (!instance())
        throw std::logic_error("The store module does not exist: the library is not loaded");
    return *instance();
}

bool DMExists() { return instance() != nullptr; }

void CreateDM() {
    if (!instance())
        instance() = std::make_unique<TDM>();
}

void FreeDM() { instance().reset(); }
