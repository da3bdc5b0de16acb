#pragma once
#include <stdbool.h>
#ifdef __cplusplus
extern "C" {
#endif
typedef struct app_control_s* app_control_h;
typedef enum {
    APP_CONTROL_RESULT_CANCELED = -2,
    APP_CONTROL_RESULT_FAILED = -1,
    APP_CONTROL_RESULT_SUCCEEDED = 0,
    APP_CONTROL_RESULT_APP_STARTED = 1
} app_control_result_e;
typedef enum {
    APP_CONTROL_ERROR_NONE = 0,
    APP_CONTROL_ERROR_INVALID_PARAMETER = -22,
    APP_CONTROL_ERROR_OUT_OF_MEMORY = -12,
    APP_CONTROL_ERROR_PERMISSION_DENIED = -13,
    APP_CONTROL_ERROR_KEY_NOT_FOUND = -126,
    APP_CONTROL_ERROR_APP_NOT_FOUND = -0x01100000 | 0x21,
    APP_CONTROL_ERROR_KEY_REJECTED = -129,
    APP_CONTROL_ERROR_INVALID_DATA_TYPE = -0x01100000 | 0x22,
    APP_CONTROL_ERROR_LAUNCH_REJECTED,
    APP_CONTROL_ERROR_LAUNCH_FAILED,
    APP_CONTROL_ERROR_TIMED_OUT = -1073741823,
    APP_CONTROL_ERROR_IO_ERROR = -5
} app_control_error_e;
typedef void (*app_control_reply_cb)(app_control_h, app_control_h, app_control_result_e, void*);
typedef bool (*app_control_extra_data_cb)(app_control_h, const char*, void*);
int app_control_create(app_control_h*);
int app_control_destroy(app_control_h);
int app_control_set_app_id(app_control_h, const char*);
int app_control_get_app_id(app_control_h, char**);
int app_control_add_extra_data(app_control_h, const char*, const char*);
int app_control_get_extra_data(app_control_h, const char*, char**);
int app_control_foreach_extra_data(app_control_h, app_control_extra_data_cb, void*);
int app_control_send_launch_request(app_control_h, app_control_reply_cb, void*);
int app_control_get_caller(app_control_h, char**);
int app_control_is_reply_requested(app_control_h, bool*);
int app_control_reply_to_launch_request(app_control_h, app_control_h, app_control_result_e);
#ifdef __cplusplus
}
#endif
