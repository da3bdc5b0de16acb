#ifndef DESKWATCH_FINDINGS_H
#define DESKWATCH_FINDINGS_H

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "explain/device_facts.h"
#include "session/lock_screen.h"

namespace deskwatch {

/// What can be known of a watch, or of what was copied from one, about how it keeps its accounts' policies.
struct Evidence {
    /// Why the stored accounts cannot be read; empty when they can.
    std::string storeProblem;
    bool hasStore = false;
    std::vector<StoredAccount> accounts;
    SettingValues held{};
    std::optional<std::string> country;
    std::optional<std::string> cryptoState;
    std::optional<int> lockType;
    /// Whether the service noted that the lock is what the policies demand.
    bool wasLockApplied = false;
    LockScreen lockScreen;
    /// Whether the service administers the device; none when that is not known.
    std::optional<bool> isAdministered;
    /// The settings, as indices of deviceSettings, that the device refused when the service last wrote them.
    std::set<std::size_t> refused;
    /// How often the internal storage was wiped since the boot.
    int wipes = 0;
    /// Accounts whose server's policy the mail application has.
    std::vector<int> connected;
};

/// One reason for which a watch is weaker than its accounts want.
struct Finding {
    enum class Kind { Store, Administrator, Refused, OddValue, Merge, Changed, Lock, Encryption, MissingAccount };

    Kind kind = Kind::Store;
    std::string text;
    /// The demands that are not met because of it, a sentence each.
    std::vector<std::string> details;
};

/// Compares what each account demands with what the device holds. Nothing is found on a watch that keeps its word.
std::vector<Finding> findingsOf(const Evidence& evidence);

/// The findings as text for a reader; one line says when there are none. A line before them says that the watch was
/// wiped, which does not count as one: the watch is as strict as before.
std::string findingsText(const std::vector<Finding>& findings, int wipes = 0);

/// The same as one JSON object.
std::string findingsJson(const std::vector<Finding>& findings, int wipes = 0);

} // namespace deskwatch

#endif
