#ifndef EXHAUSTIVE_FIELD_H
#define EXHAUSTIVE_FIELD_H

#include <functional>
#include <string>
#include <vector>

#include "rules/TeskPolicyData.h"

using Value = std::int32_t;
using Values = std::vector<Value>;

/// A number of the policy record, and what becomes of the values that the accounts have for it.
struct Field {
    std::string name;
    Value TeskPolicyData::*place;

    /// The merged value of the accounts' values, in list order.
    std::function<Value(const Values&)> winner;

    /// Whether the first value is less strict than the second; null for a field that is not enforced.
    std::function<bool(Value, Value)> isWeaker;

    /// Values that a sender has a reason to send.
    Values usual;

    /// Values that no sender should send, and that may be stored all the same.
    Values odd;

    Values allValues() const;
};

/// All numbers of the record, in its order.
const std::vector<Field>& fields();

/// Calls back with each list of at most so many of the values.
void forEachList(const Values& values, std::size_t most, const std::function<void(const Values&)>& visit);

/// An account list whose members differ in one field only.
TeskPolicyDataList accountsWith(const Field& field, const Values& values);

/// "3, 0, -1"
std::string textOf(const Values& values);

#endif
