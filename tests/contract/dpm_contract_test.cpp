#include <dpm/administration.h>
#include <dpm/password.h>
#include <dpm/restriction.h>
#include <dpm/security.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "contract_environment.h"
#include "platform_owners.h"

namespace {

// The administrator has the name of the package that calls.
constexpr const char* client = contract::applicationId;
constexpr uid_t user = 1000;

using Setter = int (*)(device_policy_manager_h, int);
using Getter = int (*)(device_policy_manager_h, int*);

struct Setting {
    const char* name;
    Setter set;
    Getter get;
    int byDefault;
};

const std::vector<Setting>& settings() {
    static const std::vector<Setting> all{
        {"quality", dpm_password_set_quality, dpm_password_get_quality, 0},
        {"minimum length", dpm_password_set_minimum_length, dpm_password_get_minimum_length, 0},
        {"complex characters", dpm_password_set_min_complex_chars, dpm_password_get_min_complex_chars, 0},
        {"failed attempts", dpm_password_set_maximum_failed_attempts_for_wipe,
         dpm_password_get_maximum_failed_attempts_for_wipe, 0},
        {"expiry", dpm_password_set_expires, dpm_password_get_expires, 0},
        {"history", dpm_password_set_history, dpm_password_get_history, 0},
        {"inactivity", dpm_password_set_max_inactivity_time_device_lock,
         dpm_password_get_max_inactivity_time_device_lock, 0},
        {"Wi-Fi", dpm_restriction_set_wifi_state, dpm_restriction_get_wifi_state, 1},
        {"POP and IMAP", dpm_restriction_set_popimap_email_state, dpm_restriction_get_popimap_email_state, 1},
    };
    return all;
}

class DpmContract : public testing::Test {
protected:
    device_policy_manager_h handle() const { return handle_.get(); }

    void registerClient() const { ASSERT_EQ(dpm_admin_register_client(handle(), client, user), DPM_ERROR_NONE); }

    int valueOf(Getter get) const {
        int value = -1;
        EXPECT_EQ(get(handle(), &value), DPM_ERROR_NONE);
        return value;
    }

    int setAndRead(const Setting& setting, int value) const {
        EXPECT_EQ(setting.set(handle(), value), DPM_ERROR_NONE) << setting.name << " " << value;
        return valueOf(setting.get);
    }

    int wipe(int type) const { return dpm_security_wipe_data(handle(), static_cast<dpm_security_wipe_type_e>(type)); }

