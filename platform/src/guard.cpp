#include "guard.h"

#include <glib.h>

#include <cstdio>
#include <cstdlib>

#include "host_bus.h"

namespace host {

void report(const std::string& text) noexcept {
    const char* id = std::getenv(host_bus::appIdVariable);
    std::fprintf(stderr, "tesk-host: %s: %s\n", id != nullptr ? id : "(no application id)", text.c_str());
}

void reportException(const char* function) noexcept {
    try {
        throw;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tesk-host: %s: %s\n", function, error.what());
    } catch (...) {
        std::fprintf(stderr, "tesk-host: %s: an unknown exception\n", function);
    }
}

} // namespace host
