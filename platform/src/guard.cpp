#include "guard.h"

#include <glib.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "host_bus.h"

namespace host {
namespace {

const FaultSource* installedSource = nullptr;

} // namespace

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

FaultInjection::FaultInjection(FaultSource source) : source_(std::move(source)) {
    installedSource = &source_;
}

FaultInjection::~FaultInjection() {
    installedSource = nullptr;
}

std::optional<int> faultOf(const char* function) noexcept {
    if (installedSource == nullptr) {
        return std::nullopt;
    }
    try {
        const auto code = (*installedSource)(function);
        if (code) {
            report(std::string(function) + " answers " + std::to_string(*code) + " because it was told to");
        }
        return code;
    } catch (...) {
        return std::nullopt; // no memory for the message: the function itself will find out
    }
}

} // namespace host
