#include "TeskConsumerVconf.h"

#include <vconf.h>

int TeskConsumerVconf::get(const char* key) {
    int value = 0;
    return vconf_get_int(key, &value) == 0 ? value : 0;
}

void TeskConsumerVconf::set(const char* key, int value, const TeskConsumerPlace& place) {
    const int result = vconf_set_int(key, value);
    if (result != 0) {
        TESK_WARN_AT(place, "vconf_set_int(%s) failed: [%d]", key, result);
    }
}
