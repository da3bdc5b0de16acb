#ifndef APP_COMMON_H
#define APP_COMMON_H

#ifdef __cplusplus
extern "C" {
#endif

/// The system events that an application can listen to.
typedef enum {
    APP_EVENT_LOW_MEMORY = 0,
    APP_EVENT_LOW_BATTERY = 1,
    APP_EVENT_LANGUAGE_CHANGED = 2,
    APP_EVENT_DEVICE_ORIENTATION_CHANGED = 3,
    APP_EVENT_REGION_FORMAT_CHANGED = 4,
    APP_EVENT_SUSPENDED_STATE_CHANGED = 5
} app_event_type_e;

typedef struct app_event_handler* app_event_handler_h;
typedef struct app_event_info* app_event_info_h;

/// Called on the main loop for each event; event_info belongs to the framework and lives for the call.
typedef void (*app_event_cb)(app_event_info_h event_info, void* user_data);

/// The application's data folder: an absolute path with a trailing '/', or null. The caller releases it with free().
char* app_get_data_path(void);

/// The application's id. Returns 0, or a negative error and leaves *id alone. The caller releases *id with free().
int app_get_id(char** id);

#ifdef __cplusplus
}
#endif

#endif
