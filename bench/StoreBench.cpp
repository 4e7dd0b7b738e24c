// Keyed table operations on a Jobs table of growing size: the cost per operation must stay flat.
#include "store/CellInit.h"
#include "store/DataMod.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <map>
#include <memory>
#include <random>

namespace {

// One cell per table size, filled once: 10 pallets of jobs with `rows` lines in all.
struct JobsCell {
    explicit JobsCell(int rows) {
        dir = std::filesystem::temp_directory_path() / ("quorvel-bench-" + std::to_string(rows));
        store::createCell(dir.string(),
                          {.overwrite = true, .demoData = false, .server = {}, .serverName = {}});
        db = std::make_unique<store::Database>("Local", "Default");
        db->setFileName((dir / "Quorvel.db").string());
        db->open();
        {
            store::Transaction tx(*db);
            auto& insert = db->cached("insert into Jobs (Pallet_Number, Job_Number, Line_Number, "
                                      "Code, Script_Line, Value_1) values (?, 1, ?, 'G01', "
                                      "'G01 X1.000', '1.000')");
            for (int i = 0; i < rows; ++i) {
                insert.bind(1, store::Value(i % 10));
                insert.bind(2, store::Value(i / 10));
                insert.run();
            }
            tx.commit();
        }
        table = std::make_unique<store::Table>(*db, "Jobs");
        table->open();
        table->setIndexName("Primary");
        linesPerPallet = rows / 10;
    }
    ~JobsCell() {
        table.reset();
        db.reset();
        std::error_code ec;
        std::filesystem::remove_all(dir, ec);
    }
    std::filesystem::path dir;
    std::unique_ptr<store::Database> db;
    std::unique_ptr<store::Table> table;
    int linesPerPallet = 0;
};

JobsCell& cell(int rows) {
    static std::map<int, std::unique_ptr<JobsCell>> cells;
    auto& c = cells[rows];
    if (!c)
        c = std::make_unique<JobsCell>(rows);
    return *c;
}

void BM_FindKey(benchmark::State& state) {
    auto& c = cell(static_cast<int>(state.range(0)));
    std::mt19937 random(42);
    std::uniform_int_distribution<int> line(0, c.linesPerPallet - 1);
    for (auto _ : state) {
        const bool found = c.table->findKey({5, 1, line(random)});
        benchmark::DoNotOptimize(found);
    }
    state.counters["rows"] = static_cast<double>(state.range(0));
}

void BM_NextFiltered(benchmark::State& state) {
    auto& c = cell(static_cast<int>(state.range(0)));
    c.table->setFilter("Pallet_Number = 5 and Job_Number = 1");
    c.table->setFiltered(true);
    for (auto _ : state) {
        c.table->next();
        if (c.table->eof())
            c.table->first();
    }
    c.table->setFiltered(false);
}

void BM_NextUnfiltered(benchmark::State& state) {
    auto& c = cell(static_cast<int>(state.range(0)));
    c.table->findNearest({3});
    for (auto _ : state) {
        c.table->next();
        if (c.table->eof())
            c.table->first();
    }
}

void BM_EditPost(benchmark::State& state) {
    auto& c = cell(static_cast<int>(state.range(0)));
    std::mt19937 random(7);
    std::uniform_int_distribution<int> line(0, c.linesPerPallet - 1);
    int n = 0;
    for (auto _ : state) {
        c.table->findKey({5, 1, line(random)});
        c.table->edit();
        c.table->fieldByName("Value_1").setAsString(std::to_string(++n));
        c.table->post();
    }
}

} // namespace

BENCHMARK(BM_FindKey)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(BM_NextFiltered)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(BM_NextUnfiltered)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(BM_EditPost)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK_MAIN();
