#ifndef SERVICE_APP_H
#define SERVICE_APP_H

#include <stdbool.h>

#include "app_common.h"
#include "app_control.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Brings the application up; returning false ends it before the main loop runs.
typedef bool (*service_app_create_cb)(void* user_data);

/// Called once after the main loop has ended.
typedef void (*service_app_terminate_cb)(void* user_data);

/// Called for each launch request, the one that started the process first.
typedef void (*service_app_control_cb)(app_control_h app_control, void* user_data);

typedef struct {
    service_app_create_cb create;
    service_app_terminate_cb terminate;
    service_app_control_cb app_control;
} service_app_lifecycle_callback_s;

/// Runs the application: create, then launch requests on the main loop until service_app_exit(), then terminate.
/// Returns 0, or a negative error when the application could not start or `create` refused.
int service_app_main(int argc, char** argv, service_app_lifecycle_callback_s* callback, void* user_data);

/// Ends the main loop.
void service_app_exit(void);

/// Listens to a system event. Returns 0 or a negative error; release with service_app_remove_event_handler().
int service_app_add_event_handler(app_event_handler_h* handler, app_event_type_e event_type, app_event_cb callback,
                                  void* user_data);

/// Ends the listening and releases the handle. Returns 0 or a negative error.
int service_app_remove_event_handler(app_event_handler_h event_handler);

#ifdef __cplusplus
}
#endif

#endif
