#include "job/HostReport.h"

#include "common/Services.h"
#include "store/DataMod.h"

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
    // The host may move the current template while it handles the report; it is put back.
    auto& templates = DM().tableTemplateName;
    auto bookmark = templates.getBookmark();
    if (installedCall())
        installedCall()(entry, info);
    else
        reinterpret_cast<TGetJobInfo>(entry)(&info);
    templates.gotoBookmark(bookmark);
    templates.freeBookmark(bookmark);
}

} // namespace job
