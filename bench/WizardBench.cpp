// The wizard on a job of 10,000 lines: opening it new (build and restore of the tree) and
// existing, the node search over all lines, and selecting every line in turn.
#include "BenchSupport.h"
#include "BigTemplateCell.h"

#include <benchmark/benchmark.h>

#include <cstdio>

namespace {

constexpr int Lines = 10000;

// Opens the job in a fresh form per iteration; a new job is emptied first, so that it is built.
void openJob(benchmark::State& state, bool newJob) {
    benchApplication();
    BigTemplateCell cell(Lines);
    cell.newForm().OpenJob(cell.info());
    for (auto _ : state) {
        state.PauseTiming();
        if (newJob)
            BigTemplateCell::deleteJob();
        TdlgJob& form = cell.newForm();
        state.ResumeTiming();
        if (!form.OpenJob(cell.info()))
            state.SkipWithError("the job did not open");
    }
    state.SetItemsProcessed(state.iterations() * Lines);
}

void BM_OpenNewJob10000Lines(benchmark::State& state) { openJob(state, true); }
BENCHMARK(BM_OpenNewJob10000Lines)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_OpenExistingJob10000Lines(benchmark::State& state) { openJob(state, false); }
BENCHMARK(BM_OpenExistingJob10000Lines)->Unit(benchmark::kMillisecond)->Iterations(3);

// Every line's node in ascending order, walking on from the last: linear in the job's length.
void BM_FindNodeByIndexInOrder(benchmark::State& state) {
    benchApplication();
    const int lines = static_cast<int>(state.range(0));
    BigTemplateCell cell(lines);
    TdlgJob& form = cell.openedForm();
    for (auto _ : state)
        for (int line = 0; line < lines; ++line)
            benchmark::DoNotOptimize(form.FindNodeByIndex(line, false));
    state.SetComplexityN(lines);
}
BENCHMARK(BM_FindNodeByIndexInOrder)
    ->Arg(2500)
    ->Arg(5000)
    ->Arg(10000)
    ->Complexity(benchmark::oN)
    ->Unit(benchmark::kMicrosecond);

// Each line selected in turn, as the check walk selects them, without the checks.
void BM_SelectEachLine(benchmark::State& state) {
    benchApplication();
    const int lines = static_cast<int>(state.range(0));
    BigTemplateCell cell(lines);
    TdlgJob& form = cell.openedForm();
    for (auto _ : state)
        for (int line = 0; line < lines; ++line)
            form.SelectNode(tree::FindNodeByIndex(form.tvwTemplate, line));
    state.SetComplexityN(lines);
    state.SetItemsProcessed(state.iterations() * lines);
}
BENCHMARK(BM_SelectEachLine)
    ->Arg(2500)
    ->Arg(10000)
    ->Complexity(benchmark::oN)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

// Write on a job of 10,000 lines: the check walk over every line, then the file.
void BM_WriteJob10000Lines(benchmark::State& state) {
    benchApplication();
    BigTemplateCell cell(Lines);
    TdlgJob& form = cell.openedForm();
    for (auto _ : state) {
        cell.ui().fileAnswers.push_back("Pal00007.NC");
        form.btnWriteClick();
        if (form.FStopFlag || !std::filesystem::exists(cell.dir() / "Pal00007.NC"))
            state.SkipWithError("the program was not written");
    }
    state.SetItemsProcessed(state.iterations() * Lines);
}
BENCHMARK(BM_WriteJob10000Lines)->Unit(benchmark::kMillisecond)->Iterations(1);

// The floor to compare with: the same rows read in order and their lines written to a file.
void BM_ScanAndPlainWrite10000Lines(benchmark::State& state) {
    benchApplication();
    BigTemplateCell cell(Lines);
    cell.openedForm();
    const std::string path = (cell.dir() / "plain.NC").string();
    for (auto _ : state) {
        auto query = DM().NewLocalQuery();
        query->setSql("select Script_Line from Jobs where Pallet_Number = 7 and Job_Number = 1 "
                      "order by Line_Number");
        query->open();
        std::FILE* file = std::fopen(path.c_str(), "wb");
        for (; !query->eof(); query->next()) {
            const std::string line = query->fields(0).asString() + "\r\n";
            std::fwrite(line.data(), 1, line.size(), file);
        }
        std::fclose(file);
    }
    state.SetItemsProcessed(state.iterations() * Lines);
}
BENCHMARK(BM_ScanAndPlainWrite10000Lines)->Unit(benchmark::kMillisecond);

} // namespace
