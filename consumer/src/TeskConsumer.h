#ifndef TESK_CONSUMER_H
#define TESK_CONSUMER_H

#include <app_common.h>
#include <service_app.h>

#include <array>

/// The service application: brings everything up, follows the framework's life cycle and hears system events. The work
/// itself arrives over the message port.
class TeskConsumer {
public:
    /// The process's one instance.
    static TeskConsumer* getInstance();

    TeskConsumer();
    virtual ~TeskConsumer();
    TeskConsumer(const TeskConsumer&) = delete;
    TeskConsumer& operator=(const TeskConsumer&) = delete;

    /// Prepares the life-cycle callbacks and listens to the system events.
    void init();

    /// Runs the application until it ends. Returns the framework's result.
    int start(int argc, char** argv);

    /// Ends the application.
    void deinit();

    static bool appCreated(void* userData);
    static void appTerminated(void* userData);
    static void appControl(app_control_h appControl, void* userData);
    static void appLowMemory(app_event_info_h event, void* userData);
    static void appLowBattery(app_event_info_h event, void* userData);
    static void appDeviceOrientationChanged(app_event_info_h event, void* userData);

private:
    service_app_lifecycle_callback_s callbacks;
    std::array<app_event_handler_h, 6> handlers{}; ///< by event type
};

#endif
