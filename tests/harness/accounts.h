#ifndef HARNESS_ACCOUNTS_H
#define HARNESS_ACCOUNTS_H

#include <string>
#include <vector>

#include "rules/TeskPolicyData.h"

namespace harness {

/// The account of the diagnostic interface.
inline constexpr int testAccountId = 999;

/// The account of a small office: a PIN of four digits.
TeskPolicyData office(int accountId);

/// The account of a bank: a long password, encryption, and no radio.
TeskPolicyData bank(int accountId);

/// The account of an advertising agency: no rule at all.
TeskPolicyData agency(int accountId);

/// All fields of a record, in order, as texts.
std::vector<std::string> fieldsOf(const TeskPolicyData& data);

/// The stored accounts, as the service reads them.
TeskPolicyDataList storedAccounts();

/// The stored account; a new record when there is none.
TeskPolicyData storedAccount(int accountId);

} // namespace harness

#endif
