#ifndef DESKWATCH_LOCATED_JSON_H
#define DESKWATCH_LOCATED_JSON_H

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace deskwatch {

/// A JSON value that knows its line. Members keep their order, and one that is given twice is there twice.
struct LocatedJson {
    enum class Kind { Null, Flag, Integer, Fraction, Text, Array, Object };

    struct Member;

    Kind kind = Kind::Null;
    /// The line in which it begins, from 1; for a member's value that of the name.
    std::size_t line = 1;
    bool flag = false;
    std::int64_t integer = 0;
    std::string text;
    std::vector<LocatedJson> elements;
    std::vector<Member> members;

    /// The member of that name that counts: the last one. Null when there is none.
    const LocatedJson* find(const std::string& name) const;

    /// The value as it would be written, a long one by its kind.
    std::string shown() const;
};

struct LocatedJson::Member {
    std::string name;
    LocatedJson value;
};

/// Reads a text that is valid JSON. Throws nlohmann::json::exception for another, and std::runtime_error for one that
/// is nested too deep.
LocatedJson locatedJson(const std::string& text);

} // namespace deskwatch

#endif
