#pragma once
// A cell with both database files and scripted services, for tests of the module.
#include "support/TestSupport.h"

#include "common/Scripted.h"
#include "common/Services.h"
#include "store/CellInit.h"
#include "store/StoreError.h"

#include <functional>
#include <memory>
#include <string>

namespace testsupport {

// A cell directory with both database files, and scripted services installed for the test.
class CellFixture {
public:
    explicit CellFixture(bool demoData = false);
    // Runs a script on one of the cell's files ("ZEL.db" or "Quorvel.db"), outside the module.
    void run(const std::string& file, const std::string& sql) const;
    std::string dir() const { return tmp.str(); }

    TempDir tmp;
    common::ScriptedUi ui;
    common::ScriptedHostApplication host;
    common::ScriptedPlatform platform;

private:
    std::unique_ptr<common::ScopedServices> services_;
};

// The message of the store error `run` raises; empty when it raises none.
inline std::string storeErrorText(const std::function<void()>& run) {
    try {
        run();
    } catch (const store::StoreError& e) {
        return e.what();
    }
    return {};
}

} // namespace testsupport
