#include "exchange_server/served_policies.h"

#include <stdexcept>

#include "policy_files/policy_file.h"
#include "provisioning/provisioning_document.h"
#include "provisioning/provisioning_import.h"
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

/// As it stands, with what only the XML says.
WbxmlElement documentOfXml(const std::string& file, const std::string& text) {
    readProvisioningDocument(file, text); // refuses with the line what is not one
    const auto root = elementFromXml(text);
    const auto* const found = findDocument(root);
    if (found == nullptr) {
        throw std::runtime_error(file + " does not contain an EASProvisionDoc");
    }
    auto document = *found;
    moveToProvision(document);
    return document;
}

/// Of the values that any other format has.
WbxmlElement documentOfPolicy(const std::string& file, const std::string& text) {
    const auto content = readPolicyFile(file, text);
    if (content.policies.size() != 1) {
        throw std::runtime_error(file + " has " + std::to_string(content.policies.size()) +
                                 " policies; the server takes a file with one");
    }
    auto document = provisionElement("EASProvisionDoc", std::vector<WbxmlElement>{});
    const auto& elements = content.policies.front().elements;
    importProvisioning(file, elements, {}); // refuses values that no policy has
    for (const auto& element : elements) {
        if (!element.isList) {
            document.children.push_back(provisionElement(element.name, element.value));
        }
    }
    return document;
}

WbxmlElement readDocument(const std::string& file) {
    if (file == standardInput) {
        throw std::runtime_error("a policy is read again for each device, and standard input only once; name a file");
    }
    const auto text = readInput(file);
    const auto start = text.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
    const bool isXml = start != std::string::npos && text[start] == '<';
    auto document = isXml ? documentOfXml(file, text) : documentOfPolicy(file, text);
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
        if (file.empty()) {
            throw std::runtime_error(policy + " names no file");
        }
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

std::set<std::string> ServedPolicies::users() const {
    std::set<std::string> users;
    for (const auto& [user, file] : files_) {
        users.insert(user);
    }
    users.erase(""); // all other users
    return users;
}

bool ServedPolicies::servesEverybody() const {
    return files_.count("") != 0;
}

} // namespace deskwatch
