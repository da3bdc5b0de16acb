#include <algorithm>

#include "TeskConsumerDbMgr.h"
#include "TeskConsumerPolicyMgr.h"
#include "unit_test.h"

namespace {

class PolicyMgrTest : public UnitTest {
protected:
    PolicyMgrTest() {
        TeskConsumerDbMgr::getInstance();
        journal.clear();
    }

    /// What the device enforces now.
    void setCurrent(int quality, int minLength, int complexCharacters = 0) {
        platform.devicePolicy.settings = {
            {"quality", quality}, {"minimum_length", minLength}, {"min_complex_chars", complexCharacters}};
    }

    void setLockType(int lockType) { platform.settings.setKeyAsDevice("db/setting/lock_type", lockType); }

    /// The ERROR lines, which tell why a password is demanded.
    Lines reasons() const { return journal.logs(DLOG_ERROR); }

    /// What reaches the device and other applications.
    Lines effects() const {
        return journal.calls({"dpm_password_set", "dpm_restriction_set", "dpm_security_set", "vconf_set",
                              "preference_set", "app_control_send"});
    }

    TeskPolicyData encryptingAccount() const {
        auto data = account(1);
        data.requireDeviceEncryption = 1;
        return data;
    }

    TeskConsumerPolicyMgr& manager = *TeskConsumerPolicyMgr::getInstance();
};

using PolicyMgrClientTest = PolicyMgrTest;

TEST_F(PolicyMgrClientTest, RegistersWhileNoAccountIsStored) {
    EXPECT_EQ(manager.registerClient(), 0);

    EXPECT_EQ(journal.calls({"dpm_"}), Lines{"dpm_admin_register_client com.velmor.tesk-agent 5001"});
    EXPECT_EQ(messages(), Lines{"I easAccountCount : 0"});
    EXPECT_EQ(journal.logsOf("registerClient").front(), "I Enter");
}

TEST_F(PolicyMgrClientTest, StoredAccountKeepsItFromRegistering) {
    store({account(1)});

    EXPECT_EQ(manager.registerClient(), 0);
    EXPECT_EQ(journal.calls({"dpm_"}), Lines{});
    EXPECT_EQ(messages(), Lines{"I easAccountCount : 1"});
    EXPECT_EQ(journal.logsOf("registerClient"), Lines{"I Enter"});
}

TEST_F(PolicyMgrClientTest, FailedCountCountsAsNone) {
    store({account(1)});
    platform.faults.always("sqlite3_prepare_v2", 1);

    EXPECT_EQ(manager.registerClient(), 0);
    EXPECT_EQ(journal.calls({"dpm_"}), Lines{"dpm_admin_register_client com.velmor.tesk-agent 5001"});
}

TEST_F(PolicyMgrClientTest, RefusedRegistrationIsLoggedAndForgiven) {
    platform.faults.always("dpm_admin_register_client", -13);

    EXPECT_EQ(manager.registerClient(), 0);
    EXPECT_EQ(journal.warnings(), Lines{"W Failed to register policy admin : -13"});
}

TEST_F(PolicyMgrClientTest, DeregistersOnceNoAccountIsStored) {
    platform.devicePolicy.registerService();

    EXPECT_EQ(manager.deregisterClient(), 0);

    EXPECT_EQ(journal.calls({"dpm_"}), Lines{"dpm_admin_deregister_client com.velmor.tesk-agent 5001"});
    EXPECT_EQ(messages(), Lines{"I easAccountCount : 0"});
}

TEST_F(PolicyMgrClientTest, StoredAccountKeepsItFromDeregistering) {
    store({account(1), account(2)});

    EXPECT_EQ(manager.deregisterClient(), 0);
    EXPECT_EQ(journal.calls({"dpm_"}), Lines{});
    EXPECT_EQ(messages(), Lines{"I easAccountCount : 2"});
    EXPECT_EQ(journal.logsOf("deregisterClient"), Lines{"I Enter"});
}

TEST_F(PolicyMgrClientTest, FailedCountDeregisters) {
    store({account(1)});
    platform.faults.always("sqlite3_prepare_v2", 1);

    EXPECT_EQ(manager.deregisterClient(), 0);
    EXPECT_EQ(journal.calls({"dpm_"}), Lines{"dpm_admin_deregister_client com.velmor.tesk-agent 5001"});
    EXPECT_EQ(journal.logsOf("deregisterClient").front(), "I Enter");
}

TEST_F(PolicyMgrClientTest, RefusedDeregistrationIsLoggedLikeARefusedRegistration) {
    platform.faults.always("dpm_admin_deregister_client", -111);

    EXPECT_EQ(manager.deregisterClient(), 0);
    EXPECT_EQ(journal.warnings(), Lines{"W Failed to register policy admin : -111"});
}

using PolicyMgrLifeTest = UnitTest;

TEST_F(PolicyMgrLifeTest, HandleLivesAsLongAsTheManager) {
    {
        const TeskConsumerPolicyMgr manager;
        EXPECT_EQ(platform.devicePolicy.handles.size(), 1U);
    }
    EXPECT_TRUE(platform.devicePolicy.handles.empty());
    EXPECT_EQ(journal.calls(), (Lines{"dpm_manager_create", "dpm_manager_destroy"}));
}

TEST_F(PolicyMgrLifeTest, ConstructorAndDestructorLogBareLinesUnderTheirNames) {
    { const TeskConsumerPolicyMgr manager; }

    EXPECT_EQ(journal.logs(), (Lines{"I ", "I "}));
    EXPECT_EQ(journal.logsOf("TeskConsumerPolicyMgr").size(), 1U);
    EXPECT_EQ(journal.logsOf("~TeskConsumerPolicyMgr").size(), 1U);
}

TEST_F(PolicyMgrLifeTest, MissingHandleMakesEveryDecisionDemandAPassword) {
    platform.faults.always("dpm_manager_create");
    TeskConsumerPolicyMgr manager;

    EXPECT_EQ(manager.applyPolicy(), -6000);
    EXPECT_EQ(journal.logs(DLOG_ERROR).at(0), "E Failed to get password quality. [-22]");
}

using PolicyMgrWipeTest = PolicyMgrTest;

TEST_F(PolicyMgrWipeTest, FactoryResetWipesTheInternalStorageOnce) {
    platform.devicePolicy.registerService();

    EXPECT_EQ(manager.factoryReset(), 0);
    EXPECT_EQ(journal.calls(), Lines{"dpm_security_wipe_data 1"});
    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "I Leave"}));
}

