#ifndef DESKWATCH_RECORDED_VALUE_H
#define DESKWATCH_RECORDED_VALUE_H

#include <nlohmann/json.hpp>

#include "c_owners.h"

namespace deskwatch {

/// A value of the settings store as a recording has it: a number, a text, null for none, or for any other type
/// {"value": TEXT} with the form that GVariant prints, its type included.
nlohmann::ordered_json recordedValue(GVariant* value);

/// The value that a recording means; null for none. Throws std::runtime_error when it is not one.
c::VariantOwner valueOfRecorded(const nlohmann::ordered_json& recorded);

} // namespace deskwatch

#endif
