#include <libxml/parser.h>
#include <libxml/tree.h>

#include <map>
#include <stdexcept>

#include "c_owners.h"
#include "device/plain_text.h"
#include "exchange/provision_messages.h"

namespace deskwatch {
namespace {

using Parameters = std::map<std::string, std::string>;

/// The library's own is a variable.
void freeText(xmlChar* text) {
    xmlFree(text);
}

std::string attribute(xmlNode* node, const char* name) {
    const c::Owner<xmlChar, freeText> value(xmlGetProp(node, reinterpret_cast<const xmlChar*>(name)));
    return value != nullptr ? reinterpret_cast<const char*>(value.get()) : "";
}

/// Collects the parameters. Their names are unique in a document, so that the groups around them do not matter.
void collect(xmlNode* node, Parameters& parameters) {
    for (auto* child = xmlFirstElementChild(node); child != nullptr; child = xmlNextElementSibling(child)) {
        if (std::string(reinterpret_cast<const char*>(child->name)) == "parm") {
            parameters[attribute(child, "name")] = attribute(child, "value");
        }
        collect(child, parameters);
    }
}

Parameters readParameters(const std::string& xml) {
    // entities come with a document type, and nothing else does that a policy needs
    const c::Owner<xmlDoc, xmlFreeDoc> document(
        contains(xml, "<!DOCTYPE") ? nullptr
                                   : xmlReadMemory(xml.data(), static_cast<int>(xml.size()), nullptr, nullptr,
                                                   XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    auto* const root = document != nullptr ? xmlDocGetRootElement(document.get()) : nullptr;
    if (root == nullptr) {
        throw std::runtime_error("the policy is not a wap-provisioningdoc");
    }
    Parameters parameters;
    collect(root, parameters);
    return parameters;
}

/// Minutes as seconds; anything but a number of a few digits stays as it is and is refused as a value.
std::string inSeconds(const std::string& minutes) {
    const bool isNumber =
        !minutes.empty() && minutes.size() < 7 && minutes.find_first_not_of("0123456789") == std::string::npos;
    return isNumber ? std::to_string(std::stol(minutes) * 60) : minutes;
}

} // namespace

std::vector<ProvisioningElement> readWapDocument(const std::string& xml) {
    auto parameters = readParameters(xml);
    std::vector<ProvisioningElement> elements;
    const auto add = [&elements](const char* name, const std::string& value) {
        elements.push_back({name, value, false, 0});
    };
    const auto has = [&parameters](const char* name) { return parameters.count(name) > 0; };
    if (has("4131")) {
        add("DevicePasswordEnabled", parameters["4131"] == "0" ? "1" : "0");
    }
    if (has("PasswordComplexity")) {
        add("AlphanumericDevicePasswordRequired", parameters["PasswordComplexity"] == "0" ? "1" : "0");
    }
    if (has("MinimumPasswordLength")) {
        add("MinDevicePasswordLength", parameters["MinimumPasswordLength"]);
    }
    if (has("DeviceWipeThreshold") && parameters["DeviceWipeThreshold"] != "-1") {
        add("MaxDevicePasswordFailedAttempts", parameters["DeviceWipeThreshold"]);
    }
    if (has("AEFrequencyValue") && parameters["AEFrequencyType"] != "0") {
        add("MaxInactivityTimeDeviceLock", inSeconds(parameters["AEFrequencyValue"]));
    }
    return elements;
}

} // namespace deskwatch
