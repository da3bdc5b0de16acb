#ifndef DESKWATCH_POLICY_COMPARISON_H
#define DESKWATCH_POLICY_COMPARISON_H

#include <array>
#include <string>
#include <vector>

#include "provisioning/provisioning_import.h"

namespace deskwatch {

/// One of two policies that are compared.
struct ComparedPolicy {
    std::string file;
    /// What the file calls it; may be empty.
    std::string name;
    /// Whether it is a message, which does not say what no message carries.
    bool isMessage = false;
    ProvisioningImport import;
};

/// Which of two policies.
enum class Side { None, First, Second };

/// A member of the policy set, or an element that no message carries, in two policies.
struct ComparedValue {
    std::string name;
    /// The values as JSON; of an element that demands nothing, empty.
    std::array<std::string, 2> values;
    /// Whose value a watch with both policies goes by; none where they agree or nothing is enforced.
    Side decides = Side::None;
    /// The value, as JSON, that a watch with both goes by; empty when it enforces none.
    std::string together;

    bool isDifferent() const { return values[0] != values[1]; }
};

/// Two policies side by side.
struct PolicyComparison {
    std::vector<ComparedValue> members;
    /// Those that one of the policies demands. Empty when one of them is a message.
    std::vector<ComparedValue> notCarried;

    /// In how many values they differ.
    std::size_t differences() const;
};

/// Compares two policies. Who decides is what the service's own merge says.
PolicyComparison comparePolicies(const ComparedPolicy& first, const ComparedPolicy& second);

/// The comparison as tables for a reader, a different value with a mark.
std::string comparisonText(const ComparedPolicy& first, const ComparedPolicy& second,
                           const PolicyComparison& comparison);

/// The comparison as one JSON object.
std::string comparisonJson(const ComparedPolicy& first, const ComparedPolicy& second,
                           const PolicyComparison& comparison);

} // namespace deskwatch

#endif
