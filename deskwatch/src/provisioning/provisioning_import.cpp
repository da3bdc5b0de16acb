#include "provisioning/provisioning_import.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>
#include <optional>
#include <stdexcept>

#include "device/plain_text.h"
#include "provisioning/provisioning_elements.h"
#include "text/suggestion.h"
#include "text/text_table.h"

namespace deskwatch {
namespace {

using Json = nlohmann::ordered_json;

/// A whole text as a number of 0 or more.
std::optional<int> numberOf(const std::string& text) {
    return startsWith(text, "-") ? std::nullopt : wholeNumber(text);
}

std::string legalValues(const ProvisioningElement& element, const ElementRule& rule) {
    if (!element.wording.legalValues.empty()) {
        return element.wording.legalValues;
    }
    if (rule.most == anyNumber) {
        return "a number of seconds, up to " + std::to_string(anyNumber);
    }
    return rule.most == 1 ? "0 or 1"
                          : "a number from " + std::to_string(rule.least) + " to " + std::to_string(rule.most);
}

/// What people write for no limit in other places (a message has 0), where the protocol has an empty element for it.
std::string hintFor(const ProvisioningElement& element, const ElementRule& rule) {
    if (!element.wording.legalValues.empty()) {
        return "";
    }
    const auto isNoLimit = nearest(element.value, {"Unlimited", "None", "Never"}).has_value();
    const bool isZeroOfMessage = element.value == "0" && rule.absent == 0; // refused, so the element has a minimum
    return isZeroOfMessage || (isNoLimit && rule.most > 1) ? "; for no limit leave it empty" : "";
}

std::string nameInFile(const ProvisioningElement& element) {
    return element.wording.name.empty() ? element.name : element.wording.name;
}

bool isOther(const std::string& name) {
    return std::any_of(otherElements.begin(), otherElements.end(),
                       [&name](const OtherElement& other) { return name == other.name; });
}

std::string notAnElement(const ProvisioningElement& element) {
    const auto& name = element.name;
    if (!element.wording.unknown.empty()) {
        return element.wording.unknown;
    }
    if (name.front() == '{') {
        return "an element of another namespace";
    }
    std::vector<std::string_view> names;
    names.reserve(elementRules.size() + otherElements.size());
    for (const auto& rule : elementRules) {
        names.emplace_back(rule.name);
    }
    for (const auto& other : otherElements) {
        names.emplace_back(other.name);
    }
    return "not an element of a provisioning document" + didYouMean(name, names);
}

/// The checked values of a document: what its elements say, by name. Collects everything that is wrong.
class Values {
public:
    Values(std::string file, const std::vector<ProvisioningElement>& elements) : file_(std::move(file)) {
        for (const auto& element : elements) {
            take(element);
        }
        if (!errors_.empty()) {
            throw std::runtime_error(errors_ + slips_);
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
            refuse(element, " is a duplicate" +
                                (first->second > 0 ? " of the one in line " + std::to_string(first->second) : ""));
        } else if (rule != nullptr) {
            takeValue(element, *rule);
        } else if (isSlip(element)) {
            slips_ += "\n" + placeIn(file_, element.line) + ": " + nameInFile(element) + ": " + notAnElement(element);
        }
    }

    void takeValue(const ProvisioningElement& element, const ElementRule& rule) {
        if (element.isList) {
            refuse(element, " contains other elements; it must be " + legalValues(element, rule));
            return;
        }
        if (element.value.empty() && !element.wording.isIllegal) {
            return;
        }
        const auto value = numberOf(element.value);
        if (!value || element.wording.isIllegal || *value < rule.least || *value > rule.most) {
            refuse(element, " is \"" + printable(element.value) + "\"; it must be " + legalValues(element, rule) +
                                hintFor(element, rule));
            return;
        }
        values_[element.name] = *value;
    }

    void refuse(const ProvisioningElement& element, const std::string& reason) {
        errors_ += (errors_.empty() ? "" : "\n") + placeIn(file_, element.line) + ": " + nameInFile(element) + reason;
    }

