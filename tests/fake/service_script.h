#ifndef FAKE_SERVICE_SCRIPT_H
#define FAKE_SERVICE_SCRIPT_H

#include <service_app.h>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

struct app_event_handler {
    app_event_type_e type;
    app_event_cb callback;
    void* userData;
};

namespace fake {

/// The service's life: what happens while its main loop would run, and the events that it listens to.
class ServiceScript {
public:
    /// Runs in place of the main loop, between `create` and `terminate`.
    std::function<void()> duringMainLoop;

    /// What service_app_main returns when `create` refuses to start.
    int refusal = -1;

    /// Whether the service asked to end.
    bool exited = false;

    std::vector<app_event_handler_h> handlers;

    /// Delivers a launch request to the running service.
    void launch(const std::vector<std::pair<std::string, std::string>>& extraData = {}) const;

    /// Tells the service of a system event.
    void fire(app_event_type_e event) const;

    /// The callbacks that service_app_main was given; null outside of it.
    service_app_lifecycle_callback_s* callbacks = nullptr;
    void* userData = nullptr;
};

} // namespace fake

#endif
