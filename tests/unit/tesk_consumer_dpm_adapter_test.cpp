#include <functional>

#include "TeskConsumerDpmAdapter.h"
#include "unit_test.h"

namespace {

class DpmAdapterTest : public UnitTest {
protected:
    DpmAdapterTest() { platform.devicePolicy.registerService(); }

    /// The calls of the device policy manager that an operation makes.
    Lines callsOf(const std::function<void()>& operation) {
        journal.clear();
        operation();
        return journal.calls({"dpm_"});
    }

    TeskConsumerDpmAdapter adapter;
};

TEST_F(DpmAdapterTest, HandleLivesAsLongAsTheAdapter) {
    EXPECT_EQ(platform.devicePolicy.handles.size(), 1U);
    { const TeskConsumerDpmAdapter second; }
    EXPECT_EQ(platform.devicePolicy.handles.size(), 1U);
}

TEST_F(DpmAdapterTest, ClientIsTheServiceOfTheOwner) {
    EXPECT_EQ(callsOf([&] { adapter.registerClient(); }),
              Lines{"dpm_admin_register_client com.velmor.tesk-agent 5001"});
    EXPECT_EQ(callsOf([&] { adapter.deregisterClient(); }),
              Lines{"dpm_admin_deregister_client com.velmor.tesk-agent 5001"});
}

TEST_F(DpmAdapterTest, OwnerIsLookedUpAtEachCall) {
    platform.system.users["owner"] = 77;
    EXPECT_EQ(callsOf([&] { adapter.registerClient(); }), Lines{"dpm_admin_register_client com.velmor.tesk-agent 77"});

    platform.system.users.clear();
    EXPECT_EQ(callsOf([&] { adapter.deregisterClient(); }),
              Lines{"dpm_admin_deregister_client com.velmor.tesk-agent 4294967295"});
}

TEST_F(DpmAdapterTest, SettersPassTheirValueOn) {
    EXPECT_EQ(
        callsOf([&] {
            adapter.setPasswordQuality(33);
            adapter.setPasswordMinLength(6);
            adapter.setPasswordMaxFailedAttempts(10);
            adapter.setPasswordMinComplexCharacters(3);
            adapter.setPasswordMaxInactivityTimeDeviceLock(900);
            adapter.setPasswordExpires(365);
            adapter.setPasswordHistory(4);
            adapter.setRestrictionWifi(0);
            adapter.setRestrictionMessaging("sim1", 2);
            adapter.setRestrictionPopImap(-1);
            adapter.setSecurityInternalStorageEncryption(true);
            adapter.setSecurityExternalStorageEncryption(false);
        }),
        (Lines{"dpm_password_set_quality 33", "dpm_password_set_minimum_length 6",
               "dpm_password_set_maximum_failed_attempts_for_wipe 10", "dpm_password_set_min_complex_chars 3",
               "dpm_password_set_max_inactivity_time_device_lock 900", "dpm_password_set_expires 365",
               "dpm_password_set_history 4", "dpm_restriction_set_wifi_state 0",
               "dpm_restriction_set_messaging_state sim1 2", "dpm_restriction_set_popimap_email_state -1",
               "dpm_security_set_internal_storage_encryption 1", "dpm_security_set_external_storage_encryption 0"}));
}

TEST_F(DpmAdapterTest, GettersReadTheSettingOfTheirName) {
    auto& settings = platform.devicePolicy.settings;
    settings = {{"quality", 1},
                {"minimum_length", 2},
                {"maximum_failed_attempts_for_wipe", 3},
                {"min_complex_chars", 4},
                {"max_inactivity_time_device_lock", 5},
                {"expires", 6},
                {"history", 7},
                {"wifi_state", 8},
                {"messaging_state", 9},
                {"popimap_email_state", 10},
                {"internal_storage_encrypted", 11},
                {"external_storage_encrypted", 12}};
    using Getter = std::function<int(int*)>;
    const std::vector<Getter> getters{
        [&](int* value) { return adapter.getPasswordQuality(value); },
        [&](int* value) { return adapter.getPasswordMinLength(value); },
        [&](int* value) { return adapter.getPasswordMaxFailedAttempts(value); },
        [&](int* value) { return adapter.getPasswordMinComplexCharacters(value); },
        [&](int* value) { return adapter.getPasswordMaxInactivityTimeDeviceLock(value); },
        [&](int* value) { return adapter.getPasswordExpires(value); },
        [&](int* value) { return adapter.getPasswordHistory(value); },
        [&](int* value) { return adapter.getRestrictionWifi(value); },
        [&](int* value) { return adapter.getRestrictionMessaging("*", value); },
        [&](int* value) { return adapter.getRestrictionPopImap(value); },
        [&](int* value) { return adapter.isSecurityInternalStorageEncrypted(value); },
        [&](int* value) { return adapter.isSecurityExternalStorageEncrypted(value); },
    };

    for (std::size_t i = 0; i < getters.size(); ++i) {
        int value = 0;
        EXPECT_EQ(getters[i](&value), 0);
        EXPECT_EQ(value, static_cast<int>(i) + 1);
    }
}

TEST_F(DpmAdapterTest, WipesNameTheirStorage) {
    EXPECT_EQ(callsOf([&] { adapter.wipeInternalStorage(); }), Lines{"dpm_security_wipe_data 1"});
    EXPECT_EQ(callsOf([&] { adapter.wipeExternalStorage(); }), Lines{"dpm_security_wipe_data 2"});
}

TEST_F(DpmAdapterTest, ErrorsComeBackUnchangedAndUnlogged) {
    platform.faults.always("dpm_password_set_quality", -13);
    platform.faults.always("dpm_restriction_get_messaging_state", -1073741822);
    platform.faults.always("dpm_admin_register_client", -111);
    platform.faults.always("dpm_security_wipe_data", -2);

    int value = 5;
    EXPECT_EQ(adapter.setPasswordQuality(32), -13);
    EXPECT_EQ(adapter.getRestrictionMessaging("*", &value), -1073741822);
    EXPECT_EQ(adapter.registerClient(), -111);
    EXPECT_EQ(adapter.wipeInternalStorage(), -2);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(journal.logs(), Lines{});
}

TEST_F(DpmAdapterTest, EveryOperationPassesItsErrorOn) {
    int value = 5;
    const std::vector<std::pair<std::string, std::function<int()>>> operations{
        {"dpm_admin_register_client", [&] { return adapter.registerClient(); }},
        {"dpm_admin_deregister_client", [&] { return adapter.deregisterClient(); }},
        {"dpm_password_set_quality", [&] { return adapter.setPasswordQuality(1); }},
        {"dpm_password_get_quality", [&] { return adapter.getPasswordQuality(&value); }},
        {"dpm_password_set_minimum_length", [&] { return adapter.setPasswordMinLength(1); }},
        {"dpm_password_get_minimum_length", [&] { return adapter.getPasswordMinLength(&value); }},
        {"dpm_password_set_maximum_failed_attempts_for_wipe", [&] { return adapter.setPasswordMaxFailedAttempts(1); }},
        {"dpm_password_get_maximum_failed_attempts_for_wipe",
         [&] { return adapter.getPasswordMaxFailedAttempts(&value); }},
        {"dpm_password_set_min_complex_chars", [&] { return adapter.setPasswordMinComplexCharacters(1); }},
        {"dpm_password_get_min_complex_chars", [&] { return adapter.getPasswordMinComplexCharacters(&value); }},
        {"dpm_password_set_max_inactivity_time_device_lock",
         [&] { return adapter.setPasswordMaxInactivityTimeDeviceLock(1); }},
        {"dpm_password_get_max_inactivity_time_device_lock",
         [&] { return adapter.getPasswordMaxInactivityTimeDeviceLock(&value); }},
        {"dpm_password_set_expires", [&] { return adapter.setPasswordExpires(1); }},
        {"dpm_password_get_expires", [&] { return adapter.getPasswordExpires(&value); }},
        {"dpm_password_set_history", [&] { return adapter.setPasswordHistory(1); }},
        {"dpm_password_get_history", [&] { return adapter.getPasswordHistory(&value); }},
        {"dpm_restriction_set_wifi_state", [&] { return adapter.setRestrictionWifi(1); }},
        {"dpm_restriction_get_wifi_state", [&] { return adapter.getRestrictionWifi(&value); }},
        {"dpm_restriction_set_messaging_state", [&] { return adapter.setRestrictionMessaging("*", 1); }},
        {"dpm_restriction_get_messaging_state", [&] { return adapter.getRestrictionMessaging("*", &value); }},
        {"dpm_restriction_set_popimap_email_state", [&] { return adapter.setRestrictionPopImap(1); }},
        {"dpm_restriction_get_popimap_email_state", [&] { return adapter.getRestrictionPopImap(&value); }},
        {"dpm_security_set_internal_storage_encryption",
         [&] { return adapter.setSecurityInternalStorageEncryption(true); }},
        {"dpm_security_is_internal_storage_encrypted",
         [&] { return adapter.isSecurityInternalStorageEncrypted(&value); }},
        {"dpm_security_set_external_storage_encryption",
         [&] { return adapter.setSecurityExternalStorageEncryption(true); }},
        {"dpm_security_is_external_storage_encrypted",
         [&] { return adapter.isSecurityExternalStorageEncrypted(&value); }},
        {"dpm_security_wipe_data", [&] { return adapter.wipeInternalStorage(); }},
        {"dpm_security_wipe_data", [&] { return adapter.wipeExternalStorage(); }},
    };
    int error = -100;
    for (const auto& [function, operation] : operations) {
        platform.faults.always(function, --error);
        EXPECT_EQ(operation(), error) << function;
    }
    EXPECT_EQ(value, 5);
    EXPECT_EQ(journal.logs(), Lines{});
}

TEST_F(DpmAdapterTest, MessagesAreReadOfTheSimThatIsNamed) {
    platform.devicePolicy.settings["messaging_state sim1"] = 0;
    int value = 5;

    EXPECT_EQ(callsOf([&] { adapter.getRestrictionMessaging("sim1", &value); }),
              Lines{"dpm_restriction_get_messaging_state sim1"});
    EXPECT_EQ(value, 0);
}

TEST_F(DpmAdapterTest, MissingHandleMakesEveryCallFail) {
    platform.faults.always("dpm_manager_create");
    TeskConsumerDpmAdapter unconnected;

    int value = 0;
    EXPECT_EQ(unconnected.registerClient(), -22);
    EXPECT_EQ(unconnected.setPasswordQuality(32), -22);
    EXPECT_EQ(unconnected.getPasswordQuality(&value), -22);
    EXPECT_EQ(unconnected.wipeInternalStorage(), -22);
}

} // namespace
