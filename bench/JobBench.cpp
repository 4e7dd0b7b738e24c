// Job build from a template of 10,000 nodes beside the bare insert of its rows, and the composer
// on 100,000 lines of mixed masks.
#include "BenchSupport.h"
#include "common/Scripted.h"
#include "common/Services.h"
#include "job/Job.h"
#include "store/CellInit.h"
#include "store/DataMod.h"

#include <QApplication>
#include <benchmark/benchmark.h>

#include <array>
#include <filesystem>
#include <memory>
#include <vector>

namespace {

constexpr int TemplateNodes = 10000;
constexpr int ComposedLines = 100000;

QApplication& application() { return benchApplication(); }

// The demo cell with template 2 of `nodes` nodes: a header, then workpiece sections of presets,
// defaults and sub-items, and a footer.
class BigTemplateCell {
public:
    explicit BigTemplateCell(int nodes)
        : dir_(std::filesystem::temp_directory_path() / "quorvel-bench-job"),
          services_(common::Services{&ui_, &platform_, &host_}) {
        store::createCell(dir_.string(), {.overwrite = true, .demoData = true});
        fillTemplate(nodes);
        CreateDM();
        DM().OpenStore(dir_.string(), dir_.string(), 0, 0);
        DM().PositionTemplate(2);
        form_ = std::make_unique<TdlgJob>();
        TJobWizardInfo info;
        info.TemplateID = 2;
        info.JobNumber = 1;
        info.PalletNumber = "7";
        form_->SetWizardInfo(info);
        form_->TakeJobKeys();
        form_->BindDataControls();
        form_->FilterJobTables();
    }
    ~BigTemplateCell() {
        form_.reset();
        FreeDM();
        std::error_code ec;
        std::filesystem::remove_all(dir_, ec);
    }
    TdlgJob& form() { return *form_; }

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
    std::unique_ptr<TdlgJob> form_;
};

void BM_BuildJob10000Nodes(benchmark::State& state) {
    application();
    BigTemplateCell cell(TemplateNodes);
    for (auto _ : state)
        cell.form().BuildJobFromTemplate();
    if (DM().tableJobs.recordCount() != TemplateNodes)
        state.SkipWithError("the job does not have a line per node");
    state.SetItemsProcessed(state.iterations() * TemplateNodes);
}
BENCHMARK(BM_BuildJob10000Nodes)->Unit(benchmark::kMillisecond)->Iterations(3);

// The floor under the build: the same rows, deleted and inserted again in one transaction by
// one statement each, with no cursor, lookups or bound controls.
void BM_BuildJobBareInsert10000Rows(benchmark::State& state) {
    application();
    BigTemplateCell cell(TemplateNodes);
    cell.form().BuildJobFromTemplate();
    auto& db = DM().LocalDatabase;
    std::vector<std::vector<store::Value>> rows;
    {
        auto& select = db.cached("select * from Jobs where Pallet_Number = 7 and Job_Number = 1 "
                                 "order by Line_Number");
        while (select.step()) {
            auto& row = rows.emplace_back();
            for (int i = 0; i < select.columnCount(); ++i)
                row.push_back(select.column(i));
        }
        select.reset();
    }
    if (rows.size() != TemplateNodes || rows.front().size() != 16)
        state.SkipWithError("the built job does not have a line of 16 columns per node");
    for (auto _ : state) {
        store::Transaction transaction(db);
        db.execute("delete from Jobs where Pallet_Number = 7 and Job_Number = 1");
        auto& insert = db.cached("insert into Jobs values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
                                 "?, ?, ?, ?)");
        for (const auto& row : rows) {
            for (std::size_t i = 0; i < row.size(); ++i)
                insert.bind(static_cast<int>(i) + 1, row[i]);
            insert.run();
        }
        transaction.commit();
    }
    state.SetItemsProcessed(state.iterations() * TemplateNodes);
}
BENCHMARK(BM_BuildJobBareInsert10000Rows)->Unit(benchmark::kMillisecond)->Iterations(3);

struct MaskCase {
    std::string mask;
    int type;
    std::array<std::string, 6> values;
};

void BM_Compose100000Lines(benchmark::State& state) {
    const std::vector<MaskCase> cases{
        {"G01 X%+0.000f Y%+0.000f", 1, {"12.5", "-3"}},
        {"G92 X%+0.000f Y%+0.000f U%+0.000f V%+0.000f", 3, {"110", "5", "0.5", "-0.5"}},
        {"M98 P%.4d L%d", 3, {"1001", "2"}},
        {"(%s)", 1, {"ROUGH CUT"}},
        {"#%s=%0.000f", 3, {"510", "0.125"}},
        {"G04 X%0.0##f", 3, {"2.5"}},
        {"X%+d", 1, {"5"}},
        {"X%+.3f", 1, {"-1.5"}},
        {"%5d", 1, {"1.5"}},
        {"G90", 0, {}},
        {"%s%%", 1, {"1"}},
        {"G65 P%.4d A%+0.000f B%+0.000f", 1, {"9010", "1.5", "-2"}},
    };
    std::size_t bytes = 0;
    for (auto _ : state) {
        for (int i = 0; i < ComposedLines; ++i) {
            const auto& c = cases[static_cast<std::size_t>(i) % cases.size()];
            const std::string line = TdlgJob::ComposeMaskLine(c.mask, c.type, "SYN", c.values);
            bytes += line.size();
        }
    }
    benchmark::DoNotOptimize(bytes);
    state.SetItemsProcessed(state.iterations() * ComposedLines);
}
BENCHMARK(BM_Compose100000Lines)->Unit(benchmark::kMillisecond);

} // namespace
