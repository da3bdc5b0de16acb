#include "explain/explanation.h"

#include <algorithm>

#include "rules/TeskPolicyMerge.h"

namespace deskwatch {
namespace {

/// Which device setting a merged field decides.
struct Decision {
    std::int32_t TeskPolicyData::*field;
    const char* setting;
};

constexpr std::array<Decision, 13> decisions{{
    {&TeskPolicyData::devicePasswordEnabled, "quality"},
    {&TeskPolicyData::allowSimplePassword, "quality"},
    {&TeskPolicyData::alphanumericDevicePasswordRequired, "quality"},
    {&TeskPolicyData::minDevicePasswordComplexCharacters, "min_complex_chars"},
    {&TeskPolicyData::minDevicePasswordLength, "minimum_length"},
    {&TeskPolicyData::maxDevicePasswordFailedAttempts, "maximum_failed_attempts_for_wipe"},
    {&TeskPolicyData::maxInactivityTimeDeviceLock, "max_inactivity_time_device_lock"},
    {&TeskPolicyData::devicePasswordExpiration, "expires"},
    {&TeskPolicyData::devicePasswordHistory, "history"},
    {&TeskPolicyData::requireDeviceEncryption, "internal_storage_encryption"},
    {&TeskPolicyData::allowPopimapEmail, "popimap_email_state"},
    {&TeskPolicyData::allowTextMessaging, "messaging_state"},
    {&TeskPolicyData::allowWifi, "wifi_state"},
}};

std::optional<std::size_t> settingOf(std::int32_t TeskPolicyData::*field) {
    const auto* const decision = std::find_if(decisions.begin(), decisions.end(),
                                              [field](const Decision& candidate) { return candidate.field == field; });
    if (decision == decisions.end()) {
        return std::nullopt;
    }
    const std::string name = decision->setting;
    const auto* const setting =
        std::find_if(deviceSettings.begin(), deviceSettings.end(),
                     [&name](const DeviceSetting& candidate) { return candidate.name == name; });
    return static_cast<std::size_t>(setting - deviceSettings.begin());
}

/// Merges one field, account by account, and notes whose value it had in the end.
FieldExplanation explainField(const TeskPolicyNumber& number, const TeskPolicyDataList& accounts) {
    const int start = TeskPolicyData().*number.field;
    FieldExplanation explanation;
    explanation.field = number.column;
    explanation.rule = ruleInWords(number.rule, start);
    explanation.setting = settingOf(number.field);
    explanation.merged = start;
    for (const auto& account : accounts) {
        const int value = (*account).*number.field;
        const int merged = TeskPolicyMerge::mergedValue(number.rule, start, explanation.merged, value);
        if (merged != explanation.merged) {
            explanation.winner = account->accountId;
            explanation.merged = merged;
        }
        explanation.accounts.push_back({account->accountId, value, Standing::Agrees});
    }
    for (auto& share : explanation.accounts) {
        if (share.account == explanation.winner) {
            share.standing = Standing::Wins;
        } else if (share.value != explanation.merged) {
            share.standing = Standing::Loses;
        }
    }
    return explanation;
}

PasswordScore scoreOf(const TeskPolicyData& account) {
    PasswordScore score{account.accountId, std::nullopt};
    if (account.devicePasswordEnabled != 0) {
        score.score = TeskPolicyMerge::passwordScore(account);
    }
    return score;
}

} // namespace

const char* ruleInWords(TeskMergeRule rule, int start) {
    switch (rule) {
    case TeskMergeRule::FirstOther:
        return start == 0 ? "required as soon as one account requires it"
                          : "forbidden as soon as one account forbids it";
    case TeskMergeRule::Largest:
        return "the largest value";
    case TeskMergeRule::SmallestNonZero:
        return "the smallest value but 0, which is no limit";
    case TeskMergeRule::Smallest:
        return "the lowest level";
    case TeskMergeRule::NotMerged:
        break;
    }
    return "not merged";
}

Explanation explain(const DeviceFacts& device) {
    Explanation explanation;
    for (const auto& account : device.accounts) {
        explanation.accounts.emplace_back(account->accountId, account->accountName);
        explanation.scores.push_back(scoreOf(*account));
    }
    for (const auto& number : TeskPolicyTable::numbers) {
        if (number.rule != TeskMergeRule::NotMerged) {
            explanation.fields.push_back(explainField(number, device.accounts));
        }
    }
    const auto merged = TeskPolicyMerge::strongest(device.accounts);
    if (!device.accounts.empty()) {
        explanation.written =
            writtenValues(TeskPolicySettings::of(merged, device.countryMinLength()), device.isEncrypted());
    }
    explanation.now = device.settings;
    explanation.enforcingAccount = TeskPolicyMerge::passwordEnforcingAccountId(device.accounts);
    explanation.notes = administratorNotes(device.accounts);
    return explanation;
}

} // namespace deskwatch
