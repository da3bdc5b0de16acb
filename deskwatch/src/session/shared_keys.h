#ifndef DESKWATCH_SHARED_KEYS_H
#define DESKWATCH_SHARED_KEYS_H

#include <functional>
#include <string>
#include <vector>

#include "session/device_session.h"
#include "session/value.h"

namespace deskwatch {

// The keys that the applications of a watch share, of the watch that this process is on (see DeviceSession).

/// Throws std::runtime_error when the text is not a key, on any watch.
void requireKey(const std::string& key);

/// The value of a key; none when it is not set. Throws std::runtime_error when the text is not a key.
Value readKey(const std::string& key);

/// Sets a key to a number or a text. Throws std::runtime_error when the text is not a key or the store cannot be
/// written.
void writeKey(const std::string& key, const Value& value);

/// Reports the values of keys in order, and then each value that a key is set to, the same one included, until `tell`
/// returns false. Throws std::runtime_error when one of the texts is not a key or was never set.
void followKeys(const std::vector<std::string>& keys,
                const std::function<bool(const std::string& key, const Value& value)>& tell);

/// A value as typed by a user: a number if it looks like one, else a text.
Value typedValue(const std::string& text);

} // namespace deskwatch

#endif
