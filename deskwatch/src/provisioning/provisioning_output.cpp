#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

#include "provisioning/provisioning_import.h"
#include "text/text_table.h"
#include "text/value_text.h"

namespace deskwatch {
namespace {

using Json = nlohmann::ordered_json;

/// Why no message carries an element.
const char* reasonOfLoss(Support support) {
    switch (support) {
    case Support::NotDeliverable:
        return ": no message carries it";
    case Support::MailApplication:
        return ", unless the mail application sees to it";
    case Support::NotThere:
        return ": the watch has no such thing";
    case Support::Unknown:
        return ": unknown to the watch";
    case Support::Enforced:
    case Support::Stored:
        break;
    }
    return "";
}

struct FateWord {
    Fate fate;
    const char* words;
};

/// The lines of the summary, and what the line of an element begins with.
constexpr std::array<FateWord, 3> fateWords{
    {{Fate::Enforced, "enforced"}, {Fate::Stored, "only stored"}, {Fate::Lost, "lost"}}};

std::string fateText(const ImportedElement& entry) {
    const auto* const known = std::find_if(fateWords.begin(), fateWords.end(),
                                           [&](const FateWord& candidate) { return candidate.fate == entry.fate; });
    const std::string words = known != fateWords.end() ? known->words : "restricts nothing";
    return entry.fate == Fate::Lost ? words + reasonOfLoss(entry.support) : words;
}

std::vector<std::string> elementsOf(const ProvisioningImport& import, Fate fate) {
    std::vector<std::string> elements;
    for (const auto& entry : import.elements) {
        if (entry.fate == fate) {
            const auto& element = entry.element;
            elements.push_back(printable(element.name + (element.value.empty() ? "" : " ") + element.value));
        }
    }
    return elements;
}

} // namespace

std::string importText(const std::string& file, const ProvisioningImport& import) {
    std::string text;
    for (const auto& notice : import.notices) {
        text.append("warning: ").append(notice).append("\n");
    }
    for (const auto& [fate, words] : fateWords) {
        const auto elements = elementsOf(import, fate);
        text.append(file).append(": ").append(words).append(": ");
        text.append(elements.empty() ? "nothing" : joined(elements, ", ")).append("\n");
    }
    for (const auto& entry : import.elements) {
        const auto& [element, support, member, carried, remark, fate] = entry;
        text += placeIn(file, element.line);
        text.append(": ").append(printable(element.name));
        text.append(element.value.empty() ? "" : " ").append(printable(element.value));
        text.append(": ").append(fateText(entry));
        if (!member.empty()) {
            text.append(", ").append(member).append(" ").append(carried);
        }
        text.append(remark.empty() ? "" : "; ").append(remark).append("\n");
    }
    return text;
}

std::string importJson(const std::string& file, const ProvisioningImport& import) {
    Json object{{"file", file}, {"notices", import.notices}, {"summary", Json::object()}, {"elements", Json::array()}};
    for (const auto& [fate, words] : fateWords) {
        object["summary"][words] = elementsOf(import, fate);
    }
    for (const auto& entry : import.elements) {
        const auto& [element, support, member, carried, remark, fate] = entry;
        object["elements"].push_back({{"line", element.line},
                                      {"element", element.name},
                                      {"value", element.value},
                                      {"watch", fateText(entry)},
                                      {"member", member.empty() ? Json(nullptr) : Json(member)},
                                      {"carried", carried.empty() ? Json(nullptr) : Json::parse(carried)},
                                      {"remark", remark}});
    }
    return object.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace deskwatch
