#include "provisioning/provisioning_tolerance.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <set>

#include "provisioning/provisioning_elements.h"
#include "text/text_table.h"

namespace deskwatch {
namespace {

/// The legal value that a text stands for; empty when it stands for none. Too large a number for the machine is still
/// a large number.
std::string legalValue(const std::string& text, const ElementRule& rule) {
    int number = 0;
    const auto* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    const bool isLarge = error == std::errc::result_out_of_range && text.front() != '-';
    if ((error != std::errc() && !isLarge) || stop != end || number < 0) {
        return "";
    }
    return std::to_string(isLarge ? rule.most : std::clamp(number, rule.least, rule.most));
}

} // namespace

ToleratedElements tolerated(const std::vector<ProvisioningElement>& elements) {
    ToleratedElements result;
    std::set<std::string> names;
    for (auto element : elements) {
        if (!names.insert(element.name).second) {
            continue;
        }
        const auto* const rule = elementRule(element.name);
        const auto value = rule == nullptr || element.value.empty() ? element.value : legalValue(element.value, *rule);
        if (value != element.value) {
            result.remarks.push_back(element.name + " \"" + printable(element.value) + "\" is taken as " +
                                     (value.empty() ? "absent" : value));
        }
        element.value = value;
        element.isList = element.isList && rule == nullptr;
        result.elements.push_back(element);
    }
    return result;
}

} // namespace deskwatch
