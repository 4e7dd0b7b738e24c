#pragma once
// The seams in force for the module. The host (or a test) installs them; the module reads them.
#include "common/HostApplication.h"
#include "common/Platform.h"
#include "common/Ui.h"

namespace common {

struct Services {
    Ui* ui = nullptr;
    Platform* platform = nullptr;
    HostApplication* host = nullptr;
};

// The current services. `platform` defaults to the real one; `ui` and `host` must be installed
// before use, and reading an uninstalled one throws std::logic_error.
Services& services();
Ui& ui();
Platform& platform();
HostApplication& hostApplication();

// Installs a set of services for the lifetime of the object and restores the previous ones after.
class ScopedServices {
public:
    explicit ScopedServices(Services replacement);
    ~ScopedServices();
    ScopedServices(const ScopedServices&) = delete;
    ScopedServices& operator=(const ScopedServices&) = delete;

private:
    Services saved_;
};

} // namespace common
