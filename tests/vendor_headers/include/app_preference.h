#pragma once
#include <stdbool.h>
#ifdef __cplusplus
extern "C" {
#endif
typedef enum {
    PREFERENCE_ERROR_NONE,
    PREFERENCE_ERROR_INVALID_PARAMETER = -22,
    PREFERENCE_ERROR_OUT_OF_MEMORY = -12,
    PREFERENCE_ERROR_NO_KEY = -0x01100000 | 0x30,
    PREFERENCE_ERROR_IO_ERROR = -5
} preference_error_e;
int preference_set_int(const char*, int);
int preference_get_int(const char*, int*);
int preference_set_boolean(const char*, bool);
int preference_get_boolean(const char*, bool*);
int preference_set_double(const char*, double);
int preference_get_double(const char*, double*);
int preference_set_string(const char*, const char*);
int preference_get_string(const char*, char**);
int preference_is_existing(const char*, bool*);
#ifdef __cplusplus
}
#endif
