#ifndef DESKWATCH_VALUE_H
#define DESKWATCH_VALUE_H

#include <string>
#include <variant>
#include <vector>

namespace deskwatch {

/// A number, a text, or nothing where the watch has no value.
using Value = std::variant<std::monostate, int, std::string>;

/// A value and the name that it has on the watch.
struct NamedValue {
    std::string name;
    Value value;

    bool operator==(const NamedValue& other) const { return name == other.name && value == other.value; }
};

/// A stored account: its columns in the order of the table.
using StoredAccount = std::vector<NamedValue>;

} // namespace deskwatch

#endif
