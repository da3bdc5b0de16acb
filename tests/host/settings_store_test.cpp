#include <app_preference.h>
#include <dconf.h>
#include <dpm/administration.h>
#include <dpm/restriction.h>
#include <message_port.h>
#include <vconf.h>

#include "host_test.h"
#include "platform_owners.h"

namespace {

class SettingsStore : public HostTest {};

TEST_F(SettingsStore, ValuesSurviveARestartOfEverything) {
    EXPECT_EQ(run({"set-key", "db/example/key", "7"})->status(), 0);
    EXPECT_EQ(run({"administer", "33"})->status(), 0);

    device().shutDown();
    device().boot();

    EXPECT_EQ(run({"print-key", "db/example/key"})->output(), "7");
    EXPECT_EQ(run({"print-quality"})->output(), "33 0");
}

TEST_F(SettingsStore, PreferenceIsWhereTheToolsOfADeskReadIt) {
    EXPECT_EQ(preference_set_int("key", 7), PREFERENCE_ERROR_NONE);
    const c::ObjectOwner<DConfClient> client(dconf_client_new());
    const c::VariantOwner value(dconf_client_read(client.get(), "/apps/com.example.desk/key"));
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(g_variant_get_int32(value.get()), 7);
}

TEST_F(SettingsStore, TextsThatAreNotUtf8AreRefused) {
    const ManagerOwner manager(dpm_manager_create());
    EXPECT_EQ(vconf_set_str("db/example/key", "\xff"), -1);
    EXPECT_EQ(vconf_set_str("db/example/\xff", "text"), -1);
    EXPECT_EQ(preference_set_string("key", "\xff"), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_set_int("\xff", 1), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_restriction_set_messaging_state(manager.get(), "\xff", 1), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_admin_register_client(manager.get(), "\xff", 1000), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(message_port_send_message(appId, "\xff", bundleOf({}).get()), MESSAGE_PORT_ERROR_INVALID_PARAMETER);
}

TEST_F(SettingsStore, NamesThatWouldLeaveTheirFolderAreRefused) {
    const ManagerOwner manager(dpm_manager_create());
    EXPECT_EQ(dpm_restriction_set_messaging_state(manager.get(), "a/b", 1), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_admin_register_client(manager.get(), "a/b", 1000), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_set_int("a//b", 1), PREFERENCE_ERROR_INVALID_PARAMETER);
}

} // namespace
