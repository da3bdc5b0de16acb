#include "explain/administrator_notes.h"

#include <algorithm>
#include <array>

#include "rules/TeskPolicyMerge.h"

namespace deskwatch {
namespace {

/// Failed attempts when no account limits them.
constexpr int attemptsWithoutLimit = 10;

/// From here on the protocol means "no limit", seconds.
constexpr int unlimitedInactivity = 9999;

/// An account, the merged policy and all accounts.
struct Case {
    const TeskPolicyData& account;
    const TeskPolicyData& merged;
    const TeskPolicyDataList& accounts;
};

bool limitsWithoutPassword(const Case& of) {
    const auto& account = of.account;
    return account.devicePasswordEnabled == 0 &&
           (account.minDevicePasswordLength != 0 || account.maxDevicePasswordFailedAttempts != 0 ||
            account.maxInactivityTimeDeviceLock != 0 || account.devicePasswordExpiration != 0 ||
            account.devicePasswordHistory != 0 || account.minDevicePasswordComplexCharacters > 1 ||
            account.alphanumericDevicePasswordRequired != 0 || account.allowSimplePassword == 0);
}

bool asksForALongerHistory(const Case& of) {
    return of.account.devicePasswordHistory > of.merged.devicePasswordHistory;
}

bool leavesAttemptsUnlimited(const Case& of) {
    return of.merged.maxDevicePasswordFailedAttempts == 0;
}

bool weakensAttempts(const Case& of) {
    const auto isUnlimited = [](const auto& account) { return account->maxDevicePasswordFailedAttempts == 0; };
    return of.merged.maxDevicePasswordFailedAttempts > attemptsWithoutLimit &&
           of.account.maxDevicePasswordFailedAttempts > attemptsWithoutLimit &&
           std::any_of(of.accounts.begin(), of.accounts.end(), isUnlimited);
}

bool meansUnlimitedInactivity(const Case& of) {
    return of.account.maxInactivityTimeDeviceLock >= unlimitedInactivity;
}

bool forbidsWhatIsOnlyStored(const Case& of) {
    const auto& account = of.account;
    const auto flags = {account.allowBluetooth,   account.allowCamera,          account.allowBrowser,
                        account.allowDesktopSync, account.allowInternetSharing, account.allowStorageCard};
    return account.passwordRecoveryEnabled != 0 || std::find(flags.begin(), flags.end(), 0) != flags.end();
}

bool requiresEncryption(const Case& of) {
    return of.account.requireDeviceEncryption != 0;
}

struct Rule {
    bool (*applies)(const Case& of);
    const char* text;
};

constexpr std::array<Rule, 7> noteRules{{
    {limitsWithoutPassword,
     "the password limits of an account that requires no password are merged all the same; the protocol tells "
     "clients to ignore them"},
    {asksForALongerHistory,
     "the smallest password history other than 0 is enforced, not the largest, so this account gets a shorter one"},
    {leavesAttemptsUnlimited, "failed attempts are never unlimited: when no account limits them, the watch allows 10"},
    {weakensAttempts,
     "an account that allows more than 10 failed attempts weakens the watch: without it there would be 10"},
    {meansUnlimitedInactivity,
     "an inactivity time of 9999 seconds or more means no limit in the protocol; here it is written literally"},
    {forbidsWhatIsOnlyStored,
     "Bluetooth, camera, browser, desktop sync, internet sharing, storage card and password recovery are stored, not "
     "enforced"},
    {requiresEncryption,
     "the internal storage must be encrypted; a demand for storage card encryption cannot be delivered to this watch"},
}};

} // namespace

std::vector<AdministratorNote> administratorNotes(const TeskPolicyDataList& accounts) {
    const auto merged = TeskPolicyMerge::strongest(accounts);
    std::vector<AdministratorNote> notes;
    for (const auto& rule : noteRules) {
        AdministratorNote note{{}, rule.text};
        for (const auto& account : accounts) {
            if (rule.applies({*account, merged, accounts})) {
                note.accounts.push_back(account->accountId);
            }
        }
        if (!note.accounts.empty()) {
            notes.push_back(std::move(note));
        }
    }
    return notes;
}

} // namespace deskwatch
