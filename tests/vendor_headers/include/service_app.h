#pragma once
#include <app_common.h>
#include <app_control.h>
#include <stdbool.h>
#ifdef __cplusplus
extern "C" {
#endif
typedef bool (*service_app_create_cb)(void*);
typedef void (*service_app_terminate_cb)(void*);
typedef void (*service_app_control_cb)(app_control_h, void*);
typedef struct service_app_lifecycle_callbacks {
    service_app_create_cb create;
    service_app_terminate_cb terminate;
    service_app_control_cb app_control;
} service_app_lifecycle_callback_s;
int service_app_main(int, char**, service_app_lifecycle_callback_s*, void*);
void service_app_exit(void);
int service_app_add_event_handler(app_event_handler_h*, app_event_type_e, app_event_cb, void*);
int service_app_remove_event_handler(app_event_handler_h);
#ifdef __cplusplus
}
#endif
