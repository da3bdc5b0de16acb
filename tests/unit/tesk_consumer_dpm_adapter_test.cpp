#include <functional>

#include "TeskConsumerDpmAdapter.h"
#include "unit_test.h"

namespace {

using Adapter = TeskConsumerDpmAdapter;

class DpmAdapterTest : public UnitTest {
protected:
    Adapter adapter;
};

TEST_F(DpmAdapterTest, HandleLivesAsLongAsTheAdapter) {
    EXPECT_EQ(platform.devicePolicy.handles.size(), 1U);
    { const Adapter second; }
    EXPECT_EQ(platform.devicePolicy.handles.size(), 1U);
}

TEST_F(DpmAdapterTest, ClientIsTheServiceOfTheOwnerOfTheMoment) {
    adapter.registerClient();
    platform.system.users["owner"] = 77;
    adapter.registerClient();
    platform.system.users.clear();
    adapter.deregisterClient();

    EXPECT_EQ(journal.calls({"dpm_admin"}), (Lines{"dpm_admin_register_client com.velmor.tesk-agent 5001",
                                                   "dpm_admin_register_client com.velmor.tesk-agent 77",
                                                   "dpm_admin_deregister_client com.velmor.tesk-agent 4294967295"}));
}

/// An operation and the call that it makes, to the letter.
struct DpmCall {
    std::string call;
    std::function<int(Adapter&)> run;
};

const std::vector<DpmCall>& dpmCalls() {
    static const std::vector<DpmCall> all{
        {"dpm_admin_register_client com.velmor.tesk-agent 5001", [](auto& dpm) { return dpm.registerClient(); }},
        {"dpm_admin_deregister_client com.velmor.tesk-agent 5001", [](auto& dpm) { return dpm.deregisterClient(); }},
        {"dpm_password_set_quality 33", [](auto& dpm) { return dpm.setPasswordQuality(33); }},
        {"dpm_password_set_minimum_length 6", [](auto& dpm) { return dpm.setPasswordMinLength(6); }},
        {"dpm_password_set_maximum_failed_attempts_for_wipe 10",
         [](auto& dpm) { return dpm.setPasswordMaxFailedAttempts(10); }},
        {"dpm_password_set_min_complex_chars 3", [](auto& dpm) { return dpm.setPasswordMinComplexCharacters(3); }},
        {"dpm_password_set_max_inactivity_time_device_lock 900",
         [](auto& dpm) { return dpm.setPasswordMaxInactivityTimeDeviceLock(900); }},
        {"dpm_password_set_expires 365", [](auto& dpm) { return dpm.setPasswordExpires(365); }},
        {"dpm_password_set_history 4", [](auto& dpm) { return dpm.setPasswordHistory(4); }},
        {"dpm_restriction_set_wifi_state 0", [](auto& dpm) { return dpm.setRestrictionWifi(0); }},
        {"dpm_restriction_set_messaging_state sim1 2",
         [](auto& dpm) { return dpm.setRestrictionMessaging("sim1", 2); }},
        {"dpm_restriction_set_popimap_email_state -1", [](auto& dpm) { return dpm.setRestrictionPopImap(-1); }},
        {"dpm_security_set_internal_storage_encryption 1",
         [](auto& dpm) { return dpm.setSecurityInternalStorageEncryption(true); }},
        {"dpm_security_set_external_storage_encryption 0",
         [](auto& dpm) { return dpm.setSecurityExternalStorageEncryption(false); }},
        {"dpm_security_wipe_data 1", [](auto& dpm) { return dpm.wipeInternalStorage(); }},
        {"dpm_security_wipe_data 2", [](auto& dpm) { return dpm.wipeExternalStorage(); }},
    };
    return all;
}

/// A getter, the call that it makes, and the setting that it reads.
struct Getter {
    std::string call;
    std::string setting;
    std::function<int(Adapter&, int*)> run;
};

const std::vector<Getter>& getters() {
    static const std::vector<Getter> all{
        {"dpm_password_get_quality", "quality", &Adapter::getPasswordQuality},
        {"dpm_password_get_minimum_length", "minimum_length", &Adapter::getPasswordMinLength},
        {"dpm_password_get_maximum_failed_attempts_for_wipe", "maximum_failed_attempts_for_wipe",
         &Adapter::getPasswordMaxFailedAttempts},
        {"dpm_password_get_min_complex_chars", "min_complex_chars", &Adapter::getPasswordMinComplexCharacters},
        {"dpm_password_get_max_inactivity_time_device_lock", "max_inactivity_time_device_lock",
         &Adapter::getPasswordMaxInactivityTimeDeviceLock},
        {"dpm_password_get_expires", "expires", &Adapter::getPasswordExpires},
        {"dpm_password_get_history", "history", &Adapter::getPasswordHistory},
        {"dpm_restriction_get_wifi_state", "wifi_state", &Adapter::getRestrictionWifi},
        {"dpm_restriction_get_messaging_state sim1", "messaging_state sim1",
         [](Adapter& dpm, int* value) { return dpm.getRestrictionMessaging("sim1", value); }},
        {"dpm_restriction_get_popimap_email_state", "popimap_email_state", &Adapter::getRestrictionPopImap},
        {"dpm_security_is_internal_storage_encrypted", "internal_storage_encrypted",
         &Adapter::isSecurityInternalStorageEncrypted},
        {"dpm_security_is_external_storage_encrypted", "external_storage_encrypted",
         &Adapter::isSecurityExternalStorageEncrypted},
    };
    return all;
}

std::string functionOf(const std::string& call) {
    return call.substr(0, call.find(' '));
}

TEST_F(DpmAdapterTest, EachOperationPassesItsValueOnAndItsErrorBack) {
    int error = -100;
    for (const auto& operation : dpmCalls()) {
        platform.devicePolicy.clients.clear();
        if (functionOf(operation.call) != "dpm_admin_register_client") {
            platform.devicePolicy.registerService();
        }
        journal.clear();
        EXPECT_EQ(operation.run(adapter), 0);
        EXPECT_EQ(journal.calls({"dpm_"}), Lines{operation.call});

        platform.faults.always(functionOf(operation.call), --error);
        EXPECT_EQ(operation.run(adapter), error) << operation.call;
        platform.faults.none();
    }
    EXPECT_EQ(journal.logs(), Lines{});
}

TEST_F(DpmAdapterTest, EachGetterReadsItsSettingAndPassesItsErrorBack) {
    int expected = 100;
    for (const auto& getter : getters()) {
        SCOPED_TRACE(getter.call);
        platform.devicePolicy.settings = {{getter.setting, ++expected}};
        int value = 0;
        journal.clear();
        EXPECT_EQ(getter.run(adapter, &value), 0);
        EXPECT_EQ(value, expected);
        EXPECT_EQ(journal.calls({"dpm_"}), Lines{getter.call});

        platform.faults.always(functionOf(getter.call), -expected);
        value = 5;
        EXPECT_EQ(getter.run(adapter, &value), -expected);
        EXPECT_EQ(value, 5);
    }
    EXPECT_EQ(journal.logs(), Lines{});
}

} // namespace
