#ifndef DESKWATCH_COMPLIANCE_H
#define DESKWATCH_COMPLIANCE_H

#include <optional>
#include <string>
#include <vector>

#include "exchange/provision_messages.h"
#include "provisioning/provisioning_document.h"
#include "session/device_settings.h"

namespace deskwatch {

/// What a watch shows of how it took a policy.
struct ComplianceFacts {
    /// The policy.
    std::vector<ProvisioningElement> elements;
    /// Whether the wearer has stopped synchronising since the watch got it.
    bool isSynchronisationStopped = false;
    /// Whether the lock, or the encryption, that the watch's policies demand is missing.
    bool isLockMissing = false;
    bool isEncryptionMissing = false;
    /// What the service writes to the device policy manager, and what that holds.
    SettingValues written{};
    SettingValues held{};
};

/// What a server is to be told, and why it is not that all is applied.
struct Verdict {
    Compliance compliance = Compliance::Applied;
    std::vector<std::string> reasons;
};

/// Decides what became of a policy; none while the wearer still has to act. In this order:
/// - another value than the service wrote for a password stands in the device policy manager: managed elsewhere;
/// - the policy demands a password and the wearer stopped synchronising: refused;
/// - the policy demands a lock or encryption that is missing: nothing can be said yet;
/// - the policy demands what the watch stores and does not enforce, or cannot even be told, or another value stands in
///   the device policy manager: applied in part;
/// - else it is applied. What the watch does not have at all counts as applied.
std::optional<Verdict> verdictOf(const ComplianceFacts& facts);

} // namespace deskwatch

#endif
