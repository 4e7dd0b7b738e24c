// Keyed table operations on a Jobs table of growing size, on both engines: the cost per operation
// must stay flat, and a move on the server (a round trip over a local socket) within ten times
// the embedded engine's.
#include "store/CellInit.h"
#include "store/DataMod.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <stdexcept>

namespace {

// The PostgreSQL server of the run, started at the first server benchmark and stopped at exit;
// QUORVEL_BENCH_SERVER names another one instead.
struct BenchServer {
    BenchServer() {
        if (const char* given = std::getenv("QUORVEL_BENCH_SERVER"); given && *given) {
            uri = given;
            return;
        }
        dir = (std::filesystem::temp_directory_path() / "quorvel-bench-server").string();
        if (std::system(
                ("bash " QUORVEL_SOURCE_DIR "/scripts/test-server.sh start " + dir + " >/dev/null")
                    .c_str()) != 0)
            throw std::runtime_error("the benchmark's PostgreSQL server did not start");
        uri = "postgresql:///quorvel_test?host=" + dir + "&user=postgres";
    }
    ~BenchServer() {
        if (!dir.empty())
            std::system(("bash " QUORVEL_SOURCE_DIR "/scripts/test-server.sh stop " + dir).c_str());
    }
    std::string dir;
    std::string uri;
};

const std::string& serverUri() {
    static BenchServer server;
    return server.uri;
}

// One cell per table size and engine, filled once: 10 pallets of jobs with `rows` lines in all.
struct JobsCell {
    JobsCell(int rows, bool onServer) {
        const std::string name = "bench" + std::to_string(rows);
        dir = std::filesystem::temp_directory_path() /
              ("quorvel-" + name + (onServer ? "-server" : ""));
        store::CellOptions options;
        options.overwrite = true;
        options.demoData = false;
        if (onServer) {
            options.server = serverUri();
            options.serverName = name;
        }
        store::createCell(dir.string(), options);
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

// The cell of a benchmark's arguments: rows, and 1 for the server.
JobsCell& cell(const benchmark::State& state) {
    static std::map<std::pair<int, int>, std::unique_ptr<JobsCell>> cells;
    const auto key =
        std::make_pair(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    auto& c = cells[key];
    if (!c)
        c = std::make_unique<JobsCell>(key.first, key.second != 0);
    return *c;
}

void BM_FindKey(benchmark::State& state) {
    auto& c = cell(state);
    std::mt19937 random(42);
    std::uniform_int_distribution<int> line(0, c.linesPerPallet - 1);
    for (auto _ : state) {
        const bool found = c.table->findKey({5, 1, line(random)});
        benchmark::DoNotOptimize(found);
    }
    state.counters["rows"] = static_cast<double>(state.range(0));
}

void BM_NextFiltered(benchmark::State& state) {
    auto& c = cell(state);
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
    auto& c = cell(state);
    c.table->findNearest({3});
    for (auto _ : state) {
        c.table->next();
        if (c.table->eof())
            c.table->first();
    }
}

void BM_EditPost(benchmark::State& state) {
    auto& c = cell(state);
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

void storeArguments(benchmark::internal::Benchmark* b) {
    b->ArgNames({"rows", "server"})->ArgsProduct({{1000, 10000, 100000}, {0, 1}});
}

BENCHMARK(BM_FindKey)->Apply(storeArguments);
BENCHMARK(BM_NextFiltered)->Apply(storeArguments);
BENCHMARK(BM_NextUnfiltered)->Apply(storeArguments);
BENCHMARK(BM_EditPost)->Apply(storeArguments);
BENCHMARK_MAIN();
