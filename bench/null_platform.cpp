// A platform that costs next to nothing, so that what is counted is the service: it remembers the settings, answers
// with success and writes no log.
#include "null_platform.h"

#include <app_control.h>
#include <app_preference.h>
#include <bundle.h>
#include <dlog.h>
#include <dpm/administration.h>
#include <dpm/device-policy-manager.h>
#include <dpm/password.h>
#include <dpm/restriction.h>
#include <dpm/security.h>
#include <message_port.h>
#include <service_app.h>
#include <vconf.h>

#include <cstring>

// NOLINTBEGIN(readability-named-parameter): nothing is done with most of what comes in
struct _bundle_t {
    const char* request;
    const char* argument;
};
struct app_control_s {};
struct __device_policy_manager_s {};

namespace {

struct State {
    std::string dataPath;
    std::function<void()> story;
    message_port_message_cb port = nullptr;
    vconf_callback_fn lockWatch = nullptr;
    int lock = bench::passwordLock;
    int passwordApplied = 1;
    app_control_s request;
    __device_policy_manager_s manager;
};

State& state() {
    static State instance;
    return instance;
}

/// A setting of the device policy manager.
template <int Setting>
int& setting() {
    static int value = 0;
    return value;
}

/// The two keys that decide, and one for all others.
int& intKey(const char* name) {
    static int other = 0;
    if (std::strcmp(name, "db/setting/lock_type") == 0) {
        return state().lock;
    }
    return std::strcmp(name, "db/eas/password_policy_applied") == 0 ? state().passwordApplied : other;
}

char* copyOf(const char* text) {
    return strdup(text);
}

} // namespace

void bench::setDataPath(const std::string& path) {
    state().dataPath = path;
}

void bench::setStory(std::function<void()> story) {
    state().story = std::move(story);
}

void bench::pullTrigger(Trigger trigger) {
    trigger();
}

void bench::setLock(int lock) {
    state().lock = lock;
    if (state().lockWatch != nullptr) {
        state().lockWatch(nullptr, nullptr);
    }
}

void bench::deliver(const std::string& request, const std::string& argument) {
    bundle message{request.c_str(), argument.c_str()};
    const message_port_message_cb port = state().port;
    if (port != nullptr) {
        port(1, "mail", "port", false, &message, nullptr);
    }
}