TEST_F(PolicyMgrWipeTest, RefusedWipeIsLoggedAndForgiven) {
    EXPECT_EQ(manager.factoryReset(), 0);
    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "W Failed to wipe internal storage. : [-13]", "I Leave"}));
}

using PolicyMgrMergeTest = PolicyMgrTest;

TEST_F(PolicyMgrMergeTest, NoAccountGivesTheStartValues) {
    EXPECT_EQ(fieldsOf(*manager.getStrongPolicy()), fieldsOf(TeskPolicyData()));
    EXPECT_EQ(journal.logs(DLOG_INFO).back(), "I <<<<<<<<<< Strong policy >>>>>>>>>>");
}

TEST_F(PolicyMgrMergeTest, StoredAccountsAreMerged) {
    auto first = passwordAccount(1);
    first.devicePasswordHistory = 5;
    auto second = account(2);
    second.devicePasswordHistory = 3;
    second.allowWifi = 0;
    store({first, second});

    const auto strong = manager.getStrongPolicy();

    EXPECT_EQ(strong->devicePasswordEnabled, 1);
    EXPECT_EQ(strong->devicePasswordHistory, 3);
    EXPECT_EQ(strong->allowWifi, 0);
    EXPECT_EQ(strong->accountId, 0);
}

TEST_F(PolicyMgrMergeTest, UnreadableDatabaseGivesTheStartValues) {
    store({passwordAccount(1)});
    platform.faults.always("sqlite3_prepare_v2", 1);

    EXPECT_EQ(fieldsOf(*manager.getStrongPolicy()), fieldsOf(TeskPolicyData()));
}

using PolicyMgrEncryptionTest = PolicyMgrTest;

