#include "check/findings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "rules/TeskPolicyMerge.h"

namespace deskwatch {
namespace {

using FindingKind = Finding::Kind;
using testing::ElementsAre;

using Columns = std::vector<std::pair<const char*, Value>>;

/// An account that demands nothing but what its columns say.
StoredAccount accountWith(int id, const Columns& columns = {}) {
    StoredAccount account{{"account_id", id}};
    for (const auto& number : TeskPolicyTable::numbers) {
        const bool isAllowance = std::string(number.column).rfind("allow_", 0) == 0;
        if (std::string(number.column) != "account_id") {
            account.push_back({number.column, isAllowance ? 1 : 0});
        }
    }
    for (const auto& [column, value] : columns) {
        for (auto& entry : account) {
            entry.value = entry.name == column ? value : entry.value;
        }
    }
    return account;
}

const Columns pin{{"device_password_enabled", 1}, {"min_device_password_length", 6}};

/// A watch on which the service has enforced the accounts' policies, and the wearer has done what they ask for.
Evidence enforced(const std::vector<StoredAccount>& accounts) {
    Evidence evidence;
    evidence.hasStore = true;
    evidence.accounts = accounts;
    evidence.isAdministered = true;
    evidence.lockType = 2;
    evidence.wasLockApplied = true;
    evidence.cryptoState = "encrypted";
    const auto settings = TeskPolicySettings::of(TeskPolicyMerge::strongest(policyRecords(accounts)), 4);
    for (std::size_t setting = 0; setting < deviceSettings.size(); ++setting) {
        evidence.held.at(setting) = deviceSettings.at(setting).written(settings, true);
    }
    return evidence;
}

void hold(Evidence& evidence, const std::string& name, std::optional<int> value) {
    for (std::size_t setting = 0; setting < deviceSettings.size(); ++setting) {
        if (deviceSettings.at(setting).name == name) {
            evidence.held.at(setting) = value;
        }
    }
}

/// A watch that is weaker than its accounts want, and the only thing that is to be found.
struct Damage {
    const char* name;
    Evidence evidence;
    FindingKind kind;
    std::string text;
    std::vector<std::string> details;
};

void PrintTo(const Damage& damage, std::ostream* output) {
    *output << damage.text;
}

template <class Change>
Evidence damaged(Evidence evidence, const Change& change) {
    change(evidence);
    return evidence;
}

const std::vector<Damage>& damages() {
    static const std::vector<Damage> all{
        {"StoreCannotBeRead",
         damaged(enforced({}), [](auto& watch) { watch.storeProblem = "no such table"; }),
         FindingKind::Store,
         "the stored accounts cannot be read: no such table",
         {}},
        {"StoreIsMissing",
         damaged(enforced({}), [](auto& watch) { watch.hasStore = false; }),
         FindingKind::Store,
         "the service administers the device, but its store is missing",
         {}},
        {"NotAdministered",
         damaged(enforced({accountWith(2, pin)}),
                 [](auto& watch) {
                     watch.isAdministered = false;
                     hold(watch, "minimum_length", 0);
                 }),
         FindingKind::Administrator,
         "the service does not administer the device",
         {"account 2 wants minimum_length 6, the device holds 0"}},
        {"RefusedRule",
         damaged(enforced({accountWith(1, {{"allow_wifi", 0}})}),
                 [](auto& watch) {
                     hold(watch, "wifi_state", 1);
                     watch.refused = {7};
                 }),
         FindingKind::Refused,
         "the device refused wifi_state",
         {"account 1 wants wifi_state 0, the device holds 1"}},
        {"ChangedRule",
         damaged(enforced({accountWith(1, {{"max_inactivity_time_device_lock", 60}})}),
                 [](auto& watch) { hold(watch, "max_inactivity_time_device_lock", 0); }),
         FindingKind::Changed,
         "something else changed max_inactivity_time_device_lock, or the service has not enforced it yet",
         {"account 1 wants max_inactivity_time_device_lock 60, the device holds 0"}},
        {"SimplePasswordsGetThrough",
         damaged(enforced({accountWith(1, {{"device_password_enabled", 1}, {"allow_simple_password", 0}})}),
                 [](auto& watch) { hold(watch, "quality", 33); }),
         FindingKind::Changed,
         "something else changed quality, or the service has not enforced it yet",
         {"account 1 wants quality 32, the device holds 33"}},
        {"NegativeValueWins",
         enforced({accountWith(1, {{"device_password_expiration", -5}}),
                   accountWith(2, {{"device_password_expiration", 30}})}),
         FindingKind::OddValue,
         "account 1: device_password_expiration is negative",
         {"account 2 wants expires 30, the device holds -5"}},
        {"TextInsteadOfANumber",
         enforced({accountWith(3, {{"device_password_enabled", std::string("yes")}})}),
         FindingKind::OddValue,
         "account 3: device_password_enabled is not a number, which counts as 0",
         {}},
        {"SmallestHistoryWins",
         enforced({accountWith(1, {{"device_password_history", 8}}), accountWith(2, {{"device_password_history", 2}})}),
         FindingKind::Merge,
         "device_password_history of account 2 wins: the smallest value above 0 (0: no limit)",
         {"account 1 wants history 8, the device holds 2"}},
        {"LockWasRemoved",
         damaged(enforced({accountWith(1, pin)}), [](auto& watch) { watch.lockType = 0; }),
         FindingKind::Lock,
         "the lock that the accounts demand was removed or weakened",
         {}},
        {"NotEncrypted",
         damaged(enforced({accountWith(1, {{"require_device_encryption", 1}})}),
                 [](auto& watch) {
                     watch.cryptoState = "unencrypted";
                     hold(watch, "internal_storage_encryption", 1);
                 }),
         FindingKind::Encryption,
         "the internal storage is not encrypted",
         {}},
        {"AccountNeverArrived",
         damaged(enforced({accountWith(1, pin)}),
                 [](auto& watch) {
                     watch.connected = {1, 4};
                 }),
         FindingKind::MissingAccount,
         "account 4 has a policy of its server that never arrived, or was lost",
         {}},
    };
    return all;
}

class DamagedWatch : public testing::TestWithParam<Damage> {};

TEST_P(DamagedWatch, HasExactlyThatFinding) {
    const auto findings = findingsOf(GetParam().evidence);

    ASSERT_EQ(findings.size(), 1U) << findingsText(findings);
    EXPECT_EQ(findings[0].kind, GetParam().kind);
    EXPECT_EQ(findings[0].text, GetParam().text);
    EXPECT_EQ(findings[0].details, GetParam().details);
}

INSTANTIATE_TEST_SUITE_P(, DamagedWatch, testing::ValuesIn(damages()),
                         [](const auto& damage) { return std::string(damage.param.name); });

TEST(Findings, EachKindHasAWordInJson) {
    const std::vector<std::string> words{"store",   "administrator", "refused",    "odd value",      "merge",
                                         "changed", "lock",          "encryption", "missing account"};
    for (std::size_t kind = 0; kind < words.size(); ++kind) {
        const auto json = findingsJson({{static_cast<FindingKind>(kind), "", {}}}, 0);
        EXPECT_NE(json.find("\"kind\": \"" + words[kind] + "\""), std::string::npos) << json;
    }
}

TEST(Findings, RulesOfAPasswordThatNobodyDemandsAreNotMissed) {
    auto watch = enforced({accountWith(1, {{"alphanumeric_device_password_required", 1},
                                           {"min_device_password_complex_characters", 4},
                                           {"min_device_password_length", 9}})});
    for (const auto* setting : {"quality", "minimum_length", "min_complex_chars"}) {
        hold(watch, setting, 0);
    }

    EXPECT_EQ(findingsText(findingsOf(watch)), "the watch is as strict as its accounts want\n");
}

TEST(Findings, EncryptionIsMissedWithoutAPasswordToo) {
    auto watch = enforced({accountWith(1, {{"require_device_encryption", 1}})});
    watch.cryptoState = "unencrypted";
    hold(watch, "internal_storage_encryption", 0);

    EXPECT_NE(findingsText(findingsOf(watch)).find("account 1 wants internal_storage_encryption 1, the device holds 0"),
              std::string::npos);
}

/// A value that a server may send.
int legalValue(const std::string& column, std::minstd_rand& random) {
    const int most = column == "min_device_password_length"                ? 16
                     : column.rfind("max_device_password", 0) == 0         ? 16
                     : column.rfind("max_inactivity", 0) == 0              ? 3600
                     : column == "device_password_expiration"              ? 730
                     : column == "device_password_history"                 ? 50
                     : column.rfind("min_device_password_complex", 0) == 0 ? 4
                                                                           : 1;
    return static_cast<int>(random() % static_cast<unsigned>(most + 1));
}

TEST(Findings, OnlyAWeakerHistoryIsFoundInLegalPolicies) {
    std::minstd_rand random(5);
    for (int story = 0; story < 1000; ++story) {
        std::vector<StoredAccount> accounts;
        std::set<int> histories;
        for (int id = 1; id <= 1 + static_cast<int>(random() % 4); ++id) {
            auto stored = accountWith(id);
            for (auto& [column, value] : stored) {
                value = column == "account_id" ? Value(id) : Value(legalValue(column, random));
            }
            histories.insert(policyRecords({stored}).front()->devicePasswordHistory);
            accounts.push_back(stored);
        }
        histories.erase(0);

        const auto findings = findingsOf(enforced(accounts));

        ASSERT_EQ(findings.size(), histories.size() > 1 ? 1U : 0U) << findingsText(findings);
        ASSERT_TRUE(findings.empty() || findings[0].kind == FindingKind::Merge) << findingsText(findings);
    }
}

} // namespace
} // namespace deskwatch
