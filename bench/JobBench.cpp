// Job build from a template of 10,000 nodes beside the bare insert of its rows, and the composer
// on 100,000 lines of mixed masks.
#include "BenchSupport.h"
#include "BigTemplateCell.h"
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