TEST_F(PolicyMgrEncryptionTest, OnlyTheWordUnencryptedMeansNotEncrypted) {
    EXPECT_FALSE(manager.isDeviceEncrypted());
    for (const auto* state : {"encrypted", "unencrypted ", "", "Unencrypted", "encrypting"}) {
        platform.settings.setKeyAsDevice("db/ode/crypto_state", state);
        EXPECT_TRUE(manager.isDeviceEncrypted()) << state;
    }
}

TEST_F(PolicyMgrEncryptionTest, UnreadableStateCountsAsEncrypted) {
    platform.settings.unset("db/ode/crypto_state");

    EXPECT_TRUE(manager.isDeviceEncrypted());
}

TEST_F(PolicyMgrEncryptionTest, IsRequiredOfAnUnencryptedDeviceOnly) {
    store({encryptingAccount()});
    bool required = false;

    EXPECT_EQ(manager.getIsRequiredDeviceEncryption(&required), 0);
    EXPECT_TRUE(required);

    platform.settings.setKeyAsDevice("db/ode/crypto_state", "encrypted");
    EXPECT_EQ(manager.getIsRequiredDeviceEncryption(&required), 0);
    EXPECT_FALSE(required);
}

TEST_F(PolicyMgrEncryptionTest, IsNotRequiredWithoutAPolicy) {
    bool required = true;

    EXPECT_EQ(manager.getIsRequiredDeviceEncryption(&required), 0);
    EXPECT_FALSE(required);
}

TEST_F(PolicyMgrEncryptionTest, DecisionLogsItsEndOnlyWhenNothingIsRequired) {
    store({encryptingAccount()});
    bool required = false;
    manager.getIsRequiredDeviceEncryption(&required);
    EXPECT_EQ(journal.logsOf("__getOdeEnforceFlag"), Lines{"I Enter"});

    platform.settings.setKeyAsDevice("db/ode/crypto_state", "encrypted");
    journal.clear();
    manager.getIsRequiredDeviceEncryption(&required);
    EXPECT_EQ(journal.logsOf("__getOdeEnforceFlag"), (Lines{"I Enter", "I Leave"}));
}

using PolicyMgrCountryTest = PolicyMgrTest;

TEST_F(PolicyMgrCountryTest, MinimumLengthFollowsTheCountry) {
    const std::vector<std::pair<std::string, int>> lengths{{"KR", 6}, {"K", 6},  {"", 6},   {"GB", 4},
                                                           {"kr", 4}, {"KO", 4}, {"KRX", 4}};
    for (const auto& [country, expected] : lengths) {
        platform.settings.setKeyAsDevice("db/rgn/country_iso", country);
        int length = 0;
        EXPECT_EQ(manager.getCountryMinPasswordLength(&length), 0);
        EXPECT_EQ(length, expected) << country;
    }
}

TEST_F(PolicyMgrCountryTest, UnreadableCountryHasTheUsualMinimum) {
    platform.settings.unset("db/rgn/country_iso");
    int length = 0;

    EXPECT_EQ(manager.getCountryMinPasswordLength(&length), 0);
    EXPECT_EQ(length, 4);
}

using PolicyMgrDecisionTest = PolicyMgrTest;

TEST_F(PolicyMgrDecisionTest, NoPasswordRuleIsSatisfiedByAnyLock) {
    store({account(1)});
    for (const int lockType : {0, 1, 2}) {
        setLockType(lockType);
        EXPECT_EQ(manager.applyPolicy(), 0);
    }
    EXPECT_EQ(reasons(), Lines{});
}

TEST_F(PolicyMgrDecisionTest, FailedReadOfTheQualityDemandsAPassword) {
    store({passwordAccount(1)});
    platform.faults.always("dpm_password_get_quality", -13);

    EXPECT_EQ(manager.applyPolicy(), -6000);
    EXPECT_EQ(reasons(), Lines{"E Failed to get password quality. [-13]"});
    EXPECT_EQ(journal.calls({"dpm_password_get"}), Lines{"dpm_password_get_quality"});
    EXPECT_EQ(journal.logsOf("__getPasswordEnforceFlag").at(0), "I Enter");
}

TEST_F(PolicyMgrDecisionTest, FailedReadOfTheLengthDemandsAPassword) {
    store({passwordAccount(1)});
    platform.faults.always("dpm_password_get_minimum_length", -13);

    EXPECT_EQ(manager.applyPolicy(), -6000);
    EXPECT_EQ(reasons(), Lines{"E Failed to get password min length. [-13]"});
}

