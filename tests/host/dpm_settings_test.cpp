#include <dpm/administration.h>
#include <dpm/password.h>
#include <dpm/restriction.h>
#include <dpm/security.h>
#include <gtest/gtest.h>

#include "platform_owners.h"
#include "private_device.h"

namespace {

constexpr char appId[] = "com.example.desk";
constexpr uid_t user = 1000;

TEST(DpmSettings, WithoutTheStoresWriterNothingIsSetAndGettersTellDefaults) {
    PrivateDevice device(appId);
    std::filesystem::remove(device.folder() / "services/ca.desrt.dconf.service");
    device.boot();
    const ManagerOwner manager(dpm_manager_create());
    ASSERT_NE(manager, nullptr);

    EXPECT_EQ(dpm_admin_register_client(manager.get(), appId, user), DPM_ERROR_NOT_PERMITTED);
    EXPECT_EQ(dpm_admin_deregister_client(manager.get(), appId, user), DPM_ERROR_NOT_PERMITTED);
    EXPECT_EQ(dpm_password_set_quality(manager.get(), 32), DPM_ERROR_NOT_PERMITTED);
    EXPECT_EQ(dpm_restriction_set_wifi_state(manager.get(), 0), DPM_ERROR_NOT_PERMITTED);
    EXPECT_EQ(dpm_security_set_internal_storage_encryption(manager.get(), 1), DPM_ERROR_NOT_PERMITTED);
    int value = -1;
    EXPECT_EQ(dpm_password_get_quality(manager.get(), &value), DPM_ERROR_NONE);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(dpm_restriction_get_wifi_state(manager.get(), &value), DPM_ERROR_NONE);
    EXPECT_EQ(value, 1);
}

} // namespace
