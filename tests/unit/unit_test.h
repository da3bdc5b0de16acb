#ifndef UNIT_TEST_H
#define UNIT_TEST_H

#include <gtest/gtest.h>

#include <initializer_list>

#include "fake_platform.h"
#include "rules/TeskPolicyData.h"

/// A test of the service on the fake platform: an unlocked, unencrypted watch outside of Korea, on which nothing is
/// stored. What GLib holds for a programmer's error ends the test, and so does a platform object that is not given
/// back.
class UnitTest : public ::testing::Test {
protected:
    using Lines = fake::Journal::Lines;

    UnitTest();
    void TearDown() override;

    /// Stores accounts and lets the service administer the device, as an earlier run would have; then forgets it.
    void store(std::initializer_list<TeskPolicyData> accounts);

    /// The stored account; a new record when there is none.
    static TeskPolicyData stored(int accountId);

    /// The number of stored accounts.
    static int storedAccounts();

    /// The log lines that say more than "Enter" and "Leave".
    Lines messages() const;

    fake::FakePlatform platform;
    fake::Journal& journal = platform.journal;
};

/// A record that requires nothing.
TeskPolicyData account(int accountId);

/// A record that requires a password.
TeskPolicyData passwordAccount(int accountId);

/// All fields of a record, in order, as texts.
std::vector<std::string> fieldsOf(const TeskPolicyData& data);

#endif