TEST_F(PolicyMgrDecisionTest, FailedReadOfTheComplexCharactersDemandsAPassword) {
    store({passwordAccount(1)});
    platform.faults.always("dpm_password_get_min_complex_chars", -111);

    EXPECT_EQ(manager.applyPolicy(), -6000);
    EXPECT_EQ(reasons(), Lines{"E Failed to get password min complex characters. [-111]"});
}

TEST_F(PolicyMgrDecisionTest, ComparedValuesAreLoggedInOrder) {
    auto data = passwordAccount(1);
    data.alphanumericDevicePasswordRequired = 1;
    data.minDevicePasswordComplexCharacters = 2;
    data.minDevicePasswordLength = 7;
    store({data});
    setCurrent(33, 5, 1);

    manager.applyPolicy();

    const auto lines = messages();
    const auto first = std::find(lines.begin(), lines.end(), "I ##### current Type   : [32], new Type   : [128]");
    ASSERT_GE(std::distance(first, lines.end()), 5);
    EXPECT_EQ(
        Lines(first, first + 5),
        (Lines{"I ##### current Type   : [32], new Type   : [128]", "I ##### current Quality: [33], new Quality: [129]",
               "I ##### current MinLeng: [5], new MinLeng: [7]", "I ##### current Complex: [1], new Complex: [2]",
               "E enforce password by password quality"}));
}

TEST_F(PolicyMgrDecisionTest, WeakerQualityDemandsAPassword) {
    store({passwordAccount(1)});

    EXPECT_EQ(manager.applyPolicy(), -6000);
    EXPECT_EQ(reasons(), Lines{"E enforce password by password quality"});
}

TEST_F(PolicyMgrDecisionTest, ForbiddenSimplePasswordDemandsAPassword) {
    auto data = passwordAccount(1);
    data.allowSimplePassword = 0;
    store({data});
    setCurrent(33, 4);

    EXPECT_EQ(manager.applyPolicy(), -6000);
    EXPECT_EQ(reasons(), Lines{"E enforce password by simple password policy"});
}

TEST_F(PolicyMgrDecisionTest, KoreanMinimumDemandsAPassword) {
    auto data = passwordAccount(1);
    data.minDevicePasswordLength = 4;
    store({data});
    setCurrent(33, 4);
    setLockType(1);
    EXPECT_EQ(manager.applyPolicy(), 0);

    setCurrent(33, 4);
    platform.settings.setKeyAsDevice("db/rgn/country_iso", "KR");
    EXPECT_EQ(manager.applyPolicy(), -6000);
    EXPECT_EQ(reasons(), Lines{"E enforce password by password length"});
}

TEST_F(PolicyMgrDecisionTest, TooFewComplexCharactersDemandAPassword) {
    auto data = passwordAccount(1);
    data.alphanumericDevicePasswordRequired = 1;
    data.minDevicePasswordComplexCharacters = 3;
    store({data});
    setCurrent(128, 4, 2);

    EXPECT_EQ(manager.applyPolicy(), -6000);
    EXPECT_EQ(reasons(), Lines{"E enforce password by min complex charater"});
}

TEST_F(PolicyMgrDecisionTest, StrongerTypeIsAcceptedAndTheLengthStillCounts) {
    store({passwordAccount(1)});
    setLockType(2);
    setCurrent(128, 4);
    EXPECT_EQ(manager.applyPolicy(), 0);

    setCurrent(128, 3);
    EXPECT_EQ(manager.applyPolicy(), -6000);
    EXPECT_EQ(reasons(), Lines{"E enforce password by password length"});
}

TEST_F(PolicyMgrDecisionTest, MissingLockDemandsAPassword) {
    store({passwordAccount(1)});
    setCurrent(33, 4);

    EXPECT_EQ(manager.applyPolicy(), -6000);
    EXPECT_EQ(reasons(), Lines{"E enforce password. quality : 33, lock type : PIN"});
}

TEST_F(PolicyMgrDecisionTest, UnreadableLockTypeCountsAsNoLock) {
    store({passwordAccount(1)});
    setCurrent(33, 4);
    platform.settings.unset("db/setting/lock_type");

    EXPECT_EQ(manager.applyPolicy(), -6000);
    EXPECT_EQ(reasons(), Lines{"E enforce password. quality : 33, lock type : PIN"});
}

