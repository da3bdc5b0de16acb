#include "accounts/compliance.h"

#include <algorithm>

#include "provisioning/provisioning_elements.h"

namespace deskwatch {
namespace {

/// The first settings of the table are about the password.
constexpr std::size_t passwordSettings = 7;

bool demands(const std::vector<ProvisioningElement>& elements, const char* name) {
    return std::any_of(elements.begin(), elements.end(), [name](const ProvisioningElement& element) {
        return element.name == name && element.value == "1";
    });
}

/// The settings from one index to another that do not hold what the service writes.
std::vector<std::string> differing(const ComplianceFacts& facts, std::size_t from, std::size_t to) {
    std::vector<std::string> reasons;
    for (std::size_t index = from; index < to; ++index) {
        const auto& written = facts.written.at(index);
        const auto& held = facts.held.at(index);
        if (written && held && *written != *held) {
            reasons.push_back(std::string(deviceSettings.at(index).name) + " is " + std::to_string(*held) + ", not " +
                              std::to_string(*written));
        }
    }
    return reasons;
}

/// Whether an element asks for something that the watch does not do.
bool isOnlyStored(const ProvisioningElement& element) {
    const auto* const rule = elementRule(element.name);
    if (rule == nullptr) {
        return element.isList &&
               std::any_of(otherElements.begin(), otherElements.end(), [&element](const OtherElement& row) {
                   return element.name == row.name && row.support == Support::NotDeliverable;
               });
    }
    if (rule->support == Support::NotDeliverable) {
        return element.value == "1";
    }
    // what is allowed when it is absent is forbidden by a smaller number; the others offer something to the wearer
    return rule->support == Support::Stored && rule->absent > 0 && !element.value.empty() &&
           element.value < std::to_string(rule->absent);
}

} // namespace

std::optional<Verdict> verdictOf(const ComplianceFacts& facts) {
    if (auto reasons = differing(facts, 0, passwordSettings); !reasons.empty()) {
        return Verdict{Compliance::ManagedElsewhere, std::move(reasons)};
    }
    const bool demandsPassword = demands(facts.elements, "DevicePasswordEnabled");
    if (demandsPassword && facts.isSynchronisationStopped) {
        return Verdict{Compliance::Refused, {"the wearer has stopped synchronising"}};
    }
    if ((demandsPassword && facts.isLockMissing) ||
        (demands(facts.elements, "RequireDeviceEncryption") && facts.isEncryptionMissing)) {
        return std::nullopt;
    }
    auto reasons = differing(facts, passwordSettings, deviceSettings.size());
    for (const auto& element : facts.elements) {
        if (isOnlyStored(element)) {
            reasons.push_back(element.name + " is not enforced");
        }
    }
    return Verdict{reasons.empty() ? Compliance::Applied : Compliance::Partly, std::move(reasons)};
}

} // namespace deskwatch
