// Checks of values and the one way of reporting a bad one.
#include "job/Job.h"

#include "common/Services.h"

void TdlgJob::ReportInputError(const std::string& Identifier) {
    // The identifier names the condition for a future table of texts; the operator reads one
    // fixed text for all of them.
    (void)Identifier;
    common::ui().beep();
    FStatusMessage = "Code)";
    RepaintStatusBar();
    FStopFlag = true;
}