TEST_F(PolicyMgrDecisionTest, PinIsNoAlphanumericPassword) {
    auto data = passwordAccount(1);
    data.alphanumericDevicePasswordRequired = 1;
    store({data});
    setCurrent(129, 4);
    setLockType(1);

    EXPECT_EQ(manager.applyPolicy(), -6000);
    EXPECT_EQ(reasons(), Lines{"E enforce password. quality : 129, lock type : Password"});
}

TEST_F(PolicyMgrDecisionTest, SatisfiedPolicyDemandsNothing) {
    store({passwordAccount(1)});
    setCurrent(33, 4);
    setLockType(1);

    EXPECT_EQ(manager.applyPolicy(), 0);
    EXPECT_EQ(reasons(), Lines{});
}

using PolicyMgrMigrationTest = PolicyMgrTest;

TEST_F(PolicyMgrMigrationTest, OldQualityBecomesNumericWithSimplePasswords) {
    store({passwordAccount(1)});
    setCurrent(16, 5);
    setLockType(1);

    EXPECT_EQ(manager.applyPolicy(), 0);

    const auto calls = journal.calls({"dpm_"});
    EXPECT_EQ(Lines(calls.begin(), calls.begin() + 5),
              (Lines{"dpm_password_get_quality", "dpm_password_get_minimum_length", "dpm_password_set_quality 33",
                     "dpm_password_set_minimum_length 5", "dpm_password_get_min_complex_chars"}));
    EXPECT_EQ(journal.warnings(), (Lines{"W Before MDM -> DPM migration - current Type: [16], current Quality: [16]",
                                         "W After MDM -> DPM migration - current Type: [32], current Quality: [33]"}));
}

TEST_F(PolicyMgrMigrationTest, LowBitsOfTheOldQualityAreLoggedAndDropped) {
    store({account(1)});
    setCurrent(17, 4);

    manager.applyPolicy();

    EXPECT_EQ(journal.warnings().front(), "W Before MDM -> DPM migration - current Type: [16], current Quality: [17]");
}

TEST_F(PolicyMgrMigrationTest, RefusedWritesAreLoggedAndForgiven) {
    store({passwordAccount(1)});
    setCurrent(16, 5);
    setLockType(1);
    platform.faults.atCall("dpm_password_set_quality", 1, -13);
    platform.faults.atCall("dpm_password_set_minimum_length", 1, -111);

    EXPECT_EQ(manager.applyPolicy(), 0);
    EXPECT_EQ(journal.warnings(), (Lines{"W Before MDM -> DPM migration - current Type: [16], current Quality: [16]",
                                         "W setPasswordQuality failed: [-13]", "W setPasswordMinLength failed: [-111]",
                                         "W After MDM -> DPM migration - current Type: [32], current Quality: [33]"}));
}

TEST_F(PolicyMgrMigrationTest, MigratedQualityTakesPartInTheDecision) {
    auto data = passwordAccount(1);
    data.allowSimplePassword = 0;
    store({data});
    setCurrent(16, 5);
    setLockType(1);

    EXPECT_EQ(manager.applyPolicy(), -6000);
    EXPECT_EQ(reasons(), Lines{"E enforce password by simple password policy"});
}

using ApplyPolicyTest = PolicyMgrTest;

TEST_F(ApplyPolicyTest, NoAccountLeavesTheDeviceFree) {
    platform.devicePolicy.registerService();

    EXPECT_EQ(manager.applyPolicy(), 0);

    EXPECT_EQ(
        effects(),
        (Lines{"vconf_set_int db/eas/is_pwd_input_finished 0", "dpm_password_set_quality 0",
               "dpm_password_set_minimum_length 0", "dpm_password_set_maximum_failed_attempts_for_wipe 10",
               "dpm_password_set_min_complex_chars 0", "dpm_password_set_max_inactivity_time_device_lock 0",
               "dpm_password_set_expires 0", "dpm_password_set_history 0", "dpm_restriction_set_wifi_state 1",
               "dpm_restriction_set_messaging_state * 1", "dpm_restriction_set_popimap_email_state 1",
               "dpm_security_set_internal_storage_encryption 0", "vconf_set_int db/eas/device_encryption_applied 1",
               "vconf_set_int db/eas/password_policy_applied 1"}));
    EXPECT_EQ(messages().back(), "I NOT Enforce password");
    EXPECT_EQ(journal.logsOf("applyPolicy"), Lines{"I Enter"});
}

