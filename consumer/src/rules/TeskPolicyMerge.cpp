#include "rules/TeskPolicyMerge.h"

namespace {

constexpr std::int64_t alphanumericScore = 16;

bool takesAccountValue(TeskMergeRule rule, std::int32_t start, std::int32_t merged, std::int32_t account) {
    switch (rule) {
    case TeskMergeRule::FirstOther:
        return merged == start;
    case TeskMergeRule::Largest:
        return merged == start || merged < account;
    case TeskMergeRule::SmallestNonZero:
        return merged == start || (account != 0 && account < merged);
    case TeskMergeRule::Smallest:
        return merged == start || merged > account;
    case TeskMergeRule::NotMerged:
        break;
    }
    return false;
}

} // namespace

std::int32_t TeskPolicyMerge::mergedValue(TeskMergeRule rule, std::int32_t start, std::int32_t merged,
                                          std::int32_t account) {
    return takesAccountValue(rule, start, merged, account) ? account : merged;
}

void TeskPolicyMerge::takeIn(TeskPolicyData& strong, const TeskPolicyData& account) {
    static const TeskPolicyData start;
    for (const auto& number : TeskPolicyTable::numbers) {
        auto& merged = strong.*number.field;
        merged = mergedValue(number.rule, start.*number.field, merged, account.*number.field);
    }
}

TeskPolicyData TeskPolicyMerge::strongest(const TeskPolicyDataList& accounts) {
    TeskPolicyData strong;
    for (const auto& account : accounts) {
        takeIn(strong, *account);
    }
    return strong;
}

std::int64_t TeskPolicyMerge::passwordScore(const TeskPolicyData& account) {
    std::int64_t score = account.minDevicePasswordLength;
    if (account.allowSimplePassword == 0) {
        score += 1;
    }
    if (account.alphanumericDevicePasswordRequired != 0) {
        score += alphanumericScore + account.minDevicePasswordComplexCharacters;
    }
    return score;
}

void TeskPolicyMerge::takeIn(TeskPasswordEnforcer& enforcer, const TeskPolicyData& account) {
    if (account.devicePasswordEnabled == 0) {
        return;
    }
    const std::int64_t score = passwordScore(account);
    if (score >= enforcer.score) {
        enforcer = {account.accountId, score};
    }
}

std::int32_t TeskPolicyMerge::passwordEnforcingAccountId(const TeskPolicyDataList& accounts) {
    TeskPasswordEnforcer enforcer;
    for (const auto& account : accounts) {
        takeIn(enforcer, *account);
    }
    return enforcer.accountId;
}
