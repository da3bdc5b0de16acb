#include "explain/explanation.h"

#include <algorithm>

#include "rules/TeskPolicyMerge.h"

namespace deskwatch {
namespace {

std::optional<std::size_t> settingOf(DeviceSetting::Field field) {
    const auto* const setting =
        std::find_if(deviceSettings.begin(), deviceSettings.end(),
                     [field](const DeviceSetting& candidate) { return candidate.isDecidedBy(field); });
    return setting != deviceSettings.end() ? std::optional<std::size_t>(setting - deviceSettings.begin())
                                           : std::nullopt;
}

SettingValues demandedValues(const TeskPolicySettings& settings, bool isEncrypted) {
    SettingValues values;
    std::transform(deviceSettings.begin(), deviceSettings.end(), values.begin(),
                   [&](const DeviceSetting& setting) { return setting.written(settings, isEncrypted); });
    return values;
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

/// The fault of the function that writes a setting; null when there is none.
const std::pair<std::string, int>* faultOf(const DeviceFacts& device, const std::string& setting) {
    const std::string end = "_set_" + setting;
    const auto found = std::find_if(device.faults.begin(), device.faults.end(), [&end](const auto& fault) {
        const auto& function = fault.first;
        return function.size() > end.size() && function.compare(function.size() - end.size(), end.size(), end) == 0;
    });
    return found != device.faults.end() ? &*found : nullptr;
}

/// Why a setting is not what the accounts alone would make it.
std::string remarkOn(std::size_t setting, const Explanation& explanation, const DeviceFacts& device,
                     const TeskPolicyData& merged) {
    const auto& demanded = explanation.written[setting];
    const std::string name = deviceSettings[setting].name;
    std::string remark;
    if (name == "minimum_length" && demanded && *demanded > merged.minDevicePasswordLength) {
        remark = "the least length of a password in " +
                 (device.country.value_or("").empty() ? "an unknown country" : *device.country);
    }
    if (name == "internal_storage_encryption" && !demanded && merged.requireDeviceEncryption != 0 &&
        device.isEncrypted()) {
        remark = "encrypted already, so nothing is written";
    }
    if (const auto* const fault = faultOf(device, name)) {
        remark +=
            (remark.empty() ? "" : "; ") + fault->first + " returns " + std::to_string(fault->second) + " (fault)";
    }
    if (demanded && demanded != explanation.now[setting]) {
        remark += std::string(remark.empty() ? "" : "; ") + "not written yet, or refused by the platform";
    }
    return remark;
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
        return "the smallest value above 0 (0: no limit)";
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
            demandedValues(TeskPolicySettings::of(merged, device.countryMinLength()), device.isEncrypted());
    }
    explanation.now = device.settings;
    for (std::size_t setting = 0; setting < deviceSettings.size(); ++setting) {
        explanation.remarks[setting] = remarkOn(setting, explanation, device, merged);
    }
    explanation.enforcingAccount = TeskPolicyMerge::passwordEnforcingAccountId(device.accounts);
    explanation.notes = administratorNotes(device.accounts);
    return explanation;
}

} // namespace deskwatch
