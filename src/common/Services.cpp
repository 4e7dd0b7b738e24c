#include "common/Services.h"

#include <stdexcept>

namespace common {

namespace {
RealPlatform& realPlatform() {
    static RealPlatform instance;
    return instance;
}
} // namespace

Services& services() {
    static Services current{nullptr, &realPlatform(), nullptr};
    return current;
}

Ui& ui() {
    if (!services().ui)
        throw std::logic_error("No user interface is installed");
    return *services().ui;
}

Platform& platform() {
    if (!services().platform)
        throw std::logic_error("No platform is installed");
    return *services().platform;
}

HostApplication& hostApplication() {
    if (!services().host)
        throw std::logic_error("No host application is installed");
    return *services().host;
}

ScopedServices::ScopedServices(Services replacement) : saved_(services()) {
    if (!replacement.platform)
        replacement.platform = saved_.platform;
    services() = replacement;
}

ScopedServices::~ScopedServices() { services() = saved_; }

} // namespace common
