#include <app_control.h>

#include <algorithm>

#include "fake_platform.h"

using fake::answer;
using fake::FakePlatform;
using fake::invalidParameter;

namespace fake {

void Launches::answer(std::size_t index, const std::optional<std::string>& result) {
    const Launch launch = sent.at(index);
    app_control_s request{launch.appId, launch.extraData};
    app_control_s reply;
    if (result) {
        reply.extraData.emplace_back("result", *result);
    }
    launch.reply(&request, &reply, APP_CONTROL_RESULT_SUCCEEDED, launch.userData);
}

} // namespace fake

namespace {

std::string textOf(const app_control_s& request) {
    std::string text = request.appId.value_or("");
    for (const auto& [key, value] : request.extraData) {
        text.append(" ").append(key).append("=").append(value);
    }
    return text;
}

int verdictOnKey(const std::string& key) {
    if (key.empty()) {
        return invalidParameter;
    }
    const bool isInternal = key.rfind("__AUL_", 0) == 0 || key.rfind("__APP_SVC_", 0) == 0;
    return isInternal ? APP_CONTROL_ERROR_KEY_REJECTED : APP_CONTROL_ERROR_NONE;
}

template <typename ExtraData>
auto findKey(ExtraData& extraData, const std::string& key) {
    return std::find_if(extraData.begin(), extraData.end(), [&](const auto& pair) { return pair.first == key; });
}

} // namespace

int app_control_create(app_control_h* app_control) {
    return answer({"app_control_create"}, {app_control},
                  [&] { *app_control = *FakePlatform::current().launches.handles.insert(new app_control_s).first; });
}

int app_control_destroy(app_control_h app_control) {
    return answer({"app_control_destroy"}, {app_control}, [&] {
        if (FakePlatform::current().launches.handles.erase(app_control) == 0) {
            return invalidParameter;
        }
        delete app_control;
        return 0;
    });
}

int app_control_set_app_id(app_control_h app_control, const char* app_id) {
    return answer({"app_control_set_app_id", app_id}, {app_control},
                  [&] { app_control->appId = app_id != nullptr ? std::optional<std::string>(app_id) : std::nullopt; });
}

int app_control_get_app_id(app_control_h app_control, char** app_id) {
    return answer({"app_control_get_app_id"}, {app_control, app_id}, [&] {
        *app_id = app_control->appId ? FakePlatform::current().handOut(*app_control->appId) : nullptr;
    });
}

int app_control_add_extra_data(app_control_h app_control, const char* key, const char* value) {
    return answer({"app_control_add_extra_data", key, value}, {app_control, key, value}, [&] {
        const int verdict = *value == '\0' ? invalidParameter : verdictOnKey(key);
        if (verdict == APP_CONTROL_ERROR_NONE) {
            const auto pair = findKey(app_control->extraData, key);
            if (pair != app_control->extraData.end()) {
                app_control->extraData.erase(pair);
            }
            app_control->extraData.emplace_back(key, value);
        }
        return verdict;
    });
}

int app_control_get_extra_data(app_control_h app_control, const char* key, char** value) {
    return answer({"app_control_get_extra_data", key}, {app_control, key, value}, [&]() -> int {
        if (const int verdict = verdictOnKey(key)) {
            return verdict;
        }
        const auto pair = findKey(app_control->extraData, key);
        if (pair == app_control->extraData.end()) {
            return APP_CONTROL_ERROR_KEY_NOT_FOUND;
        }
        *value = FakePlatform::current().handOut(pair->second);
        return APP_CONTROL_ERROR_NONE;
    });
}

int app_control_foreach_extra_data(app_control_h app_control, app_control_extra_data_cb callback, void* user_data) {
    return answer({"app_control_foreach_extra_data"}, {app_control}, [&] {
        if (callback == nullptr) {
            return invalidParameter;
        }
        for (const auto& [key, value] : app_control->extraData) {
            if (!callback(app_control, key.c_str(), user_data)) {
                break;
            }
        }
        return 0;
    });
}

int app_control_send_launch_request(app_control_h app_control, app_control_reply_cb callback, void* user_data) {
    const auto text = app_control == nullptr ? std::string("(null)") : textOf(*app_control);
    return answer({"app_control_send_launch_request", text}, {app_control}, [&]() -> int {
        auto& launches = FakePlatform::current().launches;
        if (launches.missing.count(app_control->appId.value_or("")) != 0) {
            return APP_CONTROL_ERROR_APP_NOT_FOUND;
        }
        launches.sent.push_back({*app_control->appId, app_control->extraData, callback, user_data});
        return APP_CONTROL_ERROR_NONE;
    });
}

int app_control_get_caller(app_control_h app_control, char** id) {
    return answer({"app_control_get_caller"}, {app_control, id},
                  [&] { *id = FakePlatform::current().handOut("com.velmor.quillon.consumer"); });
}

int app_control_is_reply_requested(app_control_h app_control, bool* requested) {
    return answer({"app_control_is_reply_requested"}, {app_control, requested}, [&] { *requested = false; });
}

int app_control_reply_to_launch_request(app_control_h reply, app_control_h request, app_control_result_e result) {
    return answer({"app_control_reply_to_launch_request", static_cast<int>(result)}, {reply, request}, [] {});
}
