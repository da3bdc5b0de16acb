#include "device_state.h"

#include <dconf.h>
#include <dpm/password.h>
#include <dpm/restriction.h>
#include <gtest/gtest.h>
#include <vconf.h>

#include <memory>
#include <tuple>

#include "c_owners.h"
#include "device/application_ids.h"
#include "other_program.h"
#include "platform_owners.h"

namespace system_test {
namespace {

auto fields(const Settings& s) {
    return std::make_tuple(s.quality, s.minLength, s.failedAttempts, s.complexCharacters, s.inactivity, s.expiration,
                           s.history, s.wifi, s.messaging, s.popImap, s.encryption);
}

/// A number that another process keeps in the watch's store.
std::optional<int> storedNumber(const std::string& path) {
    const c::ObjectOwner<DConfClient> client(dconf_client_new());
    const c::VariantOwner value(dconf_client_read(client.get(), path.c_str()));
    return value != nullptr ? std::optional<int>(g_variant_get_int32(value.get())) : std::nullopt;
}

} // namespace

bool Settings::operator==(const Settings& other) const {
    return fields(*this) == fields(other);
}

void PrintTo(const Settings& settings, std::ostream* output) {
    *output << testing::PrintToString(fields(settings));
}

Settings settings() {
    const ManagerOwner manager(dpm_manager_create());
    device_policy_manager_h handle = manager.get();
    Settings s;
    const bool areRead = dpm_password_get_quality(handle, &s.quality) == 0 &&
                         dpm_password_get_minimum_length(handle, &s.minLength) == 0 &&
                         dpm_password_get_maximum_failed_attempts_for_wipe(handle, &s.failedAttempts) == 0 &&
                         dpm_password_get_min_complex_chars(handle, &s.complexCharacters) == 0 &&
                         dpm_password_get_max_inactivity_time_device_lock(handle, &s.inactivity) == 0 &&
                         dpm_password_get_expires(handle, &s.expiration) == 0 &&
                         dpm_password_get_history(handle, &s.history) == 0 &&
                         dpm_restriction_get_wifi_state(handle, &s.wifi) == 0 &&
                         dpm_restriction_get_messaging_state(handle, "*", &s.messaging) == 0 &&
                         dpm_restriction_get_popimap_email_state(handle, &s.popImap) == 0;
    EXPECT_TRUE(areRead);
    // the manager's own getter tells whether the storage is encrypted, not whether that is demanded
    s.encryption = storedNumber("/dpm/security/internal-storage-encryption").value_or(0);
    return s;
}

bool isServiceAdministrator() {
    const c::ObjectOwner<DConfClient> client(dconf_client_new());
    const auto path = std::string("/dpm/clients/") + deskwatch::ids::service;
    return c::VariantOwner(dconf_client_read(client.get(), path.c_str())) != nullptr;
}

std::optional<int> key(const std::string& name) {
    int value = 0;
    return vconf_get_int(name.c_str(), &value) == 0 ? std::optional(value) : std::nullopt;
}

void setKey(const std::string& name, int value) {
    ASSERT_EQ(vconf_set_int(name.c_str(), value), 0) << name;
}

void setKey(const std::string& name, const std::string& value) {
    ASSERT_EQ(vconf_set_str(name.c_str(), value.c_str()), 0) << name;
}

std::optional<int> enforcingAccount() {
    return storedNumber(std::string("/apps/") + deskwatch::ids::service + "/pref/tesk-agent/pwd_enforce_account_id");
}

std::vector<Row> storedRows(const std::filesystem::path& database) {
    return OtherProgram(database).rows("select * from eas_policy_tbl order by account_id");
}

std::vector<std::string> storedAccounts(const std::filesystem::path& database) {
    std::vector<std::string> ids;
    for (const Row& row : storedRows(database)) {
        ids.push_back(row.front());
    }
    return ids;
}

} // namespace system_test
