#ifndef DESKWATCH_POLICY_SETTING_H
#define DESKWATCH_POLICY_SETTING_H

#include <string>
#include <string_view>
#include <vector>

#include "policy_files/policy_file.h"

namespace deskwatch {

/// In what an element counts a time that administrators write as `[days.]hours:minutes:seconds`.
enum class TimeUnit { None, Seconds, Days };

/// An element and what it is called where administrators keep it.
struct PolicyName {
    const char* element;
    /// The property of an Exchange policy. The element's own name is its older one.
    const char* property;
    /// The key of Z-Push and grommunio, and another one; may be empty.
    const char* key;
    const char* otherKey;
    TimeUnit unit;
};

/// A word for a value of an element.
struct ValueWord {
    const char* word;
    const char* value;
};

/// By which names a file goes.
enum class Naming { Properties, Keys };

/// A setting as a file has it.
struct PolicySetting {
    std::string name;
    std::string value;
    bool isList = false;
    long line = 0;
};

/// The most settings that a policy is taken for one with, and the most policies that share what they leave out. Real
/// ones have fewer than a hundred.
inline constexpr std::size_t mostSettings = 1000;
inline constexpr std::size_t mostSections = 100;

/// Whether a name is that of an element, as that kind of file writes it.
bool isPolicyName(const std::string& name, Naming naming);

/// Whether a name is probably meant to be that of an element.
bool isNearPolicyName(const std::string& name, Naming naming);

/// The parameter of `Set-MobileDeviceMailboxPolicy` that sets an element; empty for none.
std::string parameterOf(std::string_view element);

/// A policy of settings. Words are taken in upper and lower case. What a server does not send is left out. A time that
/// is not one is a fault of the policy. Throws std::runtime_error for more settings than a policy has.
FilePolicy policyOf(const std::string& file, const std::vector<PolicySetting>& settings, Naming naming);

/// Adds a policy to a file, if it has any element.
void addPolicy(PolicyFile& content, FilePolicy policy);

} // namespace deskwatch

#endif