    int messaging(const char* sim) const {
        int allowed = -1;
        EXPECT_EQ(dpm_restriction_get_messaging_state(handle(), sim, &allowed), DPM_ERROR_NONE);
        return allowed;
    }

private:
    const ManagerOwner handle_{dpm_manager_create()};
};

TEST_F(DpmContract, EverySettingStartsWithItsDefault) {
    for (const Setting& setting : settings()) {
        int value = -1;
        EXPECT_EQ(setting.get(handle(), &value), DPM_ERROR_NONE) << setting.name;
        EXPECT_EQ(value, setting.byDefault) << setting.name;
    }
    EXPECT_EQ(messaging("*"), 1);
}

// A quality of 2 does not set the length.
TEST_F(DpmContract, EverySettingKeepsItsOwnValue) {
    registerClient();
    for (const Setting& setting : settings()) {
        EXPECT_EQ(setting.set(handle(), 2), DPM_ERROR_NONE) << setting.name;
    }
    for (const Setting& changed : settings()) {
        changed.set(handle(), 0);
        for (const Setting& setting : settings()) {
            const int kept = setting.byDefault == 1 ? 1 : 2;
            EXPECT_EQ(valueOf(setting.get), &setting == &changed ? 0 : kept)
                << setting.name << " after " << changed.name;
        }
        changed.set(handle(), 2);
    }
}

TEST_F(DpmContract, QualityWithTheSimpleBitSetsTheLengthToFour) {
    registerClient();
    for (const int quality : {1, 33, 129, 255}) {
        dpm_password_set_minimum_length(handle(), 8);
        EXPECT_EQ(dpm_password_set_quality(handle(), quality), DPM_ERROR_NONE);
        EXPECT_EQ(valueOf(dpm_password_get_quality), quality);
        EXPECT_EQ(valueOf(dpm_password_get_minimum_length), 4) << quality;
    }
    dpm_password_set_minimum_length(handle(), 6);
    EXPECT_EQ(valueOf(dpm_password_get_minimum_length), 6);
}

TEST_F(DpmContract, QualityWithoutTheSimpleBitBringsNoLength) {
    registerClient();
    for (const int quality : {0, 16, 32, 64, 128}) {
        EXPECT_EQ(dpm_password_set_quality(handle(), quality), DPM_ERROR_NONE);
        EXPECT_EQ(valueOf(dpm_password_get_quality), quality);
        EXPECT_EQ(valueOf(dpm_password_get_minimum_length), 0) << quality;
    }
}

TEST_F(DpmContract, ValuesAbove32766AreKeptOrBecomeZero) {
    registerClient();
    for (const Setting& setting : settings()) {
        const std::string name = setting.name;
        if (name == "failed attempts" || name == "expiry" || name == "inactivity") {
            EXPECT_EQ(setAndRead(setting, 32766), 32766) << name;
            EXPECT_EQ(setAndRead(setting, 32767), 0) << name;
            EXPECT_EQ(setAndRead(setting, 2147483647), 0) << name;
        } else if (name == "minimum length" || name == "complex characters" || name == "history") {
            EXPECT_EQ(setAndRead(setting, 32767), 32767) << name;
            EXPECT_EQ(setAndRead(setting, 2147483647), 2147483647) << name;
        }
    }
}

TEST_F(DpmContract, NegativePasswordRuleIsInvalid) {
    registerClient();
    for (const Setting& setting : settings()) {
        const bool isRestriction = setting.byDefault == 1;
        EXPECT_EQ(setting.set(handle(), -1), isRestriction ? DPM_ERROR_NONE : DPM_ERROR_INVALID_PARAMETER)
            << setting.name;
        EXPECT_EQ(valueOf(setting.get), setting.byDefault) << setting.name;
    }
    EXPECT_EQ(dpm_restriction_set_messaging_state(handle(), "*", -1), DPM_ERROR_NONE);
    EXPECT_EQ(dpm_security_set_internal_storage_encryption(handle(), -1), DPM_ERROR_NOT_PERMITTED);
}

TEST_F(DpmContract, RestrictionGoesBackAndForth) {
    registerClient();
    for (const Setting& setting : settings()) {
        if (setting.byDefault == 1) {
            EXPECT_EQ(setAndRead(setting, 0), 0) << setting.name;
            EXPECT_EQ(setAndRead(setting, 1), 1) << setting.name;
            EXPECT_EQ(setAndRead(setting, 0), 0) << setting.name;
            EXPECT_EQ(setAndRead(setting, 5), 1) << setting.name;
        }
    }
}

TEST_F(DpmContract, SettersAreRefusedWhileNobodyAdministers) {
    for (const Setting& setting : settings()) {
        EXPECT_EQ(setting.set(handle(), 1), DPM_ERROR_NOT_PERMITTED) << setting.name;
    }
    EXPECT_EQ(dpm_restriction_set_messaging_state(handle(), "*", 0), DPM_ERROR_NOT_PERMITTED);
    EXPECT_EQ(dpm_security_set_internal_storage_encryption(handle(), 1), DPM_ERROR_NOT_PERMITTED);
    EXPECT_EQ(dpm_security_set_external_storage_encryption(handle(), 1), DPM_ERROR_NOT_PERMITTED);
    EXPECT_EQ(messaging("*"), 1);
}

TEST_F(DpmContract, AdministratorOfAnotherNameLetsTheCallerSetNothing) {
    EXPECT_EQ(dpm_admin_register_client(handle(), "com.example.another", user), DPM_ERROR_NONE);
    EXPECT_EQ(dpm_password_set_quality(handle(), 32), DPM_ERROR_NOT_PERMITTED);
    EXPECT_EQ(valueOf(dpm_password_get_quality), 0);
}

TEST_F(DpmContract, WithoutItsDaemonOnlyTheMinimumLengthSeemsToBeSet) {
    if (!contract::removePolicyDaemon()) {
        GTEST_SKIP() << "the daemon cannot be taken away here";
    }
    EXPECT_EQ(dpm_admin_register_client(handle(), client, user), DPM_ERROR_NOT_PERMITTED);
    EXPECT_EQ(dpm_admin_deregister_client(handle(), client, user), DPM_ERROR_NOT_PERMITTED);
    for (const Setting& setting : settings()) {
        const bool isLength = std::string(setting.name) == "minimum length";
        EXPECT_EQ(setting.set(handle(), 2), isLength ? DPM_ERROR_NONE : DPM_ERROR_NOT_PERMITTED) << setting.name;
        EXPECT_EQ(valueOf(setting.get), setting.byDefault) << setting.name;
    }
    EXPECT_EQ(dpm_restriction_set_messaging_state(handle(), "*", 0), DPM_ERROR_NOT_PERMITTED);
    EXPECT_EQ(dpm_security_set_internal_storage_encryption(handle(), 1), DPM_ERROR_NOT_PERMITTED);
}

TEST_F(DpmContract, SettersAreRefusedAgainWhenTheClientIsGone) {
    registerClient();
    EXPECT_EQ(dpm_admin_deregister_client(handle(), client, user), DPM_ERROR_NONE);
    EXPECT_EQ(dpm_password_set_quality(handle(), 32), DPM_ERROR_NOT_PERMITTED);
}

TEST_F(DpmContract, PasswordRulesGoWithTheClientAndRestrictionsStay) {
    registerClient();
    for (const Setting& setting : settings()) {
        setting.set(handle(), setting.byDefault == 1 ? 0 : 2);
    }
    dpm_restriction_set_messaging_state(handle(), "*", 0);

    EXPECT_EQ(dpm_admin_deregister_client(handle(), client, user), DPM_ERROR_NONE);

    for (const Setting& setting : settings()) {
        EXPECT_EQ(valueOf(setting.get), 0) << setting.name;
    }
    EXPECT_EQ(messaging("*"), 0);
}

TEST_F(DpmContract, ClientRegistersAndEndsOnce) {
    EXPECT_EQ(dpm_admin_register_client(handle(), client, user), DPM_ERROR_NONE);
    EXPECT_EQ(dpm_admin_register_client(handle(), client, user), DPM_ERROR_NOT_PERMITTED);
    EXPECT_EQ(dpm_admin_register_client(handle(), "com.example.another", user), DPM_ERROR_NONE);
    EXPECT_EQ(dpm_admin_register_client(handle(), "", user), DPM_ERROR_NONE) << "an empty name is one, too";
    EXPECT_EQ(dpm_admin_deregister_client(handle(), client, user + 1), DPM_ERROR_NOT_PERMITTED);
    EXPECT_EQ(dpm_admin_deregister_client(handle(), client, user), DPM_ERROR_NONE);
    EXPECT_EQ(dpm_admin_deregister_client(handle(), client, user), DPM_ERROR_NOT_PERMITTED);
}

TEST_F(DpmContract, ClientWithoutNameOrOfRootOrNobodyIsInvalid) {
    EXPECT_EQ(dpm_admin_register_client(handle(), nullptr, user), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_admin_register_client(handle(), client, 0), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_admin_register_client(handle(), client, static_cast<uid_t>(-1)), DPM_ERROR_INVALID_PARAMETER);
}

TEST_F(DpmContract, MessagingOfOneSimLeavesTheOthersAlone) {
    registerClient();
    EXPECT_EQ(dpm_restriction_set_messaging_state(handle(), "sim1", 0), DPM_ERROR_NONE);
    EXPECT_EQ(messaging("sim1"), 0);
    EXPECT_EQ(messaging("sim2"), 1);
    EXPECT_EQ(messaging("*"), 1);
}

TEST_F(DpmContract, MessagingOfAllReplacesTheSingleOnes) {
    registerClient();
    dpm_restriction_set_messaging_state(handle(), "sim1", 1);
    EXPECT_EQ(dpm_restriction_set_messaging_state(handle(), "*", 0), DPM_ERROR_NONE);
    EXPECT_EQ(messaging("sim1"), 0);
    EXPECT_EQ(messaging("sim2"), 0);
    EXPECT_EQ(messaging("*"), 0);
}

TEST_F(DpmContract, DemandForEncryptionEncryptsNothing) {
    registerClient();
    EXPECT_EQ(dpm_security_set_internal_storage_encryption(handle(), 1), DPM_ERROR_NONE);
    EXPECT_EQ(dpm_security_set_external_storage_encryption(handle(), 1), DPM_ERROR_NONE);
    EXPECT_EQ(dpm_security_set_external_storage_encryption(handle(), 0), DPM_ERROR_NONE);
    int isEncrypted = -1;
    EXPECT_EQ(dpm_security_is_internal_storage_encrypted(handle(), &isEncrypted), DPM_ERROR_NONE);
    EXPECT_EQ(isEncrypted, 0);
    isEncrypted = -1;
    EXPECT_EQ(dpm_security_is_external_storage_encrypted(handle(), &isEncrypted), DPM_ERROR_NONE);
    EXPECT_EQ(isEncrypted, 0);
}

TEST_F(DpmContract, WipeNeedsNoAdministrator) {
    if (!contract::mayWipe()) {
        GTEST_SKIP() << "nothing is wiped here";
    }
    EXPECT_EQ(wipe(DPM_SECURITY_WIPE_INTERNAL_STORAGE), DPM_ERROR_NONE);
}

TEST_F(DpmContract, WipeTakesTypesThatNameAStorageOfTheDevice) {
    if (!contract::mayWipe()) {
        GTEST_SKIP() << "nothing is wiped here";
    }
    registerClient();
    // a number above 3 is not a value of the enumeration in C++
    for (const int type : {1, 2, 3}) {
        EXPECT_EQ(wipe(type), DPM_ERROR_NONE) << type;
    }
    EXPECT_EQ(wipe(0), DPM_ERROR_INVALID_PARAMETER);
}

TEST_F(DpmContract, ManagerCanBeDestroyed) {
    EXPECT_EQ(dpm_manager_destroy(dpm_manager_create()), DPM_ERROR_NONE);
}

TEST_F(DpmContract, NullHandleIsInvalid) {
    int value = 0;
    for (const Setting& setting : settings()) {
        EXPECT_EQ(setting.set(nullptr, 1), DPM_ERROR_INVALID_PARAMETER) << setting.name;
        EXPECT_EQ(setting.get(nullptr, &value), DPM_ERROR_INVALID_PARAMETER) << setting.name;
    }
    EXPECT_EQ(dpm_manager_destroy(nullptr), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_admin_register_client(nullptr, client, user), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_admin_deregister_client(nullptr, client, user), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_restriction_set_messaging_state(nullptr, "*", 1), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_restriction_get_messaging_state(nullptr, "*", &value), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_security_set_internal_storage_encryption(nullptr, 1), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_security_is_internal_storage_encrypted(nullptr, &value), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_security_set_external_storage_encryption(nullptr, 1), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_security_is_external_storage_encrypted(nullptr, &value), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_security_wipe_data(nullptr, DPM_SECURITY_WIPE_INTERNAL_STORAGE), DPM_ERROR_INVALID_PARAMETER);
}

TEST_F(DpmContract, GetterWithoutAPlaceForTheValueIsInvalid) {
    for (const Setting& setting : settings()) {
        EXPECT_EQ(setting.get(handle(), nullptr), DPM_ERROR_INVALID_PARAMETER) << setting.name;
    }
    EXPECT_EQ(dpm_restriction_get_messaging_state(handle(), "*", nullptr), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_security_is_internal_storage_encrypted(handle(), nullptr), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_security_is_external_storage_encrypted(handle(), nullptr), DPM_ERROR_INVALID_PARAMETER);
}

TEST_F(DpmContract, MessagingWithoutASimIsInvalid) {
    int value = 0;
    EXPECT_EQ(dpm_restriction_set_messaging_state(handle(), nullptr, 1), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_restriction_get_messaging_state(handle(), nullptr, &value), DPM_ERROR_INVALID_PARAMETER);
}

} // namespace