extern "C" {

char* app_get_data_path(void) {
    return copyOf(state().dataPath.c_str());
}

int service_app_main(int, char**, service_app_lifecycle_callback_s* callback, void* user_data) {
    if (!callback->create(user_data)) {
        return -1;
    }
    callback->app_control(&state().request, user_data);
    state().story();
    callback->terminate(user_data);
    return 0;
}
void service_app_exit(void) {}
int service_app_add_event_handler(app_event_handler_h*, app_event_type_e, app_event_cb, void*) {
    return 0;
}

int app_control_create(app_control_h* app_control) {
    *app_control = &state().request;
    return 0;
}
int app_control_destroy(app_control_h) {
    return 0;
}
int app_control_set_app_id(app_control_h, const char*) {
    return 0;
}
int app_control_add_extra_data(app_control_h, const char*, const char*) {
    return 0;
}
int app_control_get_extra_data(app_control_h, const char*, char**) {
    return APP_CONTROL_ERROR_KEY_NOT_FOUND;
}
int app_control_send_launch_request(app_control_h, app_control_reply_cb, void*) {
    return 0;
}

int preference_set_int(const char*, int) {
    return 0;
}
int preference_set_boolean(const char*, bool) {
    return 0;
}
int preference_set_double(const char*, double) {
    return 0;
}
int preference_set_string(const char*, const char*) {
    return 0;
}
int preference_get_int(const char*, int* value) {
    *value = 0;
    return 0;
}
int preference_get_boolean(const char*, bool* value) {
    *value = false;
    return 0;
}
int preference_get_double(const char*, double* value) {
    *value = 0;
    return 0;
}
int preference_get_string(const char*, char** value) {
    *value = copyOf("");
    return 0;
}
int preference_is_existing(const char*, bool* existing) {
    *existing = true;
    return 0;
}

int message_port_register_local_port(const char*, message_port_message_cb callback, void*) {
    state().port = callback;
    return 1;
}
int message_port_unregister_local_port(int) {
    return 0;
}
int message_port_send_message(const char*, const char*, bundle*) {
    return 0;
}

bundle* bundle_create(void) {
    return new bundle{};
}
int bundle_free(bundle* b) {
    delete b;
    return 0;
}
int bundle_add_str(bundle*, const char*, const char*) {
    return 0;
}
int bundle_get_str(bundle* b, const char* key, char** str) {
    *str = const_cast<char*>(std::strcmp(key, "req") == 0 ? b->request : b->argument);
    return 0;
}

int vconf_get_int(const char* in_key, int* intval) {
    *intval = intKey(in_key);
    return 0;
}
int vconf_set_int(const char* in_key, const int intval) {
    intKey(in_key) = intval;
    return 0;
}
char* vconf_get_str(const char*) {
    return copyOf("unencrypted");
}
int vconf_set_str(const char*, const char*) {
    return 0;
}
int vconf_notify_key_changed(const char*, vconf_callback_fn cb, void*) {
    state().lockWatch = cb;
    return 0;
}
char* vconf_keynode_get_name(keynode_t*) {
    return nullptr;
}
int vconf_keynode_get_int(keynode_t*) {
    return bench::passwordLock;
}
char* vconf_keynode_get_str(keynode_t*) {
    return nullptr;
}

device_policy_manager_h dpm_manager_create(void) {
    return &state().manager;
}
int dpm_manager_destroy(device_policy_manager_h) {
    return 0;
}
int dpm_admin_register_client(device_policy_manager_h, const char*, uid_t) {
    return 0;
}
int dpm_admin_deregister_client(device_policy_manager_h, const char*, uid_t) {
    return 0;
}

int dpm_password_set_quality(device_policy_manager_h, int value) {
    setting<0>() = value;
    return 0;
}
int dpm_password_get_quality(device_policy_manager_h, int* value) {
    *value = setting<0>();
    return 0;
}
int dpm_password_set_minimum_length(device_policy_manager_h, int value) {
    setting<1>() = value;
    return 0;
}
int dpm_password_get_minimum_length(device_policy_manager_h, int* value) {
    *value = setting<1>();
    return 0;
}
int dpm_password_set_min_complex_chars(device_policy_manager_h, int value) {
    setting<2>() = value;
    return 0;
}
int dpm_password_get_min_complex_chars(device_policy_manager_h, int* value) {
    *value = setting<2>();
    return 0;
}
int dpm_password_set_maximum_failed_attempts_for_wipe(device_policy_manager_h, int value) {
    setting<3>() = value;
    return 0;
}
int dpm_password_get_maximum_failed_attempts_for_wipe(device_policy_manager_h, int* value) {
    *value = setting<3>();
    return 0;
}
int dpm_password_set_expires(device_policy_manager_h, int value) {
    setting<4>() = value;
    return 0;
}
int dpm_password_get_expires(device_policy_manager_h, int* value) {
    *value = setting<4>();
    return 0;
}
int dpm_password_set_history(device_policy_manager_h, int value) {
    setting<5>() = value;
    return 0;
}
int dpm_password_get_history(device_policy_manager_h, int* value) {
    *value = setting<5>();
    return 0;
}
int dpm_password_set_max_inactivity_time_device_lock(device_policy_manager_h, int value) {
    setting<6>() = value;
    return 0;
}
int dpm_password_get_max_inactivity_time_device_lock(device_policy_manager_h, int* value) {
    *value = setting<6>();
    return 0;
}
int dpm_restriction_set_wifi_state(device_policy_manager_h, int allow) {
    setting<7>() = allow;
    return 0;
}
int dpm_restriction_get_wifi_state(device_policy_manager_h, int* is_allowed) {
    *is_allowed = setting<7>();
    return 0;
}
int dpm_restriction_set_popimap_email_state(device_policy_manager_h, int allow) {
    setting<8>() = allow;
    return 0;
}
int dpm_restriction_get_popimap_email_state(device_policy_manager_h, int* is_allowed) {
    *is_allowed = setting<8>();
    return 0;
}
int dpm_security_set_internal_storage_encryption(device_policy_manager_h, int encrypt) {
    setting<9>() = encrypt;
    return 0;
}
int dpm_security_is_internal_storage_encrypted(device_policy_manager_h, int* is_encrypted) {
    *is_encrypted = setting<9>();
    return 0;
}
int dpm_security_set_external_storage_encryption(device_policy_manager_h, int encrypt) {
    setting<10>() = encrypt;
    return 0;
}
int dpm_security_is_external_storage_encrypted(device_policy_manager_h, int* is_encrypted) {
    *is_encrypted = setting<10>();
    return 0;
}
int dpm_restriction_set_messaging_state(device_policy_manager_h, const char*, int allow) {
    setting<11>() = allow;
    return 0;
}
int dpm_restriction_get_messaging_state(device_policy_manager_h, const char*, int* is_allowed) {
    *is_allowed = 1;
    return 0;
}
int dpm_security_wipe_data(device_policy_manager_h, dpm_security_wipe_type_e) {
    return 0;
}

int __dlog_print(log_id_t, int, const char*, const char*, ...) {
    return 0;
}

} // extern "C"
// NOLINTEND(readability-named-parameter)
