#include "explain/administrator_notes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace deskwatch {
namespace {

TeskPolicyData account(int id) {
    TeskPolicyData data;
    data.accountId = id;
    data.passwordRecoveryEnabled = 0;
    return data;
}

/// The accounts that a note with these words is about.
std::vector<int> concerned(const std::vector<TeskPolicyData>& accounts, const std::string& words) {
    TeskPolicyDataList list;
    std::transform(accounts.begin(), accounts.end(), std::back_inserter(list),
                   [](const TeskPolicyData& data) { return std::make_shared<TeskPolicyData>(data); });
    for (const auto& note : administratorNotes(list)) {
        if (std::string(note.text).find(words) != std::string::npos) {
            return note.accounts;
        }
    }
    return {};
}

using Ids = std::vector<int>;

TEST(AdministratorNotes, NoAccountIsWorthNoWord) {
    EXPECT_TRUE(administratorNotes({}).empty());
}

TEST(AdministratorNotes, LimitsWithoutAPasswordAreNamed) {
    auto limited = account(2);
    limited.maxDevicePasswordFailedAttempts = 8;
    auto withPassword = limited;
    withPassword.accountId = 3;
    withPassword.devicePasswordEnabled = 1;
    EXPECT_EQ(concerned({account(1), limited, withPassword}, "are merged all the same"), Ids{2});
}

TEST(AdministratorNotes, LongerHistoryThatLosesIsNamed) {
    auto shorter = account(1);
    shorter.devicePasswordHistory = 4;
    auto longer = account(2);
    longer.devicePasswordHistory = 24;
    EXPECT_EQ(concerned({shorter, longer, account(3)}, "smallest password history"), Ids{2});
    EXPECT_EQ(concerned({longer, account(3)}, "smallest password history"), Ids{});
}

TEST(AdministratorNotes, AttemptsWithoutALimitAreNamedWhileNobodyLimitsThem) {
    auto limited = account(2);
    limited.maxDevicePasswordFailedAttempts = 16;
    EXPECT_EQ(concerned({account(1)}, "never unlimited"), Ids{1});
    EXPECT_EQ(concerned({account(1), limited}, "never unlimited"), Ids{});
}

TEST(AdministratorNotes, AccountThatAllowsMoreThanTenAttemptsWeakensAnother) {
    auto lenient = account(2);
    lenient.maxDevicePasswordFailedAttempts = 11;
    auto stricter = account(3);
    stricter.maxDevicePasswordFailedAttempts = 10;
    EXPECT_EQ(concerned({account(1), lenient}, "weakens"), Ids{2});
    EXPECT_EQ(concerned({lenient}, "weakens"), Ids{});
    EXPECT_EQ(concerned({account(1), lenient, stricter}, "weakens"), Ids{});
}

TEST(AdministratorNotes, InactivityThatMeansUnlimitedIsNamedFrom9999On) {
    auto below = account(1);
    below.maxInactivityTimeDeviceLock = 9998;
    auto unlimited = account(2);
    unlimited.maxInactivityTimeDeviceLock = 9999;
    EXPECT_EQ(concerned({below, unlimited}, "9999"), Ids{2});
}

TEST(AdministratorNotes, WhatIsStoredAndNotEnforcedIsNamed) {
    auto noCamera = account(1);
    noCamera.allowCamera = 0;
    auto noWifi = account(4);
    noWifi.allowWifi = 0;
    auto recovering = account(2);
    recovering.passwordRecoveryEnabled = 1;
    EXPECT_EQ(concerned({noCamera, recovering, account(3), noWifi}, "stored, not"), (Ids{1, 2}));
}

TEST(AdministratorNotes, EncryptionLeavesTheStorageCardOut) {
    auto encrypting = account(1);
    encrypting.requireDeviceEncryption = 1;
    EXPECT_EQ(concerned({encrypting, account(2)}, "storage card encryption cannot"), Ids{1});
}

} // namespace
} // namespace deskwatch
