#pragma once
#ifdef __cplusplus
extern "C" {
#endif
typedef struct _bundle_t bundle;
typedef enum {
    BUNDLE_ERROR_NONE,
    BUNDLE_ERROR_OUT_OF_MEMORY = -12,
    BUNDLE_ERROR_INVALID_PARAMETER = -22,
    BUNDLE_ERROR_KEY_NOT_AVAILABLE = -126,
    BUNDLE_ERROR_KEY_EXISTS = -0x01180000 | 0x01
} bundle_error_e;
bundle* bundle_create(void);
int bundle_free(bundle*);
int bundle_add_str(bundle*, const char*, const char*);
int bundle_get_str(bundle*, const char*, char**);
#ifdef __cplusplus
}
#endif
