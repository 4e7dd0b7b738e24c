#pragma once
// The module's exports as the cell window calls them, behind a small interface so that tests can
// record the calls instead of showing the module's dialogs. The real implementation calls the
// boundary functions exactly as a cell manager does.
#include "boundary/Structs.h"

#include <memory>
#include <string>
#include <vector>

namespace common {
class Ui;
}

namespace app {

class CellSession;

struct TemplateEntry {
    std::string name;
    int id = 0; // 0 for the "(New)" entry
};

class ModuleExports {
public:
    virtual ~ModuleExports() = default;
    // Loads the module against a cell (Initialize); messages go to `ui`. Raises when the folder
    // holds no cell or a database cannot be opened. A cell open before is closed first.
    virtual void openCell(const std::string& cellDir, common::Ui& ui) = 0;
    virtual void closeCell() = 0;
    virtual bool cellOpen() const = 0;
    // LoadTemplateNames, copied out, then FreeTemplateNames.
    virtual std::vector<TemplateEntry> templateNames(const std::string& fixture,
                                                     bool byFixture) = 0;
    virtual std::string templateName(int templateId) = 0;
    // NewTemplate; the name typed, or empty when the editor was cancelled.
    virtual std::string newTemplate(const std::string& fixture, int workpieces) = 0;
    virtual void modifyTemplate(int workpieces, int templateId) = 0;
    virtual void deleteTemplate() = 0;
    virtual void jobWizard(const TJobWizardInfo& info) = 0;
    virtual void deleteJob(const std::string& pallet, const std::string& job) = 0;
    virtual void copyFiles(const std::string& source, const std::string& destination) = 0;
};

class RealModuleExports : public ModuleExports {
public:
    RealModuleExports();
    ~RealModuleExports() override;
    void openCell(const std::string& cellDir, common::Ui& ui) override;
    void closeCell() override;
    bool cellOpen() const override { return session_ != nullptr; }
    std::vector<TemplateEntry> templateNames(const std::string& fixture, bool byFixture) override;
    std::string templateName(int templateId) override;
    std::string newTemplate(const std::string& fixture, int workpieces) override;
    void modifyTemplate(int workpieces, int templateId) override;
    void deleteTemplate() override;
    void jobWizard(const TJobWizardInfo& info) override;
    void deleteJob(const std::string& pallet, const std::string& job) override;
    void copyFiles(const std::string& source, const std::string& destination) override;

private:
    std::unique_ptr<CellSession> session_;
};

} // namespace app
