#include "provisioning/provisioning_import.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <map>
#include <optional>
#include <stdexcept>

#include "provisioning/provisioning_elements.h"
#include "text/text_table.h"

namespace deskwatch {
namespace {

using Json = nlohmann::ordered_json;

constexpr int alphanumericMode = 64;

/// A whole text as a number of 0 or more.
std::optional<int> numberOf(const std::string& text) {
    int number = 0;
    const auto* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end && text.front() != '-' ? std::optional(number) : std::nullopt;
}

std::string legalValues(const ElementRule& rule) {
    if (rule.most == anyNumber) {
        return "a number of seconds, up to " + std::to_string(anyNumber);
    }
    return rule.most == 1 ? "0 or 1"
                          : "a number from " + std::to_string(rule.least) + " to " + std::to_string(rule.most);
}

/// The checked values of a document: what its elements say, by name. Collects everything that is wrong.
class Values {
public:
    Values(std::string file, const std::vector<ProvisioningElement>& elements) : file_(std::move(file)) {
        for (const auto& element : elements) {
            take(element);
        }
        if (!errors_.empty()) {
            throw std::runtime_error(errors_);
        }
    }

    /// What an element says; what its absence means when it says nothing.
    int of(const ElementRule& rule) const {
        const auto value = values_.find(rule.name);
        return value != values_.end() ? value->second : rule.absent;
    }

private:
    void take(const ProvisioningElement& element) {
        const auto [first, isFirst] = lines_.emplace(element.name, element.line);
        const auto* const rule = elementRule(element.name);
        if (!isFirst) {
            refuse(element, " is a duplicate of the one in line " + std::to_string(first->second));
        } else if (rule != nullptr) {
            takeValue(element, *rule);
        }
    }

    void takeValue(const ProvisioningElement& element, const ElementRule& rule) {
        if (element.isList) {
            refuse(element, " contains other elements; it must be " + legalValues(rule));
            return;
        }
        if (element.value.empty()) {
            return;
        }
        const auto value = numberOf(element.value);
        if (!value || *value < rule.least || *value > rule.most) {
            refuse(element, " is \"" + printable(element.value) + "\"; it must be " + legalValues(rule));
            return;
        }
        values_[element.name] = *value;
    }

    void refuse(const ProvisioningElement& element, const std::string& reason) {
        errors_ +=
            (errors_.empty() ? "" : "\n") + file_ + ":" + std::to_string(element.line) + ": " + element.name + reason;
    }

    std::string file_;
    std::string errors_;
    std::map<std::string, long> lines_;
    std::map<std::string, int> values_;
};

/// The values as the policy set carries them.
class PolicySet {
public:
    PolicySet(const Values& values, bool keepsLimits)
        : values_(values),
          ignoresPasswordRules_(!keepsLimits && values.of(*elementRule("DevicePasswordEnabled")) == 0) {}

    bool ignores(const ElementRule& rule) const { return rule.isPasswordRule && ignoresPasswordRules_; }

    Json carried(const ElementRule& rule) const {
        const int value = ignores(rule) ? rule.absent : values_.of(rule);
        switch (rule.conversion) {
        case Conversion::Flag:
            return value != 0;
        case Conversion::PasswordMode:
            return value != 0 ? alphanumericMode : 0;
        case Conversion::Number:
        case Conversion::None:
            break;
        }
        return value;
    }

    Json json() const {
        Json members = Json::object();
        for (const auto& rule : elementRules) {
            if (rule.conversion != Conversion::None) {
                members[rule.member] = carried(rule);
            }
        }
        return members;
    }

private:
    const Values& values_;
    bool ignoresPasswordRules_;
};

std::string remarkOf(const ProvisioningElement& element, const ElementRule& rule, const PolicySet& policySet) {
    if (policySet.ignores(rule)) {
        return "ignored, because the document requires no password";
    }
    const std::string remark = rule.remark;
    const std::string absent = element.value.empty() ? "empty, treated as absent" : "";
    return absent + (absent.empty() || remark.empty() ? "" : "; ") + remark;
}

ImportedElement imported(const ProvisioningElement& element, const PolicySet& policySet) {
    const auto* const rule = elementRule(element.name);
    if (rule == nullptr) {
        const auto* const other = std::find_if(otherElements.begin(), otherElements.end(),
                                               [&](const OtherElement& row) { return element.name == row.name; });
        return other != otherElements.end()
                   ? ImportedElement{element, other->support, "", "", ""}
                   : ImportedElement{element, Support::Unknown, "", "", "not an element of a provisioning document"};
    }
    const bool isCarried = rule->conversion != Conversion::None;
    return {element, rule->support, rule->member, isCarried ? policySet.carried(*rule).dump() : "",
            remarkOf(element, *rule, policySet)};
}

std::string messageText(const PolicySet& policySet, const ImportTarget& target) {
    const Json account{{"accountId", target.account}, {"accountName", target.name}, {"policySet", policySet.json()}};
    const Json message{{"msgId", "email-itpolicy-ind"}, {"seqId", 1}, {"param", Json::array({account})}};
    return message.dump(4, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace

ProvisioningImport importProvisioning(const std::string& file, const std::vector<ProvisioningElement>& elements,
                                      const ImportTarget& target) {
    const Values values(file, elements);
    const PolicySet policySet(values, target.keepsLimits);
    ProvisioningImport import;
    import.message = messageText(policySet, target);
    std::transform(elements.begin(), elements.end(), std::back_inserter(import.elements),
                   [&](const ProvisioningElement& element) { return imported(element, policySet); });
    return import;
}

} // namespace deskwatch
