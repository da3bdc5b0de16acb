#ifndef TESK_POLICY_MERGE_H
#define TESK_POLICY_MERGE_H

#include <cstdint>

#include "rules/TeskPolicyData.h"
#include "rules/TeskPolicyTable.h"

/// Folds the policies of all accounts into the one that is enforced. Knows records only; touches nothing.
namespace TeskPolicyMerge {

/// A field's merged value once an account's value is taken in. `start` is the value that no account has touched.
std::int32_t mergedValue(TeskMergeRule rule, std::int32_t start, std::int32_t merged, std::int32_t account);

/// The merged policy of the accounts, in list order; a new record when there is none.
TeskPolicyData strongest(const TeskPolicyDataList& accounts);

/// How strict the account's password rules are: a larger score is stricter. Only accounts with a password have one.
std::int64_t passwordScore(const TeskPolicyData& account);

/// The id of the account with the strictest password rules, the later one of equals; 0 when no account has a password.
std::int32_t passwordEnforcingAccountId(const TeskPolicyDataList& accounts);

} // namespace TeskPolicyMerge

#endif
