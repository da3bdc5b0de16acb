#ifndef FAKE_PREFERENCE_STORE_H
#define FAKE_PREFERENCE_STORE_H

#include <map>
#include <string>
#include <variant>

namespace fake {

/// The application's preferences: a typed value for each key that was set.
using PreferenceStore = std::map<std::string, std::variant<int, bool, double, std::string>>;

} // namespace fake

#endif
