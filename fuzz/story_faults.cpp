#include "story_faults.h"

#include <array>

namespace {

/// The codes of functions that may also claim success without having done anything.
constexpr std::array<int, 8> platformCodes{-1, 0, -5, -13, -22, -107, 1, -2147483647};

/// SQLite's errors; a success that did nothing would be SQLite's own bug.
constexpr std::array<int, 9> databaseCodes{1, 5, 6, 7, 8, 10, 11, 13, 26};

constexpr std::array<int, 3> systemCodes{12, 28, 30};

constexpr std::array platformFunctions{
    "app_control_create",
    "app_control_set_app_id",
    "app_control_add_extra_data",
    "app_control_get_extra_data",
    "app_control_send_launch_request",
    "app_get_data_path",
    "bundle_create",
    "bundle_add_str",
    "bundle_get_str",
    "dpm_manager_create",
    "dpm_admin_register_client",
    "dpm_admin_deregister_client",
    "dpm_password_set_quality",
    "dpm_password_get_quality",
    "dpm_password_set_minimum_length",
    "dpm_password_get_minimum_length",
    "dpm_password_set_min_complex_chars",
    "dpm_password_get_min_complex_chars",
    "dpm_password_set_maximum_failed_attempts_for_wipe",
    "dpm_password_set_expires",
    "dpm_password_set_history",
    "dpm_password_set_max_inactivity_time_device_lock",
    "dpm_restriction_set_wifi_state",
    "dpm_restriction_set_popimap_email_state",
    "dpm_restriction_set_messaging_state",
    "dpm_security_set_internal_storage_encryption",
    "dpm_security_wipe_data",
    "message_port_register_local_port",
    "message_port_unregister_local_port",
    "message_port_send_message",
    "preference_set_int",
    "preference_get_int",
    "preference_is_existing",
    "service_app_add_event_handler",
    "service_app_exit",
    "vconf_get_int",
    "vconf_set_int",
    "vconf_get_str",
    "vconf_notify_key_changed",
    "operator new[]",
};

constexpr std::array databaseFunctions{
    "sqlite3_open", "sqlite3_busy_handler", "sqlite3_prepare_v2", "sqlite3_step", "sqlite3_finalize",
};

constexpr std::array systemFunctions{"rename", "getpwnam_r"};

template <class Functions, class Codes>
harness::Event oneFails(fuzz::ByteReader& bytes, const Functions& functions, const Codes& codes) {
    constexpr std::size_t farthestCall = 8;
    const std::string function = bytes.oneOf(functions);
    const int code = bytes.oneOf(codes);
    if (bytes.flag()) {
        return [=](harness::Watch& watch) { watch.platform.faults.always(function, code); };
    }
    const int nth = static_cast<int>(bytes.below(farthestCall)) + 1;
    return [=](harness::Watch& watch) { watch.platform.faults.atCall(function, nth, code); };
}

} // namespace

harness::Event fuzz::callFails(ByteReader& bytes) {
    switch (bytes.below(4)) {
    case 0:
        return oneFails(bytes, databaseFunctions, databaseCodes);
    case 1:
        return oneFails(bytes, systemFunctions, systemCodes);
    default:
        return oneFails(bytes, platformFunctions, platformCodes);
    }
}
