#include <sqlite3.h>

#include <algorithm>

#include "TeskConsumerDbMgr.h"
#include "TeskConsumerPolicyMgr.h"
#include "platform_values.h"
#include "unit_test.h"

namespace {

constexpr char cryptoStateKey[] = "db/ode/crypto_state";
constexpr char countryKey[] = "db/rgn/country_iso";
constexpr char lockTypeKey[] = "db/setting/lock_type";

class PolicyMgrTest : public UnitTest {
protected:
    PolicyMgrTest() {
        TeskConsumerDbMgr::getInstance();
        journal.clear();
    }

    /// What the device enforces now.
    void setCurrent(const TeskPasswordRules& rules) {
        platform.devicePolicy.settings = {{"quality", rules.quality},
                                          {"minimum_length", rules.minLength},
                                          {"min_complex_chars", rules.complexCharacters}};
    }

    /// The ERROR lines, which tell why a password is demanded.
    Lines reasons() const { return journal.logs(DLOG_ERROR); }

    /// What reaches the device and other applications.
    Lines effects() const {
        return journal.calls({"dpm_password_set", "dpm_restriction_set", "dpm_security_set", "vconf_set",
                              "preference_set", "app_control_send"});
    }

    int enforcingAccount() const {
        return std::get<int>(platform.preferences.at("pref/tesk-agent/pwd_enforce_account_id"));
    }

    TeskConsumerPolicyMgr& manager = *TeskConsumerPolicyMgr::getInstance();
};

TeskPolicyData encryptingAccount() {
    auto data = account(1);
    data.requireDeviceEncryption = 1;
    return data;
}

TeskPolicyData accountWithoutSimplePasswords() {
    auto data = passwordAccount(1);
    data.allowSimplePassword = 0;
    return data;
}

TeskPolicyData alphanumericAccount(int complexCharacters) {
    auto data = passwordAccount(1);
    data.alphanumericDevicePasswordRequired = 1;
    data.minDevicePasswordComplexCharacters = complexCharacters;
    return data;
}

/// One of the two operations that make the service an administrator of the device, and no longer one.
struct ClientOperation {
    const char* name;
    int (TeskConsumerPolicyMgr::*run)();
    const char* function;
};

class PolicyMgrClientTest : public PolicyMgrTest, public ::testing::WithParamInterface<ClientOperation> {
protected:
    int run() { return (manager.*GetParam().run)(); }

