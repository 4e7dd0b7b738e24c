#pragma once
// The one call back into the host: "GetJobInfo" in the host's library, with the job's report.
#include "boundary/Structs.h"

#include <functional>

namespace job {

// How the entry point is called. By default it is a TGetJobInfo; the C ABI installs a call that
// hands the host its C record instead.
using HostReportCall = std::function<void(void* entry, TAutomationInfo& info)>;
void SetHostReportCall(HostReportCall call);

// Looks up "GetJobInfo" in the host's library and calls it with the record, keeping the current
// template row across the call. Nothing happens when the library is null or has no such entry.
void ReportToHost(void* hostModule, TAutomationInfo& info);

} // namespace job
