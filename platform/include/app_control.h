#ifndef APP_CONTROL_H
#define APP_CONTROL_H

#include <stdbool.h>

#ifdef __cplusplus
extern "C" {
#endif

/// A launch request, or the reply to one: an application id and string pairs.
typedef struct app_control_s* app_control_h;

typedef enum {
    APP_CONTROL_RESULT_APP_STARTED = 1,
    APP_CONTROL_RESULT_SUCCEEDED = 0,
    APP_CONTROL_RESULT_FAILED = -1,
    APP_CONTROL_RESULT_CANCELED = -2
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
    APP_CONTROL_ERROR_LAUNCH_REJECTED = -0x01100000 | 0x23,
    APP_CONTROL_ERROR_LAUNCH_FAILED = -0x01100000 | 0x24,
    APP_CONTROL_ERROR_TIMED_OUT = -1073741823,
    APP_CONTROL_ERROR_IO_ERROR = -5
} app_control_error_e;

/// Called on the main loop when the launched application answers; both handles belong to the framework.
typedef void (*app_control_reply_cb)(app_control_h request, app_control_h reply, app_control_result_e result,
                                     void* user_data);

/// Called for each extra data pair; returning false ends the walk.
typedef bool (*app_control_extra_data_cb)(app_control_h app_control, const char* key, void* user_data);

/// Makes an empty request; the caller releases it with app_control_destroy(). Returns 0 or a negative error.
int app_control_create(app_control_h* app_control);

/// Releases a request that the caller made. Returns 0 or a negative error.
int app_control_destroy(app_control_h app_control);

/// Names the application to launch; null names none. Returns 0 or a negative error.
int app_control_set_app_id(app_control_h app_control, const char* app_id);

/// The application to launch, null when none was named. The caller releases *app_id with free().
int app_control_get_app_id(app_control_h app_control, char** app_id);

/// Adds a pair as the last one, in place of a pair with the same key. An empty key or value answers
/// APP_CONTROL_ERROR_INVALID_PARAMETER, a key that begins with "__AUL_" or "__APP_SVC_", which are the platform's own,
/// APP_CONTROL_ERROR_KEY_REJECTED. Returns 0 or a negative error.
int app_control_add_extra_data(app_control_h app_control, const char* key, const char* value);

/// The value of a key, or APP_CONTROL_ERROR_KEY_NOT_FOUND. The caller releases *value with free().
int app_control_get_extra_data(app_control_h app_control, const char* key, char** value);

/// Walks the pairs in order. Returns 0 or a negative error.
int app_control_foreach_extra_data(app_control_h app_control, app_control_extra_data_cb callback, void* user_data);

/// Sends the request and starts the application when it does not run. The request may be destroyed as soon as this
/// returns; a null callback means that no reply is wanted. Returns 0 or a negative error at once, which is
/// APP_CONTROL_ERROR_APP_NOT_FOUND when no application is named or known by that name; a reply may come at any later
/// time.
int app_control_send_launch_request(app_control_h app_control, app_control_reply_cb callback, void* user_data);

/// The id of the application that sent the request. The caller releases *id with free().
int app_control_get_caller(app_control_h app_control, char** id);

/// Whether the sender waits for a reply. Returns 0 or a negative error.
int app_control_is_reply_requested(app_control_h app_control, bool* requested);

/// Answers a received request with the pairs of `reply`, which stays the caller's. Returns 0 or a negative error.
int app_control_reply_to_launch_request(app_control_h reply, app_control_h request, app_control_result_e result);

#ifdef __cplusplus
}
#endif

#endif
