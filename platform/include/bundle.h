#ifndef BUNDLE_H
#define BUNDLE_H

#ifdef __cplusplus
extern "C" {
#endif

/// An ordered map from string to string.
typedef struct _bundle_t bundle;

typedef enum {
    BUNDLE_ERROR_NONE = 0,
    BUNDLE_ERROR_OUT_OF_MEMORY = -12,
    BUNDLE_ERROR_INVALID_PARAMETER = -22,
    BUNDLE_ERROR_KEY_NOT_AVAILABLE = -126,
    BUNDLE_ERROR_KEY_EXISTS = -0x01180000 | 0x01
} bundle_error_e;

/// An empty bundle, or null when memory is short. The caller releases it with bundle_free().
bundle* bundle_create(void);

/// Releases a bundle and its texts. Returns 0 or a bundle_error_e.
int bundle_free(bundle* b);

/// Adds a copy of the pair; a key that is there already answers BUNDLE_ERROR_KEY_EXISTS, an empty one
/// BUNDLE_ERROR_INVALID_PARAMETER.
int bundle_add_str(bundle* b, const char* key, const char* str);

/// Points *str at the bundle's own text; a missing key answers BUNDLE_ERROR_KEY_NOT_AVAILABLE and leaves *str alone.
int bundle_get_str(bundle* b, const char* key, char** str);

#ifdef __cplusplus
}
#endif

#endif
