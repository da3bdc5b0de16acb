#include "provisioning_import.h"

#include "text_table.h"

#include <nlohmann/json.hpp>

namespace deskwatch {
namespace {

using Json = nlohmann::ordered_json;

const char* fateText(Fate fate) {
    switch (fate) {
    case Fate::enforced:
        return "enforced";
    case Fate::stored:
        return "stored, not enforced";
    case Fate::notDeliverable:
        return "not deliverable to the watch";
    case Fate::unknown:
        break;
    }
    return "unknown to the watch";
}

} // namespace

std::string importText(const std::string& file, const ProvisioningImport& import) {
    std::string text;
    for (const auto& [element, fate, member, carried, remark] : import.elements) {
        text += file;
        text.append(":").append(std::to_string(element.line)).append(": ").append(element.name);
        text.append(element.value.empty() ? "" : " ").append(printable(element.value));
        text.append(": ").append(fateText(fate));
        if (!member.empty()) {
            text.append(", ").append(member).append(" ").append(carried);
        }
        text.append(remark.empty() ? "" : "; ").append(remark).append("\n");
    }
    return text;
}

std::string importJson(const std::string& file, const ProvisioningImport& import) {
    Json object{{"file", file}, {"elements", Json::array()}};
    for (const auto& [element, fate, member, carried, remark] : import.elements) {
        object["elements"].push_back({{"line", element.line},
                                      {"element", element.name},
                                      {"value", element.value},
                                      {"watch", fateText(fate)},
                                      {"member", member.empty() ? Json(nullptr) : Json(member)},
                                      {"carried", carried.empty() ? Json(nullptr) : Json::parse(carried)},
                                      {"remark", remark}});
    }
    return object.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace deskwatch