TEST_F(ApplyPolicyTest, EnforcedPolicyReachesTheDeviceInOrder) {
    const std::string popupLaunch =
        "app_control_send_launch_request com.velmor.tesk-popup OPERATION=SET_PRIVACY_LOCK "
        "ACCOUNT_NAME=alice@contoso.example password_min_length=8 password_max_length=16 allow_simple=0 "
        "password_required=1";
    auto data = passwordAccount(7);
    data.accountName = "alice@contoso.example";
    data.allowSimplePassword = 0;
    data.alphanumericDevicePasswordRequired = 1;
    data.minDevicePasswordComplexCharacters = 3;
    data.minDevicePasswordLength = 8;
    data.maxDevicePasswordFailedAttempts = 5;
    data.maxInactivityTimeDeviceLock = 60;
    data.devicePasswordExpiration = 30;
    data.devicePasswordHistory = 2;
    data.allowWifi = 0;
    data.allowTextMessaging = 0;
    data.allowPopimapEmail = 0;
    data.requireDeviceEncryption = 1;
    store({data});

    EXPECT_EQ(manager.applyPolicy(), -6000);

    EXPECT_EQ(
        effects(),
        (Lines{"dpm_password_set_quality 128", "dpm_password_set_minimum_length 8",
               "dpm_password_set_maximum_failed_attempts_for_wipe 5", "dpm_password_set_min_complex_chars 3",
               "dpm_password_set_max_inactivity_time_device_lock 60", "dpm_password_set_expires 30",
               "dpm_password_set_history 2", "dpm_restriction_set_wifi_state 0",
               "dpm_restriction_set_messaging_state * 0", "dpm_restriction_set_popimap_email_state 0",
               "dpm_security_set_internal_storage_encryption 1", "vconf_set_int db/eas/device_encryption_applied 0",
               "app_control_send_launch_request com.velmor.dialset.service __OPERATION__=__ENABLE_ENCRYPTION_MENU__",
               "vconf_set_int db/eas/password_policy_applied 0",
               "preference_set_int pref/tesk-agent/pwd_enforce_account_id 7", popupLaunch}));
    EXPECT_EQ(journal.logsOf("applyPolicy").front(), "I Enter");
}

TEST_F(ApplyPolicyTest, DecisionsAreMadeBeforeAnythingIsWritten) {
    auto data = passwordAccount(1);
    data.requireDeviceEncryption = 1;
    store({data});
    manager.applyPolicy();

    const auto calls = journal.calls({"dpm_", "vconf_set", "vconf_get_str db/ode"});
    EXPECT_EQ(
        Lines(calls.begin(), calls.begin() + 5),
        (Lines{"dpm_password_get_quality", "dpm_password_get_minimum_length", "dpm_password_get_min_complex_chars",
               "vconf_get_str db/ode/crypto_state", "dpm_password_set_quality 33"}));
}

TEST_F(ApplyPolicyTest, QualityFollowsTypeAndSimplicity) {
    struct Case {
        int alphanumeric;
        int simple;
        std::string quality;
    };
    for (const auto& row : {Case{0, 0, "32"}, Case{0, 1, "33"}, Case{1, 0, "128"}, Case{1, 1, "129"}}) {
        auto data = passwordAccount(1);
        data.alphanumericDevicePasswordRequired = row.alphanumeric;
        data.allowSimplePassword = row.simple;
        TeskConsumerDbMgr::getInstance()->deletePolicyByAccountId(1);
        store({data});
        manager.applyPolicy();
        EXPECT_EQ(journal.calls({"dpm_password_set_quality"}), Lines{"dpm_password_set_quality " + row.quality});
        EXPECT_EQ(journal.calls({"vconf_set_int db/eas/is_pwd"}), Lines{});
    }
}

