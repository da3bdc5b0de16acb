#include "faults.h"

namespace fake {

void Faults::never(const std::string& function) {
    always_.erase(function);
    atCall_.erase(function);
}

void Faults::none() {
    always_.clear();
    atCall_.clear();
}

std::optional<int> Faults::onCall(const std::string& function) {
    const int number = ++calls_[function];
    if (const auto faults = atCall_.find(function); faults != atCall_.end()) {
        if (const auto fault = faults->second.find(number); fault != faults->second.end()) {
            return fault->second;
        }
    }
    const auto fault = always_.find(function);
    return fault == always_.end() ? std::nullopt : std::optional(fault->second);
}

} // namespace fake
