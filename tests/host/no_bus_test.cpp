#include <app_common.h>
#include <app_control.h>
#include <app_preference.h>
#include <dpm/administration.h>
#include <dpm/password.h>
#include <dpm/restriction.h>
#include <dpm/security.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <message_port.h>
#include <service_app.h>
#include <vconf.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <string>

#include "host_bus.h"
#include "platform_owners.h"

namespace {

TEST(NoBus, EachCallFailsWithTheCodeOfItsOwnKind) {
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
    setenv(host_bus::appIdVariable, "com.example.desk", 1);
    setenv(host_bus::deviceVariable, "/nonexistent", 1);
    const ManagerOwner manager(dpm_manager_create());
    const AppControlOwner request = newAppControl();
    app_control_set_app_id(request.get(), "com.example.app");
    app_event_handler_h handler = nullptr;
    int value = 0;
    bool flag = false;

    EXPECT_EQ(vconf_set_int("db/example/key", 1), -1);
    EXPECT_EQ(vconf_set_str("db/example/key", "text"), -1);
    EXPECT_EQ(vconf_get_int("db/example/key", &value), -1);
    EXPECT_EQ(vconf_get_str("db/example/key"), nullptr);
    EXPECT_EQ(vconf_notify_key_changed(
                  "db/example/key", [](keynode_t*, void*) {}, nullptr),
              -1);
    EXPECT_EQ(preference_set_int("key", 1), PREFERENCE_ERROR_IO_ERROR);
    EXPECT_EQ(preference_is_existing("key", &flag), PREFERENCE_ERROR_IO_ERROR);
    EXPECT_EQ(dpm_admin_register_client(manager.get(), "com.example.desk", 1000), DPM_ERROR_NOT_PERMITTED);
    EXPECT_EQ(dpm_restriction_set_messaging_state(manager.get(), "*", 1), DPM_ERROR_NOT_PERMITTED);
    EXPECT_EQ(dpm_password_set_quality(manager.get(), 32), DPM_ERROR_NOT_PERMITTED);
    EXPECT_EQ(dpm_password_get_quality(manager.get(), &value), DPM_ERROR_CONNECTION_REFUSED);
    EXPECT_EQ(dpm_restriction_get_messaging_state(manager.get(), "*", &value), DPM_ERROR_CONNECTION_REFUSED);
    EXPECT_EQ(dpm_security_is_internal_storage_encrypted(manager.get(), &value), DPM_ERROR_CONNECTION_REFUSED);
    EXPECT_EQ(app_control_send_launch_request(request.get(), nullptr, nullptr), APP_CONTROL_ERROR_LAUNCH_FAILED);
    EXPECT_EQ(message_port_register_local_port(
                  "port", [](int, const char*, const char*, bool, bundle*, void*) {}, nullptr),
              MESSAGE_PORT_ERROR_IO_ERROR);
    EXPECT_EQ(message_port_unregister_local_port(1), MESSAGE_PORT_ERROR_IO_ERROR);
    EXPECT_EQ(message_port_check_remote_port("com.example.app", "port", &flag), MESSAGE_PORT_ERROR_IO_ERROR);
    EXPECT_EQ(message_port_check_remote_port("com.example.app", "", &flag), MESSAGE_PORT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(message_port_send_message("com.example.app", "port", bundleOf({{"key", "text"}}).get()),
              MESSAGE_PORT_ERROR_IO_ERROR);
    EXPECT_EQ(service_app_add_event_handler(
                  &handler, APP_EVENT_LOW_MEMORY, [](app_event_info_h, void*) {}, nullptr),
              -EIO);
}

/// A variable that does not name what it should, and what is said about it.
struct Gap {
    const char* variable;
    const char* value;
    const char* report;
};

TEST(NoEnvironment, ApplicationHasNeitherIdNorFolderAndSaysWhichVariableIsWrong) {
    const std::array<Gap, 5> gaps{{
        {host_bus::appIdVariable, "", "the environment does not name the application's id: TESK_APP_ID is not set"},
        {host_bus::appIdVariable, "noname", "the application's id TESK_APP_ID=noname is not a well-formed bus name"},
        {host_bus::appIdVariable, ":1.1", "the application's id TESK_APP_ID=:1.1 is not a well-formed bus name"},
        {host_bus::deviceVariable, "", "the environment does not name the device's folder: TESK_DEVICE is not set"},
        {host_bus::deviceVariable, "near", "the device's folder TESK_DEVICE=near is not an absolute path"},
    }};
    for (const Gap& gap : gaps) {
        setenv(host_bus::appIdVariable, "com.example.desk", 1);
        setenv(host_bus::deviceVariable, "/nonexistent", 1);
        setenv(gap.variable, gap.value, 1);
        char* id = nullptr;
        testing::internal::CaptureStderr();
        EXPECT_EQ(app_get_id(&id), -EINVAL);
        EXPECT_EQ(app_get_data_path(), nullptr);
        EXPECT_THAT(testing::internal::GetCapturedStderr(),
                    testing::HasSubstr(std::string("tesk-host: app_get_id: ") + gap.report));
    }
}

TEST(NoEnvironment, FolderThatCannotBeMadeIsNone) {
    setenv(host_bus::appIdVariable, "com.example.desk", 1);
    setenv(host_bus::deviceVariable, "/dev/null", 1);
    EXPECT_EQ(app_get_data_path(), nullptr);
}

} // namespace
