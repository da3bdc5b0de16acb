#ifndef UNIT_TEST_H
#define UNIT_TEST_H

#include <gtest/gtest.h>

#include <initializer_list>

#include "accounts.h"
#include "watch.h"

using harness::fieldsOf;

/// A test of the service on a watch of its own. A platform object that is not given back fails it.
class UnitTest : public ::testing::Test {
protected:
    using Lines = fake::Journal::Lines;

    void TearDown() override;

    /// Stores accounts and lets the service administer the device, as an earlier run would have; then forgets it.
    void store(std::initializer_list<TeskPolicyData> accounts);

    /// The stored account; a new record when there is none.
    static TeskPolicyData stored(int accountId) { return harness::storedAccount(accountId); }

    /// The number of stored accounts.
    static int storedAccounts();

    /// How often the stored policies were applied.
    std::size_t applications() const;

    /// The log lines that say more than "Enter" and "Leave".
    Lines messages() const;

    harness::Watch watch;
    fake::FakePlatform& platform = watch.platform;
    fake::Journal& journal = platform.journal;
};

/// A record that requires nothing.
TeskPolicyData account(int accountId);

/// A record that requires a password.
TeskPolicyData passwordAccount(int accountId);

#endif
