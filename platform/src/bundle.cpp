#include "bundle.h"

#include <new>

#include "bundle_handle.h"
#include "guard.h"

using host::guarded;

bundle* bundle_create(void) {
    return new (std::nothrow) bundle;
}

int bundle_free(bundle* b) {
    if (b == nullptr) {
        return BUNDLE_ERROR_INVALID_PARAMETER;
    }
    delete b;
    return BUNDLE_ERROR_NONE;
}

int bundle_add_str(bundle* b, const char* key, const char* str) {
    if (b == nullptr || key == nullptr || *key == '\0' || str == nullptr) {
        return BUNDLE_ERROR_INVALID_PARAMETER;
    }
    return guarded<int>(__func__, BUNDLE_ERROR_OUT_OF_MEMORY, [&] {
        if (b->pairs.find(key) != nullptr) {
            return BUNDLE_ERROR_KEY_EXISTS;
        }
        b->pairs.set(key, str);
        return BUNDLE_ERROR_NONE;
    });
}

int bundle_get_str(bundle* b, const char* key, char** str) {
    if (b == nullptr || key == nullptr || str == nullptr) {
        return BUNDLE_ERROR_INVALID_PARAMETER;
    }
    return guarded<int>(__func__, BUNDLE_ERROR_OUT_OF_MEMORY, [&] {
        std::string* value = b->pairs.find(key);
        if (value == nullptr) {
            return BUNDLE_ERROR_KEY_NOT_AVAILABLE;
        }
        *str = value->data();
        return BUNDLE_ERROR_NONE;
    });
}