    static Lines call() { return {GetParam().function + std::string(" com.velmor.tesk-agent 5001")}; }
};

TEST_P(PolicyMgrClientTest, RunsWhileNoAccountIsStored) {
    if (GetParam().function == std::string("dpm_admin_deregister_client")) {
        platform.devicePolicy.registerService();
    }

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(journal.calls({"dpm_"}), call());
    EXPECT_EQ(messages(), Lines{"I easAccountCount : 0"});
}

TEST_P(PolicyMgrClientTest, DoesNotRunWhileAccountsAreStored) {
    store({account(1), account(2)});

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(journal.calls({"dpm_"}), Lines{});
    EXPECT_EQ(messages(), Lines{"I easAccountCount : 2"});
}

TEST_P(PolicyMgrClientTest, FailedCountCountsAsNone) {
    store({account(1)});
    platform.faults.always("sqlite3_prepare_v2", SQLITE_ERROR);

    EXPECT_EQ(run(), 0);
    EXPECT_EQ(journal.calls({"dpm_"}), call());
}

TEST_P(PolicyMgrClientTest, RefusalIsLoggedAndForgiven) {
    platform.faults.always(GetParam().function, DPM_ERROR_PERMISSION_DENIED);

    EXPECT_EQ(run(), 0);
    EXPECT_EQ(journal.warnings(), Lines{"W Failed to register policy admin : -13"}) << "of a deregistration, too";
}

INSTANTIATE_TEST_SUITE_P(, PolicyMgrClientTest,
                         ::testing::Values(ClientOperation{"registerClient", &TeskConsumerPolicyMgr::registerClient,
                                                           "dpm_admin_register_client"},
                                           ClientOperation{"deregisterClient", &TeskConsumerPolicyMgr::deregisterClient,
                                                           "dpm_admin_deregister_client"}),
                         [](const auto& row) { return std::string(row.param.name); });

using PolicyMgrLifeTest = UnitTest;

TEST_F(PolicyMgrLifeTest, MissingDeviceManagerStopsNeitherTheKeysNorThePopup) {
    platform.faults.always("dpm_manager_create");
    TeskConsumerPolicyMgr manager;
    store({passwordAccount(1)});

    EXPECT_EQ(manager.applyPolicy(), TESK_POLICY_PASSWORD_REQUIRED);
    EXPECT_EQ(platform.settings.integer("db/eas/password_policy_applied"), 0);
    EXPECT_EQ(platform.launches.sent.size(), 1U);
}

TEST_F(PolicyMgrLifeTest, HandleLivesAsLongAsTheManager) {
    { const TeskConsumerPolicyMgr manager; }

    EXPECT_EQ(journal.calls(), (Lines{"dpm_manager_create", "dpm_manager_destroy"}));
    EXPECT_EQ(journal.logs(), (Lines{"I ", "I "}));
    EXPECT_EQ(journal.logsOf("TeskConsumerPolicyMgr").size(), 1U);
    EXPECT_EQ(journal.logsOf("~TeskConsumerPolicyMgr").size(), 1U);
}

TEST_F(PolicyMgrLifeTest, MissingHandleMakesEveryDecisionDemandAPassword) {
    platform.faults.always("dpm_manager_create");
    TeskConsumerPolicyMgr manager;

    EXPECT_EQ(manager.applyPolicy(), TESK_POLICY_PASSWORD_REQUIRED);
    EXPECT_EQ(journal.logs(DLOG_ERROR).at(0), "E Failed to get password quality. [-22]");
}

TEST_F(PolicyMgrTest, FactoryResetWipesTheInternalStorageOnce) {
    EXPECT_EQ(manager.factoryReset(), 0);
    EXPECT_EQ(journal.calls(), Lines{"dpm_security_wipe_data 1"});
    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "I Leave"}));
}

TEST_F(PolicyMgrTest, RefusedWipeIsLoggedAndForgiven) {
    platform.faults.always("dpm_security_wipe_data", DPM_ERROR_NOT_PERMITTED);
    EXPECT_EQ(manager.factoryReset(), 0);
    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "W Failed to wipe internal storage. : [-1]", "I Leave"}));
}

TEST_F(PolicyMgrTest, StoredAccountsAreMerged) {
    auto first = passwordAccount(1);
    first.devicePasswordHistory = 5;
    auto second = account(2);
    second.devicePasswordHistory = 3;
    store({first, second});

    const auto strong = manager.getStrongPolicy();

    EXPECT_EQ(strong->devicePasswordEnabled, 1);
    EXPECT_EQ(strong->devicePasswordHistory, 3);
    EXPECT_EQ(journal.logs(DLOG_INFO).back(), "I <<<<<<<<<< Strong policy >>>>>>>>>>");
}

TEST_F(PolicyMgrTest, UnreadableDatabaseGivesTheStartValues) {
    store({passwordAccount(1)});
    platform.faults.always("sqlite3_prepare_v2", SQLITE_ERROR);

    EXPECT_EQ(fieldsOf(*manager.getStrongPolicy()), fieldsOf(TeskPolicyData()));
}

