#include "exchange_server/served_policies.h"

#include <stdexcept>

#include "provisioning/provisioning_document.h"
#include "text/input_file.h"
#include "wbxml/element_xml.h"
#include "wbxml/wbxml_codec.h"

namespace deskwatch {
namespace {

const WbxmlElement* findDocument(const WbxmlElement& element) {
    if (element.name == "EASProvisionDoc") {
        return &element;
    }
    for (const auto& child : element.children) {
        if (const auto* const found = findDocument(child)) {
            return found;
        }
    }
    return nullptr;
}

/// People leave the namespace out, or write it without its colon.
void moveToProvision(WbxmlElement& element) {
    element.space = "Provision:";
    for (auto& child : element.children) {
        moveToProvision(child);
    }
}

WbxmlElement readDocument(const std::string& file) {
    if (file == standardInput) {
        throw std::runtime_error("a policy is read again for each device, and standard input only once; name a file");
    }
    const auto text = readInput(file);
    readProvisioningDocument(file, text); // refuses with the line what is not one
    const auto root = elementFromXml(text);
    const auto* const found = findDocument(root);
    if (found == nullptr) {
        throw std::runtime_error(file + " does not contain an EASProvisionDoc");
    }
    auto document = *found;
    moveToProvision(document);
    try {
        encodeWbxml(document);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(file + ": " + error.what());
    }
    return document;
}

} // namespace

ServedPolicies::ServedPolicies(const std::vector<std::string>& policies) {
    for (const auto& policy : policies) {
        const auto equals = policy.find('=');
        const bool hasUser = equals != std::string::npos;
        const auto file = hasUser ? policy.substr(equals + 1) : policy;
        readDocument(file);
        const auto user = hasUser ? policy.substr(0, equals) : "";
        if (!files_.emplace(user, file).second) {
            throw std::runtime_error(policy + ": a second policy " +
                                     (hasUser ? "for " + user : "for everybody; USER=FILE names a user"));
        }
    }
}

std::optional<WbxmlElement> ServedPolicies::documentOf(const std::string& user) const {
    auto file = files_.find(user);
    if (file == files_.end()) {
        file = files_.find("");
    }
    return file != files_.end() ? std::optional(readDocument(file->second)) : std::nullopt;
}

} // namespace deskwatch
