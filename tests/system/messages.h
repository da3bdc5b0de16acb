#ifndef TESTS_SYSTEM_MESSAGES_H
#define TESTS_SYSTEM_MESSAGES_H

#include <string>
#include <utility>
#include <vector>

#include "sample_policies.h"

namespace system_test {

// What servers impose; see there.
inline constexpr const char* defaultPolicy = samples::builtIn;
inline constexpr const char* hardenedPolicy = samples::hardened;
inline constexpr const char* limitsWithoutPasswordPolicy = samples::limitsWithoutPassword;
inline constexpr const char* strictestPolicy = samples::strictest;
inline constexpr const char* pinPolicy = samples::pin;

/// An account of a policy update: its id, its name and the text of its policy set.
struct PolicyAccount {
    int id;
    std::string name;
    std::string policySet;
};

PolicyAccount alice(const char* policySet);
PolicyAccount bob(const char* policySet);
PolicyAccount carol(const char* policySet);

/// The text of a message that brings these accounts' policies.
std::string policyUpdate(const std::vector<PolicyAccount>& accounts);

/// The list of accounts in the mail application's answer at its start.
std::string initResponse(const std::vector<PolicyAccount>& accounts);

/// Sends a message with these entries, in order, to the service's port. Returns the platform's code at once.
int sendMessage(const std::vector<std::pair<std::string, std::string>>& entries);

} // namespace system_test

#endif