TEST_F(ApplyPolicyTest, MinimumLengthIsAtLeastTheCountrys) {
    auto data = passwordAccount(1);
    data.minDevicePasswordLength = 5;
    store({data});

    manager.applyPolicy();
    platform.settings.setKeyAsDevice("db/rgn/country_iso", "KR");
    manager.applyPolicy();

    EXPECT_EQ(journal.calls({"dpm_password_set_minimum_length"}),
              (Lines{"dpm_password_set_minimum_length 5", "dpm_password_set_minimum_length 6"}));
}

TEST_F(ApplyPolicyTest, PolicyWithoutPasswordStillLimitsAttemptsAndInactivity) {
    auto data = account(1);
    data.minDevicePasswordLength = 8;
    data.maxDevicePasswordFailedAttempts = 8;
    data.maxInactivityTimeDeviceLock = 900;
    store({data});

    manager.applyPolicy();

    const auto settings = journal.deviceSettings();
    EXPECT_EQ(settings[1], "dpm_password_set_minimum_length 0");
    EXPECT_EQ(settings[2], "dpm_password_set_maximum_failed_attempts_for_wipe 8");
    EXPECT_EQ(settings[4], "dpm_password_set_max_inactivity_time_device_lock 900");
}

TEST_F(ApplyPolicyTest, ComplexCharactersNeedTheAlphanumericRuleOnly) {
    auto data = account(1);
    data.minDevicePasswordComplexCharacters = 3;
    store({data});
    manager.applyPolicy();
    EXPECT_EQ(journal.deviceSettings()[3], "dpm_password_set_min_complex_chars 0");

    data.alphanumericDevicePasswordRequired = 1;
    TeskConsumerDbMgr::getInstance()->updatePolicy(data);
    journal.clear();
    manager.applyPolicy();
    EXPECT_EQ(journal.deviceSettings()[3], "dpm_password_set_min_complex_chars 3");
}

TEST_F(ApplyPolicyTest, EncryptedDeviceGetsNoEncryptionCall) {
    store({encryptingAccount()});
    platform.settings.setKeyAsDevice("db/ode/crypto_state", "encrypted");

    EXPECT_EQ(manager.applyPolicy(), 0);
    EXPECT_EQ(journal.calls({"dpm_security"}), Lines{});
    EXPECT_EQ(platform.settings.integer("db/eas/device_encryption_applied"), 1);
    EXPECT_TRUE(platform.launches.sent.empty());
}

TEST_F(ApplyPolicyTest, UnreadableEncryptionStateGetsNoEncryptionCall) {
    store({encryptingAccount()});
    platform.settings.unset("db/ode/crypto_state");

    manager.applyPolicy();

    EXPECT_EQ(journal.calls({"dpm_security"}), Lines{});
    EXPECT_EQ(platform.settings.integer("db/eas/device_encryption_applied"), 1);
}

TEST_F(ApplyPolicyTest, EncryptionThatIsNotRequiredIsSwitchedOffEvenOnAnEncryptedDevice) {
    store({account(1)});
    platform.settings.setKeyAsDevice("db/ode/crypto_state", "encrypted");

    manager.applyPolicy();

    EXPECT_EQ(journal.calls({"dpm_security"}), Lines{"dpm_security_set_internal_storage_encryption 0"});
}

TEST_F(ApplyPolicyTest, EachRefusedWriteIsLoggedAndStopsNothing) {
    struct Case {
        std::string function;
        std::string warning;
    };
    auto data = passwordAccount(1);
    data.requireDeviceEncryption = 1;
    store({data});
    for (const auto& row :
         {Case{"dpm_password_set_quality", "setPasswordQuality(33)"},
          Case{"dpm_password_set_minimum_length", "setPasswordMinLength(4)"},
          Case{"dpm_password_set_maximum_failed_attempts_for_wipe", "setPasswordMaxFailedAttempts(10)"},
          Case{"dpm_password_set_min_complex_chars", "setPasswordMinComplexCharacters(0)"},
          Case{"dpm_password_set_max_inactivity_time_device_lock", "setPasswordMaxInactivityTimeDeviceLock(0)"},
          Case{"dpm_password_set_expires", "setPasswordExpires(0)"},
          Case{"dpm_password_set_history", "setPasswordHistory(0)"},
          Case{"dpm_restriction_set_wifi_state", "setRestrictionWifi(1)"},
          Case{"dpm_restriction_set_messaging_state", "setRestrictionMessaging(1)"},
          Case{"dpm_restriction_set_popimap_email_state", "setRestrictionPopImap(1)"},
          Case{"dpm_security_set_internal_storage_encryption", "setSecurityInternalStorageEncryption(1)"}}) {
        SCOPED_TRACE(row.function);
        platform.faults.always(row.function, -13);
        journal.clear();
        manager.applyPolicy();
        const auto warnings = journal.warnings();
        EXPECT_EQ(std::count(warnings.begin(), warnings.end(), "W [EAS] Failed " + row.warning + ". [-13]"), 1);
        EXPECT_EQ(journal.deviceSettings().size(), 11U);
        platform.faults.never(row.function);
    }
}

