#include "ModuleExports.h"

#include "CellSession.h"
#include "boundary/Exports.h"

namespace app {

RealModuleExports::RealModuleExports() = default;

RealModuleExports::~RealModuleExports() = default;

void RealModuleExports::openCell(const std::string& cellDir, common::Ui& ui) {
    session_.reset();
    session_ = std::make_unique<CellSession>(cellDir, &ui);
}

void RealModuleExports::closeCell() { session_.reset(); }

std::vector<TemplateEntry> RealModuleExports::templateNames(const std::string& fixture,
                                                            bool byFixture) {
    TStringList list;
    boundary::LoadTemplateNames(fixture, list, byFixture);
    std::vector<TemplateEntry> entries;
    for (int i = 0; i < list.Count(); ++i)
        entries.push_back({list.Strings(i), list.Objects(i) ? list.Objects(i)->TemplateId : 0});
    boundary::FreeTemplateNames(&list);
    return entries;
}

std::string RealModuleExports::templateName(int templateId) {
    std::string name;
    boundary::GetTemplateName(templateId, name);
    return name;
}

std::string RealModuleExports::newTemplate(const std::string& fixture, int workpieces) {
    std::string name;
    boundary::NewTemplate(fixture, workpieces, name);
    return name;
}

void RealModuleExports::modifyTemplate(int workpieces, int templateId) {
    boundary::ModifyTemplate(0, workpieces, templateId);
}

void RealModuleExports::deleteTemplate() { boundary::DeleteTemplate(); }

void RealModuleExports::jobWizard(const TJobWizardInfo& info) { boundary::JobWizard(info); }

void RealModuleExports::deleteJob(const std::string& pallet, const std::string& job) {
    boundary::DeleteJob(pallet, job);
}

void RealModuleExports::copyFiles(const std::string& source, const std::string& destination) {
    boundary::CopyFiles(source, destination);
}

} // namespace app
