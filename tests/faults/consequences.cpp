#include "consequences.h"

#include <algorithm>
#include <array>
#include <sstream>

#include "system_calls_of_sqlite.h"

namespace {

constexpr unsigned deviceState = Settings | Keys | Rows;
constexpr unsigned everything = deviceState | Launches;
constexpr bool endsTheService = true;

/// The first row whose call begins as the failing one counts. Of several log lines, one is enough.
constexpr std::array table{
    // A rule that the device refuses is logged, and the others are written.
    Consequence{"dpm_password_set_quality", Calls, "W *setPasswordQuality*[@]"},
    Consequence{"dpm_password_set_minimum_length", Calls, "W *setPasswordMinLength*[@]"},
    Consequence{"dpm_password_set_maximum_failed", Calls, "W [EAS] Failed setPasswordMaxFailedAttempts(*). [@]"},
    Consequence{"dpm_password_set_min_complex", Calls, "W [EAS] Failed setPasswordMinComplexCharacters(*). [@]"},
    Consequence{"dpm_password_set_max_inac", Calls, "W [EAS] Failed setPasswordMaxInactivityTimeDeviceLock(*). [@]"},
    Consequence{"dpm_password_set_expires", Calls, "W [EAS] Failed setPasswordExpires(*). [@]"},
    Consequence{"dpm_password_set_history", Calls, "W [EAS] Failed setPasswordHistory(*). [@]"},
    Consequence{"dpm_restriction_set_wifi", Calls, "W [EAS] Failed setRestrictionWifi(*). [@]"},
    Consequence{"dpm_restriction_set_messaging", Calls, "W [EAS] Failed setRestrictionMessaging(*). [@]"},
    Consequence{"dpm_restriction_set_popimap", Calls, "W [EAS] Failed setRestrictionPopImap(*). [@]"},
    Consequence{"dpm_security_set_", Calls, "W [EAS] Failed setSecurityInternalStorageEncryption(*). [@]"},
    Consequence{"dpm_security_wipe_data", Calls, "W Failed to wipe internal storage. : [@]"},

    // A device that cannot tell its rules is sent to set a lock.
    Consequence{"dpm_password_get_quality", deviceState, "E Failed to get password quality. [@]"},
    Consequence{"dpm_password_get_minimum_length", deviceState, "E Failed to get password min length. [@]"},
    Consequence{"dpm_password_get_min_complex", deviceState, "E Failed to get password min complex characters. [@]"},

    // Without the first account's registration the device refuses every rule, and only a first account registers.
    Consequence{"dpm_admin_register", Calls, "W Failed to register policy admin : @", Served::AfterLastDeletion},
    Consequence{"dpm_manager_create", deviceState, "E Failed to get password quality. [*]", Served::AfterLastDeletion},
    Consequence{"getpwnam_r", everything, "W Failed to register policy admin : *", Served::AfterLastDeletion},
    Consequence{"operator new[]", everything, "W Failed to register policy admin : *", Served::AfterLastDeletion},
    Consequence{"dpm_admin_deregister", Calls, "W Failed to register policy admin : @"},

    // A launch that fails is left out; so is what a reply that cannot be read would have led to.
    Consequence{"app_control_set_app_id com.velmor.quillon.consumer", deviceState, "E consumer launching fail: [*]"},
    Consequence{"app_control_send_launch_request com.velmor.quillon.", deviceState, "E consumer launching fail: [@]"},
    Consequence{"app_control_create", deviceState,
                "W app_control_create() failed: @|W app_control_set_app_id() failed: *|E consumer launching fail: *"},
    Consequence{"app_control_set_app_id", deviceState, "W app_control_set_app_id() failed: @"},
    Consequence{"app_control_add_extra_data", deviceState, "W app_control_add_extra_data() failed: @"},
    Consequence{"app_control_send_launch_request", deviceState, "W app_control_send_launch_request() failed: @"},
    Consequence{"app_control_get_extra_data", deviceState, ""},

    // A request that cannot be read does nothing; one that cannot be sent is lost.
    Consequence{"bundle_get_str req", Nothing, "E Unsupported request : "},
    Consequence{"bundle_get_str msg", Nothing, ""},
    Consequence{"bundle_create", Nothing, ""},
    Consequence{"bundle_add_str", Nothing, ""},
    Consequence{"message_port_send_message", Calls, ""},
    Consequence{"message_port_register", Rows, "E Failed message port register. (@)"},
    Consequence{"message_port_unregister", Calls, "E Failed message port unregister. (@)"},

    // A key that cannot be written is not; its watchers hear nothing. One that cannot be read counts as unset.
    Consequence{"vconf_set_int", Settings | Launches | Rows, ""},
    Consequence{"vconf_get_int memory/private/com.velmor.hearth", Calls, "W vconf_get_int failed: [@]"},
    Consequence{"vconf_get_int", Settings | Rows, ""},
    Consequence{"vconf_get_str db/ode/crypto_state", Keys | Rows, ""},
    Consequence{"vconf_get_str", Calls, ""},
    Consequence{"vconf_notify_key_changed", everything, ""},
    Consequence{"preference_set_int", everything,
                "E Failed to set enforce account id.|W preference_set_int failed: [@]"},
    Consequence{"preference_get_int", everything, "E Failed to get enforce account id. ret : -1"},
    Consequence{"preference_is_existing", everything, "W preference_is_existing failed: [@]"},

    // A database that does not open stays shut until the next start.
    Consequence{"app_get_data_path", Rows, "E app_get_data_path failed", Served::AfterRestart},
    Consequence{"mkdir", Rows, "E g_mkdir() failed!", Served::AfterRestart},
    Consequence{"rename", Rows, "E rename failed: [@]", Served::AfterRestart},
    Consequence{"sqlite3_open", Rows, "E sqlite3_open failed: [@]", Served::AfterRestart},
    Consequence{"sqlite3_busy_handler", Rows, "E sqlite3_busy_handler failed: [@]", Served::AfterRestart},
    Consequence{"sqlite3_prepare_v2 CREATE", Rows, "E query prepare fail: *"},
    Consequence{"sqlite3_step CREATE", Rows, "W db create fail: *"},

    // Rows that cannot be counted count as none, and a service without accounts is no administrator of the device.
    Consequence{"sqlite3_prepare_v2 select count", Rows, "E db failure: *", Served::AfterLastDeletion},
    Consequence{"sqlite3_step select count", Rows, "E db failure: *", Served::AfterLastDeletion},

    // A read or write that fails below SQLite comes up through one of its calls, those that count included.
    Consequence{systemCallsOfSqlite, Nothing, "", Served::AfterLastDeletion},

    // Rows that cannot be read set no rule; a row that cannot be written stays as it was.
    Consequence{"sqlite3_prepare_v2 select * from eas_policy_tbl;", SettingNames | Keys | Rows, "E db failure: *"},
    Consequence{"sqlite3_step select * from eas_policy_tbl;", SettingNames | Keys | Rows, "E db failure: *"},
    Consequence{"sqlite3_prepare_v2", SettingNames | Keys, "E db failure: *"},
    Consequence{"sqlite3_bind_", SettingNames | Keys, "E db failure: *"},
    Consequence{"sqlite3_step", SettingNames | Keys, "E db failure: *"},
    Consequence{"sqlite3_finalize", Calls, "W sqlite3_finalize failed: [@]"},

    // Where a manager cannot be made, the process ends, and the next one finds everything stored.
    Consequence{"operator new", Nothing, "", Served::AfterRestart, endsTheService},
    Consequence{"service_app_main", Nothing, "", Served::AfterRestart},
    Consequence{"g_dbus_node_info_new_for_xml", Calls, "E g_dbus_node_info_new_for_xml failed: [*]"},

    // Whatever else fails, everything goes on.
    Consequence{"", Calls, ""},
};

/// Whether the text is the pattern, in which * stands for anything.
bool matches(const std::string& pattern, const std::string& text) {
    const auto star = pattern.find('*');
    if (star == std::string::npos) {
        return pattern == text;
    }
    if (text.compare(0, star, pattern, 0, star) != 0) {
        return false;
    }
    const auto rest = pattern.substr(star + 1);
    for (auto at = star; at <= text.size(); ++at) {
        if (matches(rest, text.substr(at))) {
            return true;
        }
    }
    return false;
}

} // namespace

const Consequence& consequenceOf(const std::string& call) {
    return *std::find_if(table.begin(), table.end(),
                         [&](const Consequence& row) { return call.rfind(row.call, 0) == 0; });
}

bool isLogOf(const Consequence& consequence, int code, const std::string& line) {
    std::istringstream patterns(consequence.log);
    for (std::string pattern; std::getline(patterns, pattern, '|');) {
        if (const auto at = pattern.find('@'); at != std::string::npos) {
            pattern.replace(at, 1, std::to_string(code));
        }
        if (matches(pattern, line)) {
            return true;
        }
    }
    return false;
}
