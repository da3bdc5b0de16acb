#ifndef APP_PREFERENCE_H
#define APP_PREFERENCE_H

#include <stdbool.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    PREFERENCE_ERROR_NONE = 0,
    PREFERENCE_ERROR_INVALID_PARAMETER = -22,
    PREFERENCE_ERROR_OUT_OF_MEMORY = -12,
    PREFERENCE_ERROR_NO_KEY = -0x01100000 | 0x30,
    PREFERENCE_ERROR_IO_ERROR = -5
} preference_error_e;

/// The application's own persistent values. Every operation returns 0 or a preference_error_e; a getter whose key is
/// missing answers PREFERENCE_ERROR_NO_KEY and leaves *value alone, one whose key has another type answers
/// PREFERENCE_ERROR_INVALID_PARAMETER and has overwritten a number or a boolean. An empty key answers
/// PREFERENCE_ERROR_IO_ERROR.
int preference_set_int(const char* key, int value);
int preference_get_int(const char* key, int* value);
int preference_set_boolean(const char* key, bool value);
int preference_get_boolean(const char* key, bool* value);
int preference_set_double(const char* key, double value);
int preference_get_double(const char* key, double* value);
int preference_set_string(const char* key, const char* value);

/// The caller releases *value with free().
int preference_get_string(const char* key, char** value);

int preference_is_existing(const char* key, bool* existing);

#ifdef __cplusplus
}
#endif

#endif