TEST_F(PolicyMgrTest, EncryptionIsRequiredOfAnUnencryptedDeviceOnly) {
    bool required = true;
    EXPECT_EQ(manager.getIsRequiredDeviceEncryption(&required), 0);
    EXPECT_FALSE(required) << "no account asks for it";

    store({encryptingAccount()});
    EXPECT_EQ(manager.getIsRequiredDeviceEncryption(&required), 0);
    EXPECT_TRUE(required);
    EXPECT_FALSE(manager.isDeviceEncrypted());
    EXPECT_EQ(journal.logsOf("__getOdeEnforceFlag"), Lines{"I Enter"});

    platform.settings.setKeyAsDevice(cryptoStateKey, "encrypted");
    journal.clear();
    EXPECT_EQ(manager.getIsRequiredDeviceEncryption(&required), 0);
    EXPECT_FALSE(required);
    EXPECT_TRUE(manager.isDeviceEncrypted());
    EXPECT_EQ(journal.logsOf("__getOdeEnforceFlag"), (Lines{"I Enter", "I Leave"}));
}

TEST_F(PolicyMgrTest, MinimumLengthFollowsTheCountry) {
    int length = 0;
    platform.settings.setKeyAsDevice(countryKey, "KR");
    EXPECT_EQ(manager.getCountryMinPasswordLength(&length), 0);
    EXPECT_EQ(length, 6);

    platform.settings.unset(countryKey);
    EXPECT_EQ(manager.getCountryMinPasswordLength(&length), 0);
    EXPECT_EQ(length, 4) << "of a country that cannot be read";
}

/// A policy, the device that it meets, and why a password is demanded then; null where none is.
struct Decision {
    const char* name;
    TeskPolicyData policy;
    TeskPasswordRules current;
    int lock;
    const char* country;
    const char* reason;
};

TeskPasswordRules currentRules(int quality, int minLength, int complexCharacters = 0) {
    TeskPasswordRules made;
    made.quality = quality;
    made.minLength = minLength;
    made.complexCharacters = complexCharacters;
    return made;
}

const std::vector<Decision>& decisions() {
    static const auto simplePin = currentRules(quality::numericOrSimple, 4);
    static const std::vector<Decision> all{
        {"NoPasswordRule", account(1), {}, lock::none, "GB", nullptr},
        {"SatisfiedRule", passwordAccount(1), simplePin, lock::pin, "GB", nullptr},
        {"WeakerQuality", passwordAccount(1), {}, lock::pin, "GB", "E enforce password by password quality"},
        {"ForbiddenSimplePassword", accountWithoutSimplePasswords(), simplePin, lock::pin, "GB",
         "E enforce password by simple password policy"},
        {"MigratedQuality", accountWithoutSimplePasswords(), currentRules(quality::oldStyle, 5), lock::pin, "GB",
         "E enforce password by simple password policy"},
        {"KoreanMinimum", passwordAccount(1), simplePin, lock::pin, "KR", "E enforce password by password length"},
        {"TooFewComplexCharacters", alphanumericAccount(3), currentRules(quality::alphanumeric, 4, 2), lock::password,
         "GB", "E enforce password by min complex charater"},
        {"MissingLock", passwordAccount(1), simplePin, lock::none, "GB",
         "E enforce password. quality : 33, lock type : PIN"},
        {"PinInsteadOfPassword", alphanumericAccount(0), currentRules(quality::alphanumericOrSimple, 4), lock::pin,
         "GB", "E enforce password. quality : 129, lock type : Password"},
    };
    return all;
}

class PolicyMgrDecisionTest : public PolicyMgrTest, public ::testing::WithParamInterface<Decision> {};

TEST_P(PolicyMgrDecisionTest, DemandsAPasswordForItsReasonAlone) {
    store({GetParam().policy});
    setCurrent(GetParam().current);
    platform.settings.setKeyAsDevice(lockTypeKey, GetParam().lock);
    platform.settings.setKeyAsDevice(countryKey, GetParam().country);
    const bool demands = GetParam().reason != nullptr;

    EXPECT_EQ(manager.applyPolicy(), demands ? TESK_POLICY_PASSWORD_REQUIRED : 0);

    EXPECT_EQ(reasons(), demands ? Lines{GetParam().reason} : Lines{});
}

