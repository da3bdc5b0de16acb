#include "fault.h"

#include <app_control.h>
#include <app_preference.h>
#include <dpm/device-policy-manager.h>
#include <message_port.h>
#include <sqlite3.h>

#include <cerrno>
#include <map>

#include "system_calls_of_sqlite.h"

namespace {

struct CodesOfGroup {
    const char* beginning;
    std::vector<int> codes;
};

/// The first group whose beginning a function's name has.
const std::vector<CodesOfGroup>& groups() {
    static const std::vector<CodesOfGroup> all{
        {"sqlite3_open", {SQLITE_CANTOPEN, SQLITE_NOMEM}},
        {"sqlite3_busy_handler", {SQLITE_MISUSE}},
        {"sqlite3_prepare_v2", {SQLITE_ERROR, SQLITE_BUSY, SQLITE_IOERR, SQLITE_CORRUPT, SQLITE_NOMEM}},
        {"sqlite3_bind_", {SQLITE_NOMEM}},
        {"sqlite3_step", {SQLITE_FULL, SQLITE_IOERR, SQLITE_BUSY, SQLITE_CORRUPT, SQLITE_NOMEM}},
        {"sqlite3_finalize", {SQLITE_IOERR, SQLITE_BUSY}},
        {systemCallsOfSqlite, {ENOSPC, EIO, EACCES}},
        {"mkdir", {ENOSPC, EROFS, EACCES}},
        {"rename", {ENOSPC, EROFS, EACCES}},
        {"chmod", {EROFS, EPERM}},
        {"unlink", {EROFS, EACCES}},
        {"getpwnam_r", {EIO, ENOMEM}},
        {"dpm_manager_create", {-1}},
        {"dpm_", {DPM_ERROR_PERMISSION_DENIED, DPM_ERROR_TIMED_OUT, 0}},
        {"app_get_data_path", {-1}},
        {"app_control_", {APP_CONTROL_ERROR_OUT_OF_MEMORY, APP_CONTROL_ERROR_APP_NOT_FOUND, 0}},
        {"message_port_register", {MESSAGE_PORT_ERROR_IO_ERROR, 0}},
        {"message_port_", {MESSAGE_PORT_ERROR_IO_ERROR, MESSAGE_PORT_ERROR_PORT_NOT_FOUND, 0}},
        {"preference_", {PREFERENCE_ERROR_IO_ERROR, PREFERENCE_ERROR_OUT_OF_MEMORY, 0}},
        {"bundle_create", {-1}},
        {"vconf_get_str", {-1}},
        {"operator new", {-1}},
        {"malloc", {-1}},
        {"g_dbus_node_info_new_for_xml", {-1}},
        {"service_app_main", {-1}},
    };
    return all;
}

} // namespace

void Fault::arm(fake::Faults& faults) const {
    if (nth == always) {
        faults.always(function, code);
    } else {
        faults.atCall(function, nth, code);
    }
}

std::string Fault::text() const {
    const std::string call = nth == always ? "every call" : "call " + std::to_string(nth);
    return function + ", " + call + ": " + std::to_string(code);
}

std::vector<int> codesOf(const std::string& function) {
    for (const auto& group : groups()) {
        if (function.rfind(group.beginning, 0) == 0) {
            return group.codes;
        }
    }
    return {-1, 0};
}

bool releasesAnObject(const std::string& function) {
    return function == "app_control_destroy" || function == "bundle_free";
}
