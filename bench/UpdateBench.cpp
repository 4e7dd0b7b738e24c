// Job update: 200 journal rows replayed on jobs of growing length.
#include "BenchSupport.h"
#include "common/Scripted.h"
#include "common/Services.h"
#include "job/Job.h"
#include "store/CellInit.h"
#include "store/DataMod.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <map>
#include <memory>
#include <random>

namespace {

constexpr int JournalRows = 200;

// The demo cell with a job of `lines` lines for template 1 at version 1, and 200 journal rows of
// version 2: adds, deletes and moves spread over the whole job.
class UpdateCell {
public:
    explicit UpdateCell(int lines)
        : dir_(std::filesystem::temp_directory_path() /
               ("quorvel-bench-update-" + std::to_string(lines))),
          services_(common::Services{&ui_, &platform_, &host_}) {
        benchApplication();
        store::createCell(dir_.string(),
                          {.overwrite = true, .demoData = true, .server = {}, .serverName = {}});
        fill(lines);
        CreateDM();
        DM().OpenStore(dir_.string(), dir_.string(), 0, 0);
        DM().PositionTemplate(1);
        form_ = std::make_unique<TdlgJob>();
        TJobWizardInfo info;
        info.TemplateID = 1;
        info.JobNumber = 1;
        info.PalletNumber = "7";
        // The update alone is measured: the job's keys, bound boxes and filters, without the
        // opening that would run the update once itself.
        form_->SetWizardInfo(info);
        form_->TakeJobKeys();
        form_->BindDataControls();
        form_->FilterJobTables();
    }
    ~UpdateCell() {
        form_.reset();
        FreeDM();
        std::error_code ec;
        std::filesystem::remove_all(dir_, ec);
    }
    TdlgJob& form() { return *form_; }

private:
    void fill(int lines) {
        store::Database db("bench", "bench");
        db.setFileName((dir_ / "Quorvel.db").string());
        db.open();
        store::Transaction tx(db);
        auto& job = db.cached("insert into Jobs values (7, 1, ?, ?, 1, ?, ?, 'v', '1', '', '', '', "
                              "'', 2, 0, null)");
        static const char* codes[] = {"G00", "G04", "M98", "COMMENT"};
        for (int i = 0; i < lines; ++i) {
            job.bind(1, store::Value(i));
            job.bind(2, store::Value(i == 0 ? "HDR" : codes[i % 4]));
            job.bind(3, store::Value(i == 0 ? 0 : 1));
            job.bind(4, store::Value("line " + std::to_string(i)));
            job.run();
        }
        std::mt19937 random(5);
        int count = lines;
        auto& row = db.cached("insert into TemplateVersion values (1, 2, 0, ?, ?, ?, ?)");
        for (int n = 0; n < JournalRows; ++n) {
            const int kind = n % 3;
            const int at = 1 + static_cast<int>(random() % static_cast<unsigned>(count - 4));
            if (kind == 0) {
                row.bind(1, store::Value(at));
                row.bind(2, store::Value("ADD"));
                row.bind(3, store::Value("G00"));
                row.bind(4, store::Value(1));
                ++count;
            } else if (kind == 1) {
                row.bind(1, store::Value(at));
                row.bind(2, store::Value("DEL"));
                row.bind(3, store::Value(""));
                row.bind(4, store::Value(2));
                count -= 2;
            } else {
                const int to = 1 + static_cast<int>(random() % static_cast<unsigned>(count - 4));
                row.bind(1, store::Value(at));
                row.bind(2, store::Value("MOV"));
                row.bind(3, store::Value(std::to_string(to)));
                row.bind(4, store::Value(2));
            }
            row.run();
        }
        db.execute("update TemplateName set Version = 2 where Template_ID = 1");
        tx.commit();
    }

    std::filesystem::path dir_;
    common::ScriptedUi ui_;
    common::ScriptedPlatform platform_;
    common::ScriptedHostApplication host_;
    common::ScopedServices services_;
    std::unique_ptr<TdlgJob> form_;
};

void BM_UpdateJobFromJournal(benchmark::State& state) {
    UpdateCell cell(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        // Each replay runs on the same job: the outer transaction is rolled back untimed.
        auto outer = std::make_unique<store::Transaction>(DM().LocalDatabase);
        cell.form().UpdateJobFromJournal(1);
        state.PauseTiming();
        outer.reset();
        DM().tableJobs.first();
        state.ResumeTiming();
    }
    state.counters["lines"] = static_cast<double>(state.range(0));
    state.counters["journal_rows"] = JournalRows;
}

} // namespace

BENCHMARK(BM_UpdateJobFromJournal)->Arg(1000)->Arg(5000)->Arg(20000)->Unit(benchmark::kMillisecond);
