#include "boundary/Exports.h"

#include "common/Convert.h"
#include "common/Format.h"
#include "common/Services.h"
#include "machine/Focus1Comm.h"
#include "store/DataMod.h"
#include "store/StoreError.h"
#include "template/DeleteTemplate.h"
#include "template/Template.h"
#include "template/TemplatePlugins.h"

#include <sqlite3.h>

#include <filesystem>
#include <functional>
#include <system_error>

namespace boundary {

namespace {

// Runs a statement that holds text given by the caller as it stands; text that breaks the
// statement is named before the engine's words. Other failures (a locked file, say) pass as they
// are.
void withCallerText(const std::string& what, const std::function<void()>& run) {
    try {
        run();
    } catch (const store::StoreError& e) {
        const int code = e.engineCode() & 0xff;
        if (code != SQLITE_ERROR && code != SQLITE_MISUSE)
            throw;
        throw store::StoreError(what + " cannot be used in a statement: " + e.what(),
                                e.engineCode());
    }
}

void withFixture(const std::string& fixture, const std::function<void()>& run) {
    withCallerText("The fixture name " + fixture, run);
}

} // namespace

namespace {
bool& loaded() {
    static bool value = false;
    return value;
}
} // namespace

void LibraryLoad() {
    if (loaded())
        return;
    CreateDM();
    CreateDlgTemplate();
    loaded() = true;
}

void LibraryUnload() {
    ExitFocasProcess();     // the FOCAS library's process state ends with the module
    ClearTemplatePlugins(); // as does the list of plug-ins, which may precede the load
    if (!loaded())
        return;
    FreeDlgTemplate();
    FreeDM();
    loaded() = false;
}

bool LibraryLoaded() { return loaded(); }

void PluginName(std::string& name) { name = ModuleName; }

void FileExtensions(std::string& extensions) { extensions = ModuleFileExtension; }

void AddPlugin(const TPluginEntry& entry) {
    if (entry.Kind == TemplateEnhancementKind)
        AddTemplatePlugin(entry.ModuleHandle);
}

void Initialize(const std::string& localDirectory, const std::string& sharedDirectory,
                std::int32_t reserved1, std::int32_t reserved2) {
    DM().OpenStore(localDirectory, sharedDirectory, reserved1, reserved2);
}

void LoadTemplateNames(const std::string& fixture, TStringList& list, bool byFixture) {
    TDM::ClearTemplateNames(&list);
    list.Add("(New)", std::make_unique<TLinkInfo>());
    auto query = DM().NewLocalQuery();
    query->setSql("select * from TemplateName");
    if (byFixture) {
        query->addLine(common::format("where Fixture = '%s'", {fixture}));
        withFixture(fixture, [&] { query->open(); });
    } else {
        query->open();
    }
    while (!query->eof()) {
        auto link = std::make_unique<TLinkInfo>();
        link->TemplateId = query->fieldByName(schema::Template_ID).asInteger();
        list.Add(query->fieldByName(schema::Name).asString(), std::move(link));
        query->next();
    }
}

void FreeTemplateNames(TStringList* list) { TDM::ClearTemplateNames(list); }

void GetTemplateName(std::int32_t templateId, std::string& name) {
    name.clear();
    auto query = DM().NewLocalQuery();
    query->setSql(
        common::format("select Name from TemplateName where Template_ID = %d", {templateId}));
    query->open();
    if (!query->eof())
        name = query->fields(0).asString();
}

bool JobFileExists(const std::string& directory) {
    namespace fs = std::filesystem;
    std::error_code ec;
    fs::directory_iterator it(directory.empty() ? fs::path(".") : fs::path(directory), ec);
    if (ec)
        return false;
    for (; it != fs::directory_iterator(); it.increment(ec)) {
        if (ec)
            return false;
        const std::string name = it->path().filename().string();
        // Plain and read-only files only: no directories, no hidden (dot) files.
        if (name.empty() || name[0] == '.' || !it->is_regular_file(ec))
            continue;
        if (name.size() >= 3 && common::sameText(name.substr(name.size() - 3), ".NC"))
            return true;
    }
    return false;
}

void DeleteJob(const std::string& palletNumber, const std::string& jobNumber) {
    auto query = DM().NewLocalQuery();
    query->setSql(common::format("delete from Jobs where Pallet_Number = %s and Job_Number = %s",
                                 {palletNumber, jobNumber}));
    withCallerText("The pallet number " + palletNumber + " or job number " + jobNumber,
                   [&] { query->execSQL(); });
}

void NewTemplate(const std::string& fixture, std::int32_t workpieces, std::string& name) {
    TdlgTemplate& form = dlgTemplate(); // first: without an editor no row is written
    std::int32_t id = 1;
    {
        auto query = DM().NewLocalQuery();
        query->setSql("select Template_ID from TemplateName order by Template_ID");
        query->open();
        // The lowest id not taken: the first row whose id lies above the candidate ends the walk.
        for (; !query->eof(); query->next()) {
            if (query->fields(0).asInteger() > id)
                break;
            ++id;
        }
        query->close();
        query->setSql(common::format("insert into TemplateName values(%d, '%s', '', 1, False)",
                                     {id, fixture}));
        withFixture(fixture, [&] { query->execSQL(); });
    }
    form.LoadTemplate(workpieces, id);
    if (common::ui().showModal(&form) == common::ModalResult::Ok) {
        name = DM().tableTemplateName.fieldByName(schema::Name).asString();
        return;
    }
    auto query = DM().NewLocalQuery();
    query->setSql(common::format("delete from TemplateName where Template_ID = %d", {id}));
    query->execSQL();
    name.clear();
}

void ModifyTemplate(std::int32_t, std::int32_t workpieces, std::int32_t templateId) {
    TdlgTemplate& form = dlgTemplate();
    DM().tableTemplateName.findNearest({templateId});
    form.LoadTemplate(workpieces, templateId);
    common::ui().showModal(&form);
}

void DeleteTemplate() { ShowDeleteTemplateDialog(); }

} // namespace boundary
