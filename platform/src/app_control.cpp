#include "app_control.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

#include "app_control_handle.h"
#include "bus.h"
#include "guard.h"
#include "launcher.h"
#include "text.h"

using host::AppControls;
using host::guarded;
using host::Launcher;

namespace {

constexpr const char* internalKeys[] = {"__AUL_", "__APP_SVC_"};

// Whether a key can be one of extra data.
app_control_error_e verdictOnKey(const char* key) {
    if (key == nullptr || *key == '\0') {
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    }
    const bool isInternal = std::any_of(std::begin(internalKeys), std::end(internalKeys), [&](const char* beginning) {
        return std::strncmp(key, beginning, std::strlen(beginning)) == 0;
    });
    return isInternal ? APP_CONTROL_ERROR_KEY_REJECTED : APP_CONTROL_ERROR_NONE;
}

// Runs a function's body with the control that a handle stands for. A handle that stands for none is refused.
template <class Body>
int withControl(const char* function, app_control_h handle, Body&& body) {
    return guarded<int>(function, APP_CONTROL_ERROR_OUT_OF_MEMORY, [&]() -> int {
        app_control_s* control = AppControls::get().find(handle);
        return control != nullptr ? body(*control) : APP_CONTROL_ERROR_INVALID_PARAMETER;
    });
}

} // namespace

int app_control_create(app_control_h* app_control) {
    if (app_control == nullptr) {
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    }
    return guarded<int>(__func__, APP_CONTROL_ERROR_OUT_OF_MEMORY, [&] {
        *app_control = AppControls::get().add(std::make_unique<app_control_s>());
        return APP_CONTROL_ERROR_NONE;
    });
}

int app_control_destroy(app_control_h app_control) {
    return guarded<int>(__func__, APP_CONTROL_ERROR_INVALID_PARAMETER, [&] {
        return AppControls::get().remove(app_control) ? APP_CONTROL_ERROR_NONE : APP_CONTROL_ERROR_INVALID_PARAMETER;
    });
}

int app_control_set_app_id(app_control_h app_control, const char* app_id) {
    return withControl(__func__, app_control, [&](app_control_s& control) {
        control.appId = app_id != nullptr ? std::optional<std::string>(app_id) : std::nullopt;
        return APP_CONTROL_ERROR_NONE;
    });
}

int app_control_get_app_id(app_control_h app_control, char** app_id) {
    return withControl(__func__, app_control, [&](app_control_s& control) {
        if (app_id == nullptr) {
            return APP_CONTROL_ERROR_INVALID_PARAMETER;
        }
        *app_id = control.appId ? host::copyForCaller(*control.appId) : nullptr;
        return APP_CONTROL_ERROR_NONE;
    });
}

int app_control_add_extra_data(app_control_h app_control, const char* key, const char* value) {
    return withControl(__func__, app_control, [&](app_control_s& control) {
        if (value == nullptr || *value == '\0') {
            return APP_CONTROL_ERROR_INVALID_PARAMETER;
        }
        const auto verdict = verdictOnKey(key);
        if (verdict == APP_CONTROL_ERROR_NONE) {
            control.extraData.set(key, value);
        }
        return verdict;
    });
}

int app_control_get_extra_data(app_control_h app_control, const char* key, char** value) {
    return withControl(__func__, app_control, [&](app_control_s& control) {
        const auto verdict = value != nullptr ? verdictOnKey(key) : APP_CONTROL_ERROR_INVALID_PARAMETER;
        if (verdict != APP_CONTROL_ERROR_NONE) {
            return verdict;
        }
        const std::string* found = control.extraData.find(key);
        if (found == nullptr) {
            return APP_CONTROL_ERROR_KEY_NOT_FOUND;
        }
        *value = host::copyForCaller(*found);
        return APP_CONTROL_ERROR_NONE;
    });
}

int app_control_foreach_extra_data(app_control_h app_control, app_control_extra_data_cb callback, void* user_data) {
    return withControl(__func__, app_control, [&](app_control_s& control) {
        if (callback == nullptr) {
            return APP_CONTROL_ERROR_INVALID_PARAMETER;
        }
        // A copy, since the callback may add pairs.
        for (const auto& pair : host::StringMap::Pairs(control.extraData.pairs())) {
            if (!callback(app_control, pair.first.c_str(), user_data)) {
                break;
            }
        }
        return APP_CONTROL_ERROR_NONE;
    });
}

int app_control_send_launch_request(app_control_h app_control, app_control_reply_cb callback, void* user_data) {
    return guarded<int>(__func__, APP_CONTROL_ERROR_LAUNCH_FAILED, [&]() -> int {
        const app_control_s* control = AppControls::get().find(app_control);
        if (control == nullptr) {
            return APP_CONTROL_ERROR_INVALID_PARAMETER;
        }
        if (!control->appId) {
            return APP_CONTROL_ERROR_APP_NOT_FOUND;
        }
        return Launcher::get().send(*control, callback, user_data);
    });
}

int app_control_get_caller(app_control_h app_control, char** id) {
    return withControl(__func__, app_control, [&](app_control_s& control) {
        if (id == nullptr) {
            return APP_CONTROL_ERROR_INVALID_PARAMETER;
        }
        if (control.caller.empty()) {
            return APP_CONTROL_ERROR_KEY_NOT_FOUND;
        }
        *id = host::copyForCaller(control.caller);
        return APP_CONTROL_ERROR_NONE;
    });
}

int app_control_is_reply_requested(app_control_h app_control, bool* requested) {
    return withControl(__func__, app_control, [&](app_control_s& control) {
        if (requested == nullptr) {
            return APP_CONTROL_ERROR_INVALID_PARAMETER;
        }
        *requested = control.answer != nullptr;
        return APP_CONTROL_ERROR_NONE;
    });
}

int app_control_reply_to_launch_request(app_control_h reply, app_control_h request, app_control_result_e result) {
    return withControl(__func__, request, [&](app_control_s& received) {
        const app_control_s* answer = AppControls::get().find(reply);
        if (answer == nullptr || received.answer == nullptr) {
            return APP_CONTROL_ERROR_INVALID_PARAMETER;
        }
        host::answerLaunch(received.answer.release(), result, answer->extraData);
        if (!received.isDelivered) {
            AppControls::get().remove(request);
        }
        host::Bus::get().flush();
        return APP_CONTROL_ERROR_NONE;
    });
}
