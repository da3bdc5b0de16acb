#ifndef TESK_CONSUMER_VCONF_H
#define TESK_CONSUMER_VCONF_H

#include "TeskConsumerLog.h"

/// The integers of the device's shared keys (TeskConsumerKeys).
namespace TeskConsumerVconf {

/// The value of a key, 0 when it cannot be read: a read that fails may have overwritten the value all the same.
int get(const char* key);

/// Writes a key. A failure is logged in the caller's name and changes nothing else.
void set(const char* key, int value, const TeskConsumerPlace& place = TeskConsumerPlace::here());

} // namespace TeskConsumerVconf

#endif
