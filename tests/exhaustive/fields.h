#ifndef EXHAUSTIVE_FIELDS_H
#define EXHAUSTIVE_FIELDS_H

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "rules/TeskPolicyData.h"

using Value = std::int32_t;
using Values = std::vector<Value>;

// The ends of what a field can hold.
constexpr Value smallest = std::numeric_limits<Value>::min();
constexpr Value largest = std::numeric_limits<Value>::max();

/// A number of the policy record, and what is known of it without a look at how it merges.
struct Field {
    std::string name; ///< that of its column
    Value TeskPolicyData::*place;

    /// Whether the first value is less strict than the second; null for a field that is not enforced.
    std::function<bool(Value, Value)> isWeaker;

    /// Values that a sender has a reason to send.
    Values usual;

    /// Values that no sender should send, and that may be stored all the same.
    Values odd;

    Values allValues() const;
};

/// All numbers of the record.
const std::vector<Field>& fields();

/// Calls back with each list of at most so many of the values.
void forEachList(const Values& values, std::size_t most, const std::function<void(const Values&)>& visit);

/// An account list whose members differ in one field only.
TeskPolicyDataList accountsWith(const Field& field, const Values& values);

#endif
