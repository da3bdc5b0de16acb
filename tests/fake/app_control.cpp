#include <app_control.h>

#include <algorithm>

#include "fake_platform.h"

using fake::FakePlatform;

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
    std::string text = request.appId;
    for (const auto& [key, value] : request.extraData) {
        text.append(" ").append(key).append("=").append(value);
    }
    return text;
}

template <typename ExtraData>
auto findKey(ExtraData& extraData, const std::string& key) {
    return std::find_if(extraData.begin(), extraData.end(), [&](const auto& pair) { return pair.first == key; });
}

} // namespace

int app_control_create(app_control_h* app_control) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("app_control_create")) {
        return *fault;
    }
    if (app_control == nullptr) {
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    }
    *app_control = *platform.launches.handles.insert(new app_control_s).first;
    return APP_CONTROL_ERROR_NONE;
}

int app_control_destroy(app_control_h app_control) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("app_control_destroy")) {
        return *fault;
    }
    if (platform.launches.handles.erase(app_control) == 0) {
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    }
    delete app_control;
    return APP_CONTROL_ERROR_NONE;
}

int app_control_set_app_id(app_control_h app_control, const char* app_id) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("app_control_set_app_id", app_id)) {
        return *fault;
    }
    if (app_control == nullptr || app_id == nullptr) {
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    }
    app_control->appId = app_id;
    return APP_CONTROL_ERROR_NONE;
}

int app_control_get_app_id(app_control_h app_control, char** app_id) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("app_control_get_app_id")) {
        return *fault;
    }
    if (app_control == nullptr || app_id == nullptr) {
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    }
    *app_id = app_control->appId.empty() ? nullptr : platform.handOut(app_control->appId);
    return APP_CONTROL_ERROR_NONE;
}

int app_control_add_extra_data(app_control_h app_control, const char* key, const char* value) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("app_control_add_extra_data", key, value)) {
        return *fault;
    }
    if (app_control == nullptr || key == nullptr || value == nullptr) {
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    }
    const auto pair = findKey(app_control->extraData, key);
    if (pair != app_control->extraData.end()) {
        pair->second = value;
    } else {
        app_control->extraData.emplace_back(key, value);
    }
    return APP_CONTROL_ERROR_NONE;
}

int app_control_get_extra_data(app_control_h app_control, const char* key, char** value) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("app_control_get_extra_data", key)) {
        return *fault;
    }
    if (app_control == nullptr || key == nullptr || value == nullptr) {
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    }
    const auto pair = findKey(app_control->extraData, key);
    if (pair == app_control->extraData.end()) {
        return APP_CONTROL_ERROR_KEY_NOT_FOUND;
    }
    *value = platform.handOut(pair->second);
    return APP_CONTROL_ERROR_NONE;
}

int app_control_foreach_extra_data(app_control_h app_control, app_control_extra_data_cb callback, void* user_data) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("app_control_foreach_extra_data")) {
        return *fault;
    }
    if (app_control == nullptr || callback == nullptr) {
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    }
    for (const auto& [key, value] : app_control->extraData) {
        if (!callback(app_control, key.c_str(), user_data)) {
            break;
        }
    }
    return APP_CONTROL_ERROR_NONE;
}

int app_control_send_launch_request(app_control_h app_control, app_control_reply_cb callback, void* user_data) {
    auto& platform = FakePlatform::current();
    const auto text = app_control == nullptr ? std::string("(null)") : textOf(*app_control);
    if (const auto fault = platform.call("app_control_send_launch_request", text)) {
        return *fault;
    }
    if (app_control == nullptr || app_control->appId.empty()) {
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    }
    if (platform.launches.missingApps.count(app_control->appId) != 0) {
        return APP_CONTROL_ERROR_APP_NOT_FOUND;
    }
    platform.launches.sent.push_back({app_control->appId, app_control->extraData, callback, user_data});
    return APP_CONTROL_ERROR_NONE;
}

int app_control_get_caller(app_control_h app_control, char** id) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("app_control_get_caller")) {
        return *fault;
    }
    if (app_control == nullptr || id == nullptr) {
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    }
    *id = platform.handOut("com.velmor.quillon.consumer");
    return APP_CONTROL_ERROR_NONE;
}

int app_control_is_reply_requested(app_control_h app_control, bool* requested) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("app_control_is_reply_requested")) {
        return *fault;
    }
    if (app_control == nullptr || requested == nullptr) {
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    }
    *requested = false;
    return APP_CONTROL_ERROR_NONE;
}

int app_control_reply_to_launch_request(app_control_h reply, app_control_h request, app_control_result_e result) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("app_control_reply_to_launch_request", static_cast<int>(result))) {
        return *fault;
    }
    return reply == nullptr || request == nullptr ? APP_CONTROL_ERROR_INVALID_PARAMETER : APP_CONTROL_ERROR_NONE;
}
