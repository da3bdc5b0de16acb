#include <nlohmann/json.hpp>

#include <array>

#include "provisioning/provisioning_import.h"
#include "text/text_table.h"
#include "text/value_text.h"

namespace deskwatch {
namespace {

using Json = nlohmann::ordered_json;

const char* supportText(Support support) {
    switch (support) {
    case Support::Enforced:
        return "enforced";
    case Support::Stored:
        return "stored, not enforced";
    case Support::NotDeliverable:
        return "not deliverable to the watch";
    case Support::MailApplication:
        return "left to the mail application";
    case Support::NotThere:
        return "the watch has no such thing";
    case Support::Unknown:
        break;
    }
    return "unknown to the watch";
}

struct FateLine {
    Fate fate;
    const char* words;
};

/// The lines of the summary.
constexpr std::array<FateLine, 3> fateLines{
    {{Fate::Enforced, "enforced"}, {Fate::Stored, "only stored"}, {Fate::Lost, "lost"}}};

std::vector<std::string> elementsOf(const ProvisioningImport& import, Fate fate) {
    std::vector<std::string> elements;
    for (const auto& entry : import.elements) {
        if (entry.fate == fate) {
            const auto& [name, value, isList, line] = entry.element;
            elements.push_back(printable(value.empty() ? name : std::string(name).append(" ").append(value)));
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
    for (const auto& [fate, words] : fateLines) {
        const auto elements = elementsOf(import, fate);
        text.append(file).append(": ").append(words).append(": ");
        text.append(elements.empty() ? "nothing" : joined(elements, ", ")).append("\n");
    }
    for (const auto& [element, support, member, carried, remark, fate] : import.elements) {
        text += placeIn(file, element.line);
        text.append(": ").append(printable(element.name));
        text.append(element.value.empty() ? "" : " ").append(printable(element.value));
        text.append(": ").append(supportText(support));
        if (!member.empty()) {
            text.append(", ").append(member).append(" ").append(carried);
        }
        text.append(remark.empty() ? "" : "; ").append(remark).append("\n");
    }
    return text;
}

std::string importJson(const std::string& file, const ProvisioningImport& import) {
    Json object{{"file", file}, {"notices", import.notices}, {"summary", Json::object()}, {"elements", Json::array()}};
    for (const auto& [fate, words] : fateLines) {
        object["summary"][words] = elementsOf(import, fate);
    }
    for (const auto& [element, support, member, carried, remark, fate] : import.elements) {
        object["elements"].push_back({{"line", element.line},
                                      {"element", element.name},
                                      {"value", element.value},
                                      {"watch", supportText(support)},
                                      {"member", member.empty() ? Json(nullptr) : Json(member)},
                                      {"carried", carried.empty() ? Json(nullptr) : Json::parse(carried)},
                                      {"remark", remark}});
    }
    return object.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace deskwatch
