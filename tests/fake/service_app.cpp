#include <service_app.h>

#include <algorithm>
#include <stdexcept>

#include "fake_platform.h"

using fake::answer;
using fake::FakePlatform;
using fake::invalidParameter;

namespace fake {

void ServiceScript::launch(const std::vector<std::pair<std::string, std::string>>& extraData) const {
    if (callbacks == nullptr) {
        throw std::logic_error("launch: the service is not running");
    }
    app_control_s request{FakePlatform::current().appId, extraData};
    callbacks->app_control(&request, userData);
}

void ServiceScript::fire(app_event_type_e event) const {
    for (const auto* handler : handlers) {
        if (handler->type == event) {
            handler->callback(nullptr, handler->userData);
        }
    }
}

} // namespace fake

char* app_get_data_path(void) {
    auto& platform = FakePlatform::current();
    return platform.call("app_get_data_path") ? nullptr : platform.handOut(platform.dataPath);
}

int app_get_id(char** id) {
    return answer({"app_get_id"}, {id}, [&] {
        auto& platform = FakePlatform::current();
        *id = platform.handOut(platform.appId);
    });
}

int service_app_main(int argc, char** argv, service_app_lifecycle_callback_s* callback, void* user_data) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("service_app_main", argc, argc > 0 ? argv[0] : nullptr)) {
        return *fault;
    }
    auto& service = platform.service;
    if (!callback->create(user_data)) {
        return service.refusal;
    }
    service.callbacks = callback;
    service.userData = user_data;
    if (service.duringMainLoop) {
        service.duringMainLoop();
    }
    service.callbacks = nullptr;
    callback->terminate(user_data);
    return 0;
}

void service_app_exit(void) {
    auto& platform = FakePlatform::current();
    if (!platform.call("service_app_exit")) {
        platform.service.exited = true;
    }
}

int service_app_add_event_handler(app_event_handler_h* handler, app_event_type_e event_type, app_event_cb callback,
                                  void* user_data) {
    return answer({"service_app_add_event_handler", static_cast<int>(event_type)}, {handler}, [&] {
        if (callback == nullptr) {
            return invalidParameter;
        }
        auto& handlers = FakePlatform::current().service.handlers;
        *handler = handlers.emplace_back(new app_event_handler{event_type, callback, user_data});
        return 0;
    });
}

int service_app_remove_event_handler(app_event_handler_h event_handler) {
    return answer({"service_app_remove_event_handler"}, {event_handler}, [&] {
        auto& handlers = FakePlatform::current().service.handlers;
        const auto found = std::find(handlers.begin(), handlers.end(), event_handler);
        if (found == handlers.end()) {
            return invalidParameter;
        }
        delete *found;
        handlers.erase(found);
        return 0;
    });
}
