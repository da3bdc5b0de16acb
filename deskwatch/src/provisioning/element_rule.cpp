#include "provisioning/element_rule.h"

#include <algorithm>

#include "provisioning/provisioning_elements.h"

namespace deskwatch {

const ElementRule* elementRule(std::string_view name) {
    const auto* const rule = std::find_if(elementRules.begin(), elementRules.end(),
                                          [name](const ElementRule& candidate) { return name == candidate.name; });
    return rule != elementRules.end() ? rule : nullptr;
}

} // namespace deskwatch
