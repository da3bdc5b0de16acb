#ifndef TESTS_SYSTEM_PLATFORM_OWNERS_H
#define TESTS_SYSTEM_PLATFORM_OWNERS_H

#include <app_control.h>
#include <bundle.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace system_test {

struct AppControlRelease {
    void operator()(app_control_h request) const { app_control_destroy(request); }
};

using AppControl = std::unique_ptr<app_control_s, AppControlRelease>;

/// A launch request without content.
AppControl newAppControl();

/// Sends a message with these entries, in order, to the service's port. Returns the platform's code at once.
int sendMessage(const std::vector<std::pair<std::string, std::string>>& entries);

} // namespace system_test

#endif
