#include "CellJobInfo.h"

#include <utility>

namespace app {

namespace {
JobInfoReceiver& installed() {
    static JobInfoReceiver receiver;
    return receiver;
}
} // namespace

void SetJobInfoReceiver(JobInfoReceiver receiver) { installed() = std::move(receiver); }

bool ForwardJobInfo(const TAutomationInfo& info) {
    if (!installed())
        return false;
    installed()(info);
    return true;
}

} // namespace app
