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

std::int32_t mergedValueOf(const TeskPolicyNumber& number, std::int32_t start, const TeskPolicyDataList& accounts) {
    std::int32_t merged = start;
    for (const auto& account : accounts) {
        merged = TeskPolicyMerge::mergedValue(number.rule, start, merged, (*account).*number.field);
    }
    return merged;
}

} // namespace

std::int32_t TeskPolicyMerge::mergedValue(TeskMergeRule rule, std::int32_t start, std::int32_t merged,
                                          std::int32_t account) {
    return takesAccountValue(rule, start, merged, account) ? account : merged;
}

TeskPolicyData TeskPolicyMerge::strongest(const TeskPolicyDataList& accounts) {
    TeskPolicyData strong;
    for (const auto& number : TeskPolicyTable::numbers) {
        if (number.rule != TeskMergeRule::NotMerged) {
            auto& value = strong.*number.field;
            value = mergedValueOf(number, value, accounts);
        }
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

std::int32_t TeskPolicyMerge::passwordEnforcingAccountId(const TeskPolicyDataList& accounts) {
    std::int64_t bestScore = 0;
    std::int32_t accountId = 0;
    for (const auto& account : accounts) {
        if (account->devicePasswordEnabled == 0) {
            continue;
        }
        const std::int64_t score = passwordScore(*account);
        if (score >= bestScore) {
            bestScore = score;
            accountId = account->accountId;
        }
    }
    return accountId;
}
