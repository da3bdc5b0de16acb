#include <nlohmann/json.hpp>

#include "provisioning/provisioning_import.h"
#include "text/text_table.h"

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

} // namespace

std::string importText(const std::string& file, const ProvisioningImport& import) {
    std::string text;
    for (const auto& [element, support, member, carried, remark] : import.elements) {
        text += file;
        text.append(":").append(std::to_string(element.line)).append(": ").append(element.name);
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
    Json object{{"file", file}, {"elements", Json::array()}};
    for (const auto& [element, support, member, carried, remark] : import.elements) {
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
