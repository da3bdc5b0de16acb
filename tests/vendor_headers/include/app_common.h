#pragma once
#ifdef __cplusplus
extern "C" {
#endif
enum app_event_type {
    APP_EVENT_LOW_MEMORY,
    APP_EVENT_LOW_BATTERY,
    APP_EVENT_LANGUAGE_CHANGED,
    APP_EVENT_DEVICE_ORIENTATION_CHANGED,
    APP_EVENT_REGION_FORMAT_CHANGED,
    APP_EVENT_SUSPENDED_STATE_CHANGED
};
typedef enum app_event_type app_event_type_e;
typedef struct app_event_handler* app_event_handler_h;
typedef struct app_event_info* app_event_info_h;
typedef void (*app_event_cb)(app_event_info_h, void*);
char* app_get_data_path(void);
int app_get_id(char**);
#ifdef __cplusplus
}
#endif
