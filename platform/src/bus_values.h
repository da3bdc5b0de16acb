#ifndef PLATFORM_BUS_VALUES_H
#define PLATFORM_BUS_VALUES_H

#include <glib.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace host {

/// What signals and settings hold. Anyone on the device can send the one and write the other, so these functions check
/// the type: each returns a value of one type, and nothing for any other type or for null.

std::optional<int> intOf(GVariant* value);
std::optional<std::string> textOf(GVariant* value);
std::optional<std::pair<int, int>> intPairOf(GVariant* value);

/// The one number that a signal carries.
std::optional<int> intArgumentOf(GVariant* arguments);

/// The paths that a signal of the settings store's writer names; none for arguments of another type.
std::vector<std::string> changedPathsOf(GVariant* arguments);

} // namespace host

#endif
