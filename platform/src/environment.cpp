#include "environment.h"

#include <gio/gio.h>

#include <cstdlib>

#include "guard.h"
#include "host_bus.h"

namespace host {
namespace {

std::string required(const char* variable, const char* meaning) {
    const char* value = std::getenv(variable);
    if (value == nullptr || *value == '\0') {
        throw HostError(std::string("the environment does not name ") + meaning + ": " + variable + " is not set");
    }
    return value;
}

} // namespace

const Environment& Environment::get() {
    static const Environment environment;
    return environment;
}

Environment::Environment()
    : applicationId_(required(host_bus::appIdVariable, "the application's id")),
      device_(required(host_bus::deviceVariable, "the device's folder")) {
    if (!g_dbus_is_name(applicationId_.c_str()) || g_dbus_is_unique_name(applicationId_.c_str())) {
        throw HostError(std::string("the application's id ") + host_bus::appIdVariable + "=" + applicationId_ +
                        " is not a well-formed bus name (such as com.example.application)");
    }
    if (!device_.is_absolute()) {
        throw HostError(std::string("the device's folder ") + host_bus::deviceVariable + "=" + device_.string() +
                        " is not an absolute path");
    }
}

} // namespace host
