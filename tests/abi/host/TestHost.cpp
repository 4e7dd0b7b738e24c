// A host's library for the job wizard tests: its "GetJobInfo" keeps a copy of every report, as
// text, since the record's strings live only during the call. Built a second time without the
// entry, as a host that offers none.
#include "RobocutAbi.h"

#include <string>

namespace {
int calls = 0;
std::string report;
} // namespace

extern "C" {

#ifndef QUORVEL_TEST_HOST_WITHOUT_ENTRY
RC_API void GetJobInfo(const RcAutomationInfo* info) {
    ++calls;
    const auto text = [](const char* value) { return std::string(value ? value : "(null)"); };
    report =
        "HostTag=" + std::to_string(info->HostTag) +
        "\nJobNumber=" + std::to_string(info->JobNumber) + "\nHostText1=" + text(info->HostText1) +
        "\nHostText2=" + text(info->HostText2) + "\nMachineText=" + text(info->MachineText) +
        "\nPalletNumber=" + text(info->PalletNumber) + "\nCommandFile=" + text(info->CommandFile) +
        "\nAutomationText1=" + text(info->AutomationText1) +
        "\nCommandText=" + text(info->CommandText) + "\nFileList=" + text(info->FileList) +
        "\nAutomationText2=" + text(info->AutomationText2) +
        "\nAutomationFlag1=" + std::to_string(info->AutomationFlag1) +
        "\nAutomationFlag2=" + std::to_string(info->AutomationFlag2) +
        "\nHostFlag1=" + std::to_string(info->HostFlag1) +
        "\nHostFlag2=" + std::to_string(info->HostFlag2) + "\n";
}
#endif

// How often "GetJobInfo" ran, and the last report as "Field=value" lines.
RC_API int32_t TestHostCalls(void) { return calls; }
RC_API const char* TestHostReport(void) { return report.c_str(); }

} // extern "C"
