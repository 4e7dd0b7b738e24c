#pragma once
// A cell for the wizard's benchmarks: the demo cell with a big template of presets, defaults and
// sub-items, the store module open on it, and a wizard form for its job.
#include "common/Scripted.h"
#include "common/Services.h"
#include "job/Job.h"
#include "store/CellInit.h"
#include "store/DataMod.h"
#include "template/Template.h"

#include <array>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

// The demo cell with template 2 of `nodes` nodes: a header, then workpiece sections of presets,
// defaults and sub-items, and a footer.
class BigTemplateCell {
public:
    explicit BigTemplateCell(int nodes)
        : dir_(std::filesystem::temp_directory_path() / "quorvel-bench-job"),
          services_(common::Services{&ui_, &platform_, &host_}) {
        store::createCell(dir_.string(),
                          {.overwrite = true, .demoData = true, .server = {}, .serverName = {}});
        fillTemplate(nodes);
        CreateDM();
        DM().OpenStore(dir_.string(), dir_.string(), 0, 0);
        DM().PositionTemplate(2);
        info_.TemplateID = 2;
        info_.JobNumber = 1;
        info_.PalletNumber = "7";
        info_.MessageGate = &gate_;
        info_.LocalDirectory = dir_.string();
        platform_.exeDir = dir_.string() + "/";
        // The build alone: the job's keys, bound boxes and filters, without opening the job.
        form_ = std::make_unique<TdlgJob>();
        form_->SetWizardInfo(info_);
        form_->TakeJobKeys();
        form_->BindDataControls();
        form_->FilterJobTables();
    }
    ~BigTemplateCell() {
        form_.reset();
        FreeDlgTemplate();
        FreeDM();
        std::error_code ec;
        std::filesystem::remove_all(dir_, ec);
    }
    TdlgJob& form() { return *form_; }
    common::ScriptedUi& ui() { return ui_; }
    const std::filesystem::path& dir() const { return dir_; }
    // The record of the job, pallet 7, job 1 of the big template.
    const TJobWizardInfo& info() const { return info_; }
    // A fresh wizard form in place of the last one, as each call of the wizard makes one.
    TdlgJob& newForm() {
        form_.reset();
        form_ = std::make_unique<TdlgJob>();
        return *form_;
    }
    // A fresh form with the job opened, as the wizard's call leaves it.
    TdlgJob& openedForm() {
        TdlgJob& form = newForm();
        form.OpenJob(info_);
        return form;
    }
    static void deleteJob() {
        auto query = DM().NewLocalQuery();
        query->setSql("delete from Jobs where Pallet_Number = 7 and Job_Number = 1");
        query->execSQL();
    }

private:
    void fillTemplate(int nodes) {
        // level, code, syntax (-1 default), values
        static const std::vector<std::array<std::string, 5>> block{
            {"0", "WRK", "null", "null", "null"},  {"1", "PIECE", "-1", "''", "''"},
            {"1", "G92", "0", "'10'", "'5'"},      {"2", "UV", "0", "'0.5'", "'-0.5'"},
            {"1", "G04", "-1", "''", "''"},        {"1", "M98", "1", "'[P4]'", "'2'"},
            {"1", "OFFSET", "0", "'2'", "'1'"},    {"1", "G00", "-1", "''", "''"},
            {"1", "COMMENT", "0", "'CUT'", "'0'"}, {"1", "G54", "-1", "''", "''"},
        };
        store::Database db("bench", "bench");
        db.setFileName((dir_ / "Quorvel.db").string());
        db.open();
        store::Transaction tx(db);
        db.execute("insert into TemplateName values (2, 'FX-BIG', 'Big', 1, False)");
        const auto row = [&](int item, const std::array<std::string, 5>& r) {
            db.execute("insert into TemplateData values (2, " + std::to_string(item) + ", " + r[0] +
                       ", '" + r[1] + "', " + r[2] + ", " + r[3] + ", " + r[4] +
                       ", '', '', '', '', '', False, 0)");
        };
        row(0, {"0", "HDR", "null", "null", "null"});
        for (int item = 1; item < nodes - 1; ++item)
            row(item, block[static_cast<std::size_t>(item - 1) % block.size()]);
        row(nodes - 1, {"0", "FTR", "null", "null", "null"});
        tx.commit();
    }

    std::filesystem::path dir_;
    common::ScriptedUi ui_;
    common::ScriptedPlatform platform_;
    common::ScriptedHostApplication host_;
    common::ScopedServices services_;
    common::BoolMessageGate gate_{false};
    TJobWizardInfo info_;
    std::unique_ptr<TdlgJob> form_;
};