TEST_F(ApplyPolicyTest, RefusedSwitchingOffOfTheEncryptionIsLogged) {
    store({account(1)});
    platform.faults.always("dpm_security_set_internal_storage_encryption", -13);

    manager.applyPolicy();

    EXPECT_EQ(journal.warnings(), Lines{"W [EAS] Failed setSecurityInternalStorageEncryption(0). [-13]"});
}

TEST_F(ApplyPolicyTest, UnregisteredServiceHasEveryWriteRefused) {
    EXPECT_EQ(manager.applyPolicy(), 0);

    const auto warnings = journal.warnings();
    EXPECT_EQ(std::count_if(warnings.begin(), warnings.end(),
                            [](const std::string& line) { return line.rfind("W [EAS] Failed set", 0) == 0; }),
              11);
    EXPECT_EQ(platform.settings.integer("db/eas/password_policy_applied"), 1);
}

TEST_F(ApplyPolicyTest, EnforcingAccountIsTheOneWithTheStrictestPassword) {
    auto strict = passwordAccount(1);
    strict.minDevicePasswordLength = 9;
    store({strict, passwordAccount(2), account(3)});

    EXPECT_EQ(manager.applyPolicy(), -6000);

    EXPECT_EQ(std::get<int>(platform.preferences.at("pref/tesk-agent/pwd_enforce_account_id")), 1);
    const auto lines = messages();
    EXPECT_NE(std::find(lines.begin(), lines.end(), "I Password enforcing account id : 1"), lines.end());
    EXPECT_NE(std::find(lines.begin(), lines.end(), "I Enforce password"), lines.end());
}

TEST_F(ApplyPolicyTest, VerdictIsLoggedBeforeItIsPublished) {
    const auto indexOf = [this](const std::string& line) {
        const auto lines = journal.all();
        return std::distance(lines.begin(), std::find(lines.begin(), lines.end(), line));
    };
    manager.applyPolicy();
    EXPECT_LT(indexOf("I NOT Enforce password"), indexOf("vconf_set_int db/eas/password_policy_applied 1"));

    store({passwordAccount(1)});
    manager.applyPolicy();
    EXPECT_LT(indexOf("I Enforce password"), indexOf("vconf_set_int db/eas/password_policy_applied 0"));
    EXPECT_LT(indexOf("vconf_set_int db/eas/password_policy_applied 0"),
              indexOf("I Password enforcing account id : 1"));
}

TEST_F(ApplyPolicyTest, DemandWithoutAPasswordAccountEnforcesAccountZero) {
    platform.faults.always("dpm_password_get_quality", -13);

    EXPECT_EQ(manager.applyPolicy(), -6000);
    const auto lines = messages();
    EXPECT_NE(std::find(lines.begin(), lines.end(), "I Password enforcing account id : 0"), lines.end());
    EXPECT_EQ(std::get<int>(platform.preferences.at("pref/tesk-agent/pwd_enforce_account_id")), 0);
    EXPECT_EQ(platform.settings.integer("db/eas/password_policy_applied"), 0);
}

TEST_F(ApplyPolicyTest, PopupThatCannotBeLaunchedChangesNoResult) {
    store({passwordAccount(1)});
    platform.faults.always("app_control_create", -12);

    EXPECT_EQ(manager.applyPolicy(), -6000);
    EXPECT_EQ(platform.settings.integer("db/eas/password_policy_applied"), 0);
}

} // namespace
