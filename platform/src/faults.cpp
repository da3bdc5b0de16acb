#include "faults.h"

#include <utility>

#include "bus_values.h"

namespace host {

Faults::Faults(SettingsStore& store, const std::string& applicationId)
    : store_(store), folder_("/faults/" + applicationId + "/") {
    store_.watch(folder_);
    store_.awaitNews(); // a fault that comes after this makes news
    listener_ = store_.addListener([this](const std::string& path) { notify(path); });
    read();
}

Faults::~Faults() {
    store_.unwatch(folder_);
    store_.removeListener(listener_);
}

void Faults::notify(const std::string& path) {
    const bool isAbove = folder_.compare(0, path.size(), path) == 0;
    if (isAbove || path.compare(0, folder_.size(), folder_) == 0) {
        read();
    }
}

void Faults::read() {
    std::map<std::string, Fault, std::less<>> faults;
    for (const auto& function : store_.list(folder_)) {
        if (const auto value = intPairOf(store_.read(folder_ + function).get())) {
            const auto known = faults_.find(function);
            const bool isSame = known != faults_.end() && known->second.codeAndNth == *value;
            faults.emplace(function, Fault{*value, isSame ? known->second.calls : 0});
        }
    }
    faults_ = std::move(faults);
}

std::optional<int> Faults::answer(const char* function) {
    const auto fault = faults_.find(function);
    if (fault == faults_.end()) {
        return std::nullopt;
    }
    const auto [code, nth] = fault->second.codeAndNth;
    const bool isMet = nth == 0 || ++fault->second.calls == nth;
    return isMet ? std::optional(code) : std::nullopt;
}

} // namespace host
