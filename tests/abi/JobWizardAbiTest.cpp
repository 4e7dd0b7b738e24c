// The job wizard through the C ABI on the demo cell: the host's "GetJobInfo", gate and application.
#include "AbiHost.h"
#include "RobocutAbi.h"

#include <QApplication>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

// Runs statements on a database of the cell; the first column of the first row they yield.
std::string sql(const std::string& cell, const std::string& statements,
                const std::string& file = "Quorvel.db") {
    return abitest::sql(cell + "/" + file, statements);
}

using abitest::check;

const std::string jobRows = "select count(*) from Jobs where Pallet_Number = 7 and Job_Number = 1";
const std::string templateRows = "select count(*) from TemplateData where Template_ID = 1";
const std::string version =
    "select Value_2 from Jobs where Pallet_Number = 7 and Job_Number = 1 and Line_Number = 0";

// The module in a host on the cell: messages counted and answered with OK; pallet 7, job 1.
struct Host {
    explicit Host(const std::string& cell) : lib(dlopen(QUORVEL_ABI_LIBRARY, RTLD_NOW)) {
        RC(RcSetHostCallbacks)(&callbacks);
        check(RC(Initialize)(cell.c_str(), cell.c_str(), 0, 0) == 0, "Initialize");
        info.TemplateID = info.JobNumber = info.Unattended = 1;
        info.PalletNumber = "7";
        info.MessageGate = &gate;
    }
    int32_t wizard() { return RC(JobWizard)(&info); }
    std::string error() { return RC(RcLastError)(); }
    void* lib;
    int messages = 0;
    uint8_t gate = 0;
    RcHostCallbacks callbacks{
        &messages, nullptr, nullptr,
        [](void* n, int32_t, const char*, int32_t) { return ++*static_cast<int*>(n), 1; }};
    RcJobWizardInfo info{};
};

// On a fresh demo cell, in a child process: the wizard is refused without Qt, reports an
// unattended run to the host's GetJobInfo, and needs a gate for an outdated job.
[[noreturn]] void runWizard(const std::string& cell) {
    Host host(cell);
    check(host.wizard() == -1 && !host.error().empty() && sql(cell, jobRows) == "0",
          "refused without Qt");
    const abitest::HostApplication app;

    sql(cell, "insert into JobQueue values (7, 1, 'O0007.NC', 'O0007.NC,P4.NC')", "ZEL.db");
    void* lib = dlopen(QUORVEL_TEST_HOST_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    const auto calls = reinterpret_cast<int32_t (*)()>(dlsym(lib, "TestHostCalls"));
    const auto report = reinterpret_cast<const char* (*)()>(dlsym(lib, "TestHostReport"));
    host.info.HostModule = lib;
    host.info.HostTag = 42;
    host.info.HostText1 = "first";
    host.info.HostFlag1 = 1;
    host.info.HostFlag2 = 2;
    const auto expect = [&](int count, const std::string& job, const std::string& machine,
                            const std::string& command, const std::string& files) {
        const std::string wanted =
            "HostTag=42\nJobNumber=" + job +
            "\nHostText1=first\nHostText2=\nMachineText=" + machine +
            "\nPalletNumber=7\nCommandFile=" + command +
            "\nAutomationText1=\nCommandText=\nFileList=" + files +
            "\nAutomationText2=\nAutomationFlag1=0\nAutomationFlag2=0\nHostFlag1=1\nHostFlag2=2\n";
        check(host.wizard() == 0 && calls() == count, "a report: " + host.error());
        check(report() == wanted, std::string("report:\n") + report() + "wanted:\n" + wanted);
    };
    expect(1, "1", "FANUC Robocut", "O0007.NC", "O0007.NC,P4.NC");
    check(sql(cell, jobRows) == sql(cell, templateRows), "job built without a window");
    host.info.JobNumber = 2; // no queue row
    host.info.MachineText = "Cell machine";
    expect(2, "2", "Cell machine", "", "");
    check(host.messages == 0, "no message");

    host.info.HostModule = nullptr;
    check(host.wizard() == 0 && calls() == 2, "no host library: no report");
    host.info.HostModule = dlopen(QUORVEL_TEST_HOST_BARE_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    check(host.wizard() == 0 && calls() == 2, "host library without GetJobInfo");

    // Job 1 is built; its template gains a line at its end, journalled under a new version.
    host.info.JobNumber = 1;
    const std::string built = sql(cell, version);
    sql(cell, "insert into TemplateData select 1, count(*), 1, 'FLUSH', 0, '', '', '', '', '', '', "
              "'', 0, 0 from TemplateData where Template_ID = 1;"
              "insert into TemplateVersion select 1, Version + 1, 0, (select max(Item) from "
              "TemplateData where Template_ID = 1), 'ADD', 'FLUSH', 1 from TemplateName;"
              "update TemplateName set Version = Version + 1 where Template_ID = 1");
    host.info.MessageGate = nullptr;
    check(host.wizard() == -1 && host.error().find("gate") != std::string::npos,
          "an outdated job without a gate fails: " + host.error());
    check(sql(cell, version) == built, "job left at its version");

    host.info.MessageGate = &host.gate;
    check(host.wizard() == 0, "closed gate: " + host.error());
    check(sql(cell, version) != built, "job brought up to date");
    check(host.gate == 0 && host.messages == 0, "no notice, gate untouched");
    std::_Exit(abitest::failures == 0 ? 0 : 1);
}

} // namespace

TEST(CAbiJobWizard, NeedsTheHostsApplicationReportsToGetJobInfoAndGatesAnUpdate) {
    testsupport::TempDir dir;
    abitest::makeCell(dir, true);
    EXPECT_EXIT(runWizard(dir.str()), ::testing::ExitedWithCode(0), "");
}
