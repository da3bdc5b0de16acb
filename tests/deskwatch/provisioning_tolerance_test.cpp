#include "provisioning/provisioning_tolerance.h"

#include <gtest/gtest.h>

namespace deskwatch {
namespace {

TEST(ProvisioningTolerance, NoValueFailsTheWholePolicy) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"MinDevicePasswordLength", "6", "6"},
        {"MinDevicePasswordLength", "0", "1"},
        {"MinDevicePasswordLength", "99", "16"},
        {"MaxDevicePasswordFailedAttempts", "2", "4"},
        {"MaxInactivityTimeDeviceLock", "99999999999", "2147483647"},
        {"MaxInactivityTimeDeviceLock", "-99999999999", ""},
        {"DevicePasswordExpiration", "-1", ""},
        {"AllowWifi", "yes", ""},
        {"AllowWifi", "", ""},
        {"MaxAttachmentSize", "-1", "-1"},
    };
    for (const auto& [name, given, taken] : rows) {
        const auto result = tolerated({{name, given, false, 0}});
        ASSERT_EQ(result.elements.size(), 1U);
        EXPECT_EQ(result.elements[0].value, taken) << name << " " << given;
        EXPECT_EQ(result.remarks.empty(), std::string(given) == taken) << name << " " << given;
    }
    const auto twice = tolerated({{"AllowWifi", "0", false, 0}, {"AllowWifi", "1", false, 0}});
    ASSERT_EQ(twice.elements.size(), 1U);
    EXPECT_EQ(twice.elements[0].value, "0");
    EXPECT_FALSE(tolerated({{"AllowWifi", "", true, 0}}).elements[0].isList);
}

} // namespace
} // namespace deskwatch
