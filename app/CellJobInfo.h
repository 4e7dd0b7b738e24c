#pragma once
// Where the host's "GetJobInfo" delivers the module's report: to a receiver a window installs, or,
// with none, to the caller's default (printing it).
#include "boundary/Structs.h"

#include <functional>

namespace app {

using JobInfoReceiver = std::function<void(const TAutomationInfo&)>;

// Installs the receiver (an empty one removes it).
void SetJobInfoReceiver(JobInfoReceiver receiver);
// Hands the report to the receiver; false when none is installed.
bool ForwardJobInfo(const TAutomationInfo& info);

} // namespace app