INSTANTIATE_TEST_SUITE_P(, PolicyMgrDecisionTest, ::testing::ValuesIn(decisions()),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(PolicyMgrTest, UnreadableLockTypeCountsAsNoLock) {
    store({passwordAccount(1)});
    setCurrent(currentRules(quality::numericOrSimple, 4));
    platform.settings.unset(lockTypeKey);

    EXPECT_EQ(manager.applyPolicy(), TESK_POLICY_PASSWORD_REQUIRED);
    EXPECT_EQ(reasons(), Lines{"E enforce password. quality : 33, lock type : PIN"});
}

TEST_F(PolicyMgrTest, FailedReadOfACurrentRuleDemandsAPassword) {
    store({passwordAccount(1)});
    for (const auto& [function, rule] :
         {std::pair("dpm_password_get_quality", "quality"), std::pair("dpm_password_get_minimum_length", "min length"),
          std::pair("dpm_password_get_min_complex_chars", "min complex characters")}) {
        platform.faults.none();
        platform.faults.always(function, DPM_ERROR_PERMISSION_DENIED);
        journal.clear();

        EXPECT_EQ(manager.applyPolicy(), TESK_POLICY_PASSWORD_REQUIRED);

        EXPECT_EQ(reasons(), Lines{"E Failed to get password " + std::string(rule) + ". [-13]"});
        EXPECT_EQ(journal.calls({"dpm_password_get"}).back(), function) << "nothing is read after it";
    }
}

TEST_F(PolicyMgrTest, RulesThatMayNotBeReadCountAsNone) {
    constexpr int notPermitted = -1001; // what getters answer, with success, to a caller without the privilege
    setCurrent(currentRules(notPermitted, notPermitted, notPermitted));
    store({passwordAccount(1)});

    EXPECT_EQ(manager.applyPolicy(), TESK_POLICY_PASSWORD_REQUIRED);
    EXPECT_EQ(journal.deviceSettings().size(), 11U);
}

TEST_F(PolicyMgrTest, ComparedValuesAreLoggedInOrder) {
    auto data = alphanumericAccount(2);
    data.minDevicePasswordLength = 7;
    store({data});
    setCurrent(currentRules(quality::numericOrSimple, 5, 1));

    manager.applyPolicy();

    const auto lines = journal.logsOf("__getPasswordEnforceFlag");
    ASSERT_EQ(lines.size(), 6U);
    EXPECT_EQ(
        Lines(lines.begin() + 1, lines.end() - 1),
        (Lines{"I ##### current Type   : [32], new Type   : [128]", "I ##### current Quality: [33], new Quality: [129]",
               "I ##### current MinLeng: [5], new MinLeng: [7]", "I ##### current Complex: [1], new Complex: [2]"}));
}

constexpr char beforeMigration[] = "W Before MDM -> DPM migration - current Type: [16], current Quality: [16]";
constexpr char afterMigration[] = "W After MDM -> DPM migration - current Type: [32], current Quality: [33]";

TEST_F(PolicyMgrTest, OldQualityBecomesNumericWithSimplePasswords) {
    store({passwordAccount(1)});
    setCurrent(currentRules(quality::oldStyle, 5));
    platform.settings.setKeyAsDevice(lockTypeKey, lock::pin);

    EXPECT_EQ(manager.applyPolicy(), 0);

    const auto calls = journal.calls({"dpm_"});
    EXPECT_EQ(Lines(calls.begin(), calls.begin() + 5),
              (Lines{"dpm_password_get_quality", "dpm_password_get_minimum_length", "dpm_password_set_quality 33",
                     "dpm_password_set_minimum_length 5", "dpm_password_get_min_complex_chars"}));
    EXPECT_EQ(journal.warnings(), (Lines{beforeMigration, afterMigration}));
}

TEST_F(PolicyMgrTest, RefusedWritesOfAMigrationAreLoggedAndForgiven) {
    store({passwordAccount(1)});
    setCurrent(currentRules(quality::oldStyle, 5));
    platform.settings.setKeyAsDevice(lockTypeKey, lock::pin);
    platform.faults.atCall("dpm_password_set_quality", 1, DPM_ERROR_PERMISSION_DENIED);
    platform.faults.atCall("dpm_password_set_minimum_length", 1, DPM_ERROR_CONNECTION_REFUSED);

    EXPECT_EQ(manager.applyPolicy(), 0);
    EXPECT_EQ(journal.warnings(), (Lines{beforeMigration, "W setPasswordQuality failed: [-13]",
                                         "W setPasswordMinLength failed: [-111]", afterMigration}));
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
}

TEST_F(ApplyPolicyTest, EnforcedPolicyReachesTheDeviceInOrder) {
    const std::string popupLaunch =
        "app_control_send_launch_request com.velmor.tesk-popup OPERATION=SET_PRIVACY_LOCK "
        "ACCOUNT_NAME=alice@contoso.example password_min_length=8 password_max_length=16 allow_simple=0 "
        "password_required=1";
    auto data = alphanumericAccount(3);
    data.accountId = 7;
    data.accountName = "alice@contoso.example";
    data.allowSimplePassword = 0;
    data.minDevicePasswordLength = 8;
    data.maxDevicePasswordFailedAttempts = 5;
    data.maxInactivityTimeDeviceLock = 60;
    data.devicePasswordExpiration = 30;
    data.devicePasswordHistory = 2;
    data.requireDeviceEncryption = 1;
    // no flags, so that none can stand for another
    data.allowWifi = 4;
    data.allowTextMessaging = 5;
    data.allowPopimapEmail = 6;
    store({data});

    EXPECT_EQ(manager.applyPolicy(), TESK_POLICY_PASSWORD_REQUIRED);

    EXPECT_EQ(
        effects(),
        (Lines{"dpm_password_set_quality 128", "dpm_password_set_minimum_length 8",
               "dpm_password_set_maximum_failed_attempts_for_wipe 5", "dpm_password_set_min_complex_chars 3",
               "dpm_password_set_max_inactivity_time_device_lock 60", "dpm_password_set_expires 30",
               "dpm_password_set_history 2", "dpm_restriction_set_wifi_state 4",
               "dpm_restriction_set_messaging_state * 5", "dpm_restriction_set_popimap_email_state 6",
               "dpm_security_set_internal_storage_encryption 1", "vconf_set_int db/eas/device_encryption_applied 0",
               "app_control_send_launch_request com.velmor.dialset.service __OPERATION__=__ENABLE_ENCRYPTION_MENU__",
               "vconf_set_int db/eas/password_policy_applied 0",
               "preference_set_int pref/tesk-agent/pwd_enforce_account_id 7", popupLaunch}));
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

TEST_F(ApplyPolicyTest, MinimumLengthIsAtLeastTheCountrys) {
    store({passwordAccount(1)});
    platform.settings.setKeyAsDevice(countryKey, "KR");

    manager.applyPolicy();

    EXPECT_EQ(journal.calls({"dpm_password_set_minimum_length"}), Lines{"dpm_password_set_minimum_length 6"});
}

TEST_F(ApplyPolicyTest, DeviceThatIsEncryptedIsNotAskedAgain) {
    store({encryptingAccount()});
    platform.settings.setKeyAsDevice(cryptoStateKey, "encrypted");

    EXPECT_EQ(manager.applyPolicy(), 0);
    EXPECT_EQ(journal.calls({"dpm_security"}), Lines{});
    EXPECT_EQ(platform.settings.integer("db/eas/device_encryption_applied"), 1);
    EXPECT_TRUE(platform.launches.sent.empty());
}

TEST_F(ApplyPolicyTest, EncryptionThatIsNotRequiredIsSwitchedOffEvenOnAnEncryptedDevice) {
    store({account(1)});
    platform.settings.setKeyAsDevice(cryptoStateKey, "encrypted");

    manager.applyPolicy();

    EXPECT_EQ(journal.calls({"dpm_security"}), Lines{"dpm_security_set_internal_storage_encryption 0"});
}

TEST_F(ApplyPolicyTest, EachRefusedWriteIsLoggedAndStopsNothing) {
    auto data = passwordAccount(1);
    data.requireDeviceEncryption = 1;
    store({data});
    const std::vector<std::pair<std::string, std::string>> writes{
        {"dpm_password_set_quality", "setPasswordQuality(33)"},
        {"dpm_password_set_minimum_length", "setPasswordMinLength(4)"},
        {"dpm_password_set_maximum_failed_attempts_for_wipe", "setPasswordMaxFailedAttempts(10)"},
        {"dpm_password_set_min_complex_chars", "setPasswordMinComplexCharacters(0)"},
        {"dpm_password_set_max_inactivity_time_device_lock", "setPasswordMaxInactivityTimeDeviceLock(0)"},
        {"dpm_password_set_expires", "setPasswordExpires(0)"},
        {"dpm_password_set_history", "setPasswordHistory(0)"},
        {"dpm_restriction_set_wifi_state", "setRestrictionWifi(1)"},
        {"dpm_restriction_set_messaging_state", "setRestrictionMessaging(1)"},
        {"dpm_restriction_set_popimap_email_state", "setRestrictionPopImap(1)"},
        {"dpm_security_set_internal_storage_encryption", "setSecurityInternalStorageEncryption(1)"}};
    for (const auto& [function, operation] : writes) {
        SCOPED_TRACE(function);
        platform.faults.none();
        platform.faults.always(function, DPM_ERROR_PERMISSION_DENIED);
        journal.clear();
        manager.applyPolicy();
        EXPECT_EQ(journal.logsOf("applyPolicy").at(1), "W [EAS] Failed " + operation + ". [-13]");
        EXPECT_EQ(journal.deviceSettings().size(), writes.size());
    }
}

TEST_F(ApplyPolicyTest, EnforcingAccountIsTheOneWithTheStrictestPassword) {
    auto strict = passwordAccount(1);
    strict.minDevicePasswordLength = 9;
    store({strict, passwordAccount(2), account(3)});

    EXPECT_EQ(manager.applyPolicy(), TESK_POLICY_PASSWORD_REQUIRED);

    EXPECT_EQ(enforcingAccount(), 1);
}

TEST_F(ApplyPolicyTest, VerdictIsLoggedBeforeItIsPublished) {
    const auto expectInOrder = [this](const Lines& expected) {
        auto lines = journal.all();
        const auto isOther = [&](const auto& line) {
            return std::find(expected.begin(), expected.end(), line) == expected.end();
        };
        lines.erase(std::remove_if(lines.begin(), lines.end(), isOther), lines.end());
        EXPECT_EQ(lines, expected);
    };
    manager.applyPolicy();
    expectInOrder({"I NOT Enforce password", "vconf_set_int db/eas/password_policy_applied 1"});

    store({passwordAccount(1)});
    manager.applyPolicy();
    expectInOrder({"I Enforce password", "vconf_set_int db/eas/password_policy_applied 0",
                   "I Password enforcing account id : 1"});
}

TEST_F(ApplyPolicyTest, DemandWithoutAPasswordAccountEnforcesAccountZero) {
    platform.faults.always("dpm_password_get_quality", DPM_ERROR_PERMISSION_DENIED);

    EXPECT_EQ(manager.applyPolicy(), TESK_POLICY_PASSWORD_REQUIRED);
    EXPECT_EQ(enforcingAccount(), 0);
    EXPECT_EQ(platform.settings.integer("db/eas/password_policy_applied"), 0);
}

TEST_F(ApplyPolicyTest, PopupThatCannotBeLaunchedChangesNoResult) {
    store({passwordAccount(1)});
    platform.faults.always("app_control_create", DPM_ERROR_OUT_OF_MEMORY);

    EXPECT_EQ(manager.applyPolicy(), TESK_POLICY_PASSWORD_REQUIRED);
    EXPECT_EQ(platform.settings.integer("db/eas/password_policy_applied"), 0);
}

} // namespace
