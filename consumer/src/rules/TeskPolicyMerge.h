#ifndef TESK_POLICY_MERGE_H
#define TESK_POLICY_MERGE_H

#include <cstdint>

#include "rules/TeskPolicyData.h"
#include "rules/TeskPolicyTable.h"

/// The account with the strictest password rules of those that were taken in, the later one of equals.
struct TeskPasswordEnforcer {
    std::int32_t accountId = 0; ///< 0: no account has a password
    std::int64_t score = 0;     ///< as passwordScore has it
};

/// Folds the policies of all accounts into the one that is enforced. Knows records only; touches nothing.
namespace TeskPolicyMerge {

/// A field's merged value once an account's value is taken in. `start` is the value that no account has touched.
std::int32_t mergedValue(TeskMergeRule rule, std::int32_t start, std::int32_t merged, std::int32_t account);

/// Merges an account into a policy that began as a new record.
void takeIn(TeskPolicyData& strong, const TeskPolicyData& account);

/// Lets an account take over when its password rules are as strict.
void takeIn(TeskPasswordEnforcer& enforcer, const TeskPolicyData& account);

/// The merged policy of the accounts, in list order; a new record when there is none.
TeskPolicyData strongest(const TeskPolicyDataList& accounts);

/// How strict the account's password rules are: a larger score is stricter. Only accounts with a password have one.
std::int64_t passwordScore(const TeskPolicyData& account);

/// The id of the account with the strictest password rules, the later one of equals; 0 when no account has a password.
std::int32_t passwordEnforcingAccountId(const TeskPolicyDataList& accounts);

} // namespace TeskPolicyMerge

#endif
