#ifndef TESTS_SYSTEM_MESSAGES_H
#define TESTS_SYSTEM_MESSAGES_H

#include <string>
#include <vector>

namespace system_test {

/// Exchange's built-in default: no password, everything allowed.
extern const char* const defaultPolicy;

/// A hardened mailbox: an alphanumeric password of 4, encryption.
extern const char* const hardenedPolicy;

/// An open-source server's default: no password, yet limits for one.
extern const char* const limitsWithoutPasswordPolicy;

/// The strictest that a server may send.
extern const char* const strictestPolicy;

/// A numeric password, nothing else.
extern const char* const pinPolicy;

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

/// The list of accounts, as the mail application answers it.
std::string accountInfo(const std::vector<PolicyAccount>& accounts);

/// The same list in the mail application's answer at its start.
std::string initResponse(const std::vector<PolicyAccount>& accounts);

} // namespace system_test

#endif