    std::string file_;
    std::string errors_;
    std::string slips_; // told beside errors; alone they are remarks
    std::map<std::string, long> lines_;
    std::map<std::string, int> values_;
};

Fate fateOf(Support support) {
    return support == Support::Enforced ? Fate::Enforced : support == Support::Stored ? Fate::Stored : Fate::Lost;
}

/// A value as a member carries it.
Json carriedValue(const ElementRule& rule, int value) {
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

/// The values as the policy set carries them.
class PolicySet {
public:
    PolicySet(const Values& values, bool keepsLimits)
        : values_(values),
          ignoresPasswordRules_(!keepsLimits && values.of(*elementRule("DevicePasswordEnabled")) == 0) {}

    bool ignores(const ElementRule& rule) const { return rule.isPasswordRule && ignoresPasswordRules_; }

    Fate fateOfDemand(const ElementRule& rule) const {
        const bool waitsForAnother = *rule.remarkUnless != '\0' && isRemarkTrue(rule);
        const bool isCarried =
            rule.conversion == Conversion::None || carriedValue(rule, valueOf(rule)) != carriedValue(rule, rule.absent);
        return valueOf(rule) == rule.absent ? Fate::Nothing
               : !isCarried                 ? Fate::Lost
               : waitsForAnother            ? Fate::Stored
                                            : fateOf(rule.support);
    }

    bool isRemarkTrue(const ElementRule& rule) const {
        const auto* const unless = elementRule(rule.remarkUnless);
        const int value = valueOf(rule);
        return value >= rule.remarkLeast && value <= rule.remarkMost && (unless == nullptr || valueOf(*unless) == 0);
    }

    Json carried(const ElementRule& rule) const { return carriedValue(rule, valueOf(rule)); }

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
    int valueOf(const ElementRule& rule) const { return ignores(rule) ? rule.absent : values_.of(rule); }

    const Values& values_;
    bool ignoresPasswordRules_;
};

std::string remarkOf(const ProvisioningElement& element, const ElementRule& rule, const PolicySet& policySet) {
    if (policySet.ignores(rule)) {
        return "ignored, because the document requires no password";
    }
    std::string absent = element.value.empty() ? "empty, treated as absent" : "";
    if (*rule.remark == '\0' || !policySet.isRemarkTrue(rule)) {
        return absent;
    }
    return absent + (absent.empty() ? "" : "; ") + rule.remark;
}

/// An element that no message carries.
ImportedElement notCarried(const ProvisioningElement& element) {
    const auto* const other = std::find_if(otherElements.begin(), otherElements.end(),
                                           [&](const OtherElement& row) { return element.name == row.name; });
    if (other == otherElements.end()) {
        const bool isForeign = element.name.front() == '{';
        return {element, Support::Unknown, "", "", notAnElement(element), isForeign ? Fate::Nothing : Fate::Lost};
    }
    const bool isIdle = !element.isList && (element.value.empty() || element.value == other->idle);
    return {element, other->support, "", "", "", isIdle ? Fate::Nothing : Fate::Lost};
}

ImportedElement imported(const ProvisioningElement& element, const PolicySet& policySet) {
    const auto* const rule = elementRule(element.name);
    if (rule == nullptr) {
        return notCarried(element);
    }
    const bool isCarried = rule->conversion != Conversion::None;
    return {element,
            rule->support,
            rule->member,
            isCarried ? policySet.carried(*rule).dump() : "",
            remarkOf(element, *rule, policySet),
            policySet.fateOfDemand(*rule)};
}

std::string messageText(const PolicySet& policySet, const ImportTarget& target) {
    const Json account{{"accountId", target.account}, {"accountName", target.name}, {"policySet", policySet.json()}};
    const Json message{{"msgId", "email-itpolicy-ind"}, {"seqId", 1}, {"param", Json::array({account})}};
    return message.dump(4, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace

bool isSlip(const ProvisioningElement& element) {
    return elementRule(element.name) == nullptr && !isOther(element.name) &&
           contains(notAnElement(element), "did you mean");
}

std::string placeIn(const std::string& file, long line) {
    return line > 0 ? file + ":" + std::to_string(line) : file;
}

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
