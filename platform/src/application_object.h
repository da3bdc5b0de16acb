#ifndef PLATFORM_APPLICATION_OBJECT_H
#define PLATFORM_APPLICATION_OBJECT_H

#include <functional>
#include <memory>

#include "app_control_handle.h"
#include "bus.h"
#include "platform-bus.h"

namespace host {

/// The application as others see it on the bus: takes launch requests while it lives.
class ApplicationObject {
public:
    /// Called for each launch request.
    using Handler = std::function<void(app_control_h request)>;

    /// Throws HostError when the object cannot be put on the bus.
    ApplicationObject(const Bus& bus, Handler handler);

    ApplicationObject(const ApplicationObject&) = delete;
    ApplicationObject& operator=(const ApplicationObject&) = delete;
    ~ApplicationObject();

    /// Hands a request to the application. It lives until the handler returns, or, when its sender waits, until it is
    /// answered or released.
    void deliver(std::unique_ptr<app_control_s> request);

private:
    static gboolean onLaunch(PlatformBusApplication* object, GDBusMethodInvocation* invocation, const char* caller,
                             GVariant* extraData, gboolean replyWanted, gpointer self);
    static gboolean onSettle(PlatformBusApplication* object, GDBusMethodInvocation* invocation, gpointer self);
    static gboolean answerSettle(gpointer invocation);
    static gboolean onAdvance(PlatformBusApplication* object, GDBusMethodInvocation* invocation, guint seconds,
                              gpointer self);
    static gboolean answerAdvance(gpointer invocation);

    Handler handler_;
    c::ObjectOwner<PlatformBusApplication> skeleton_;
};

} // namespace host

#endif
