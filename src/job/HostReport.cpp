#include "job/HostReport.h"

#include "common/Services.h"

namespace job {

namespace {
HostReportCall& installedCall() {
    static HostReportCall call;
    return call;
}
} // namespace

void SetHostReportCall(HostReportCall call) { installedCall() = std::move(call); }

void ReportToHost(void* hostModule, TAutomationInfo& info) {
    if (!hostModule)
        return;
    void* entry = common::platform().librarySymbol(hostModule, "GetJobInfo");
    if (!entry)
        return;
    if (installedCall())
        installedCall()(entry, info);
    else
        reinterpret_cast<TGetJobInfo>(entry)(&info);
}

} // namespace job
