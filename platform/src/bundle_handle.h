#ifndef PLATFORM_BUNDLE_HANDLE_H
#define PLATFORM_BUNDLE_HANDLE_H

#include "string_map.h"

/// What a bundle handle points at.
struct _bundle_t {
    host::StringMap pairs;
};

#endif
