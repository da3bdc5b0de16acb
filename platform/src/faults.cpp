#include "faults.h"

#include <cstdlib>
#include <tuple>

#include "bus_values.h"
#include "environment.h"
#include "guard.h"
#include "host_bus.h"

namespace host {

Faults& Faults::get() {
    static Faults faults;
    return faults;
}

void Faults::load(SettingsStore& store) {
    if (isLoaded_) {
        return;
    }
    isLoaded_ = true;
    if (std::getenv(host_bus::appIdVariable) == nullptr) {
        return;
    }
    folder_ = "/faults/" + Environment::get().applicationId() + "/";
    store.watch(folder_);
    read(store);
}

void Faults::notify(SettingsStore& store, const std::string& path) {
    const bool isAbove = folder_.compare(0, path.size(), path) == 0;
    if (!folder_.empty() && (isAbove || path.compare(0, folder_.size(), folder_) == 0)) {
        read(store);
    }
}

void Faults::read(SettingsStore& store) {
    std::map<std::string, Fault, std::less<>> faults;
    for (const auto& function : store.list(folder_)) {
        if (const auto value = intPairOf(store.read(folder_ + function).get())) {
            Fault fault;
            std::tie(fault.code, fault.nth) = *value;
            const auto known = faults_.find(function);
            const bool isSame =
                known != faults_.end() && known->second.code == fault.code && known->second.nth == fault.nth;
            fault.calls = isSame ? known->second.calls : 0;
            faults.emplace(function, fault);
        }
    }
    faults_ = std::move(faults);
}

std::optional<int> Faults::answer(const char* function) {
    if (faults_.empty()) {
        return std::nullopt;
    }
    const auto fault = faults_.find(function);
    if (fault == faults_.end()) {
        return std::nullopt;
    }
    const bool isMet = fault->second.nth == 0 || ++fault->second.calls == fault->second.nth;
    return isMet ? std::optional(fault->second.code) : std::nullopt;
}

std::optional<int> faultOf(const char* function) noexcept {
    try {
        const auto code = Faults::get().answer(function);
        if (code) {
            report(std::string(function) + " answers " + std::to_string(*code) + " because it was told to");
        }
        return code;
    } catch (...) {
        return std::nullopt; // no memory for the message: the function itself will find out
    }
}

} // namespace host
