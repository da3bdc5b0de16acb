#include <app_control.h>
#include <app_preference.h>
#include <dpm/administration.h>
#include <dpm/password.h>
#include <dpm/restriction.h>
#include <dpm/security.h>
#include <gtest/gtest.h>
#include <message_port.h>
#include <service_app.h>
#include <vconf.h>

#include <cerrno>
#include <cstdlib>

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
    EXPECT_EQ(vconf_get_int("db/example/key", &value), -1);
    EXPECT_EQ(vconf_notify_key_changed(
                  "db/example/key", [](keynode_t*, void*) {}, nullptr),
              -1);
    EXPECT_EQ(preference_set_int("key", 1), PREFERENCE_ERROR_IO_ERROR);
    EXPECT_EQ(preference_is_existing("key", &flag), PREFERENCE_ERROR_IO_ERROR);
    EXPECT_EQ(dpm_password_set_quality(manager.get(), 32), DPM_ERROR_NOT_PERMITTED);
    EXPECT_EQ(dpm_password_get_quality(manager.get(), &value), DPM_ERROR_CONNECTION_REFUSED);
    EXPECT_EQ(dpm_restriction_get_messaging_state(manager.get(), "*", &value), DPM_ERROR_CONNECTION_REFUSED);
    EXPECT_EQ(dpm_security_is_internal_storage_encrypted(manager.get(), &value), DPM_ERROR_CONNECTION_REFUSED);
    EXPECT_EQ(app_control_send_launch_request(request.get(), nullptr, nullptr), APP_CONTROL_ERROR_LAUNCH_FAILED);
    EXPECT_EQ(message_port_check_remote_port("com.example.app", "port", &flag), MESSAGE_PORT_ERROR_IO_ERROR);
    EXPECT_EQ(message_port_send_message("com.example.app", "port", bundleOf({{"key", "text"}}).get()),
              MESSAGE_PORT_ERROR_IO_ERROR);
    EXPECT_EQ(service_app_add_event_handler(
                  &handler, APP_EVENT_LOW_MEMORY, [](app_event_info_h, void*) {}, nullptr),
              -EIO);
}

} // namespace
