#ifndef DESKWATCH_ELEMENT_RULE_H
#define DESKWATCH_ELEMENT_RULE_H

#include <limits>
#include <string_view>

namespace deskwatch {

/// What a watch does with an element of a provisioning document. MailApplication: the mail application has to see to
/// it. NotThere: the watch has nothing that it is about. Unknown: it is not an element of a provisioning document.
enum class Support { Enforced, Stored, NotDeliverable, MailApplication, NotThere, Unknown };

/// How an element's number becomes a member's value.
enum class Conversion { None, Flag, Number, PasswordMode };

/// An element that a provisioning document may hold.
struct ElementRule {
    const char* name;
    Support support;
    Conversion conversion;
    const char* member;
    int least;
    int most;
    /// What an absent or empty element means.
    int absent;
    /// Whether it means nothing in a document that requires no password.
    bool isPasswordRule;
    /// What an administrator may not expect, the first and the last value for which it is so, and the element that,
    /// when it is 1, keeps it from being so; the texts may be empty.
    const char* remark;
    int remarkLeast;
    int remarkMost;
    const char* remarkUnless;
};

/// An element that no message carries.
struct OtherElement {
    const char* name;
    Support support;
    /// The value that demands nothing, beside an empty one.
    const char* idle;
};

/// What the mail application writes for a password that must be alphanumeric.
inline constexpr int alphanumericMode = 64;

inline constexpr int anyNumber = std::numeric_limits<int>::max();

/// The rule for an element of this name; null when neither the watch nor the protocol looks at its value.
const ElementRule* elementRule(std::string_view name);

} // namespace deskwatch

#endif
