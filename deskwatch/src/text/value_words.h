#ifndef DESKWATCH_VALUE_WORDS_H
#define DESKWATCH_VALUE_WORDS_H

#include <optional>
#include <string>
#include <string_view>

#include "session/value.h"

namespace deskwatch {

/// The value of a setting or key for a reader, with its name where the number stands for something: `128 alphanumeric`.
std::string wordedValue(std::string_view name, const Value& value);

/// The same for a number; "-" for none.
std::string wordedNumber(std::string_view name, const std::optional<int>& number);

} // namespace deskwatch

#endif
