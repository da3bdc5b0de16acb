#include "wbxml/wbxml_codec.h"

#include <wbxml/wbxml.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>

#include "c_owners.h"
#include "wbxml/element_xml.h"
#include "wbxml/wbxml_tokens.h"

namespace deskwatch {
namespace {

using Encoder = c::Owner<WBXMLConvXML2WBXML, wbxml_conv_xml2wbxml_destroy>;
using Decoder = c::Owner<WBXMLConvWBXML2XML, wbxml_conv_wbxml2xml_destroy>;
using Bytes = c::Owner<WB_UTINY, std::free>;

// What is missing in the library's table of the page Provision:
// - AccountOnlyRemoteWipe has no name. It travels through the library under one that the protocol has given up.
// - The token of RequireStorageCardEncryption is read under the name of another element.
// - AllowWifi is written so by people, and only as AllowWiFi in the table.
constexpr unsigned char provisionPage = 14;
constexpr unsigned char accountOnlyRemoteWipe = 0x3B;
constexpr unsigned char standIn = 0x12;
/// No element of the page: what the stand-in's own token becomes when a server sends it.
constexpr unsigned char nobody = 0x3F;
constexpr char standInName[] = "DocumentBrowseEnabled";

unsigned char forWire(unsigned char page, unsigned char tag) {
    return page == provisionPage && tag == standIn ? accountOnlyRemoteWipe : tag;
}

unsigned char forLibrary(unsigned char page, unsigned char tag) {
    if (page != provisionPage) {
        return tag;
    }
    return tag == accountOnlyRemoteWipe ? standIn : tag == standIn ? nobody : tag;
}

std::string libraryName(const std::string& name) {
    return name == "AccountOnlyRemoteWipe" ? standInName : name == "AllowWifi" ? "AllowWiFi" : name;
}

std::string protocolName(const std::string& name) {
    return name == standInName                 ? "AccountOnlyRemoteWipe"
           : name == "DeviceEncryptionEnabled" ? "RequireStorageCardEncryption"
           : name == "AllowWiFi"               ? "AllowWifi"
                                               : name;
}

/// An element with the names of one side as the other side has them.
template <class Rename>
WbxmlElement renamed(const WbxmlElement& element, Rename rename) {
    WbxmlElement copy{element.space, element.name, element.text, {}};
    if (element.space == "Provision:") {
        copy.name = rename(element.name);
    }
    for (const auto& child : element.children) {
        copy.children.push_back(renamed(child, rename));
    }
    return copy;
}

void expectSuccess(WBXMLError error, const std::string& what) {
    if (error != WBXML_OK) {
        throw std::runtime_error("cannot " + what + ": " + reinterpret_cast<const char*>(wbxml_errors_string(error)));
    }
}

/// The library takes bytes that it may change.
WB_UTINY* given(std::string& bytes) {
    return reinterpret_cast<WB_UTINY*>(bytes.data());
}

std::string taken(WB_UTINY* bytes, WB_ULONG size) {
    const Bytes owner(bytes);
    return {reinterpret_cast<const char*>(bytes), size};
}

std::string libraryEncode(std::string xml) {
    WBXMLConvXML2WBXML* created = nullptr;
    expectSuccess(wbxml_conv_xml2wbxml_create(&created), "write WBXML");
    const Encoder encoder(created);
    wbxml_conv_xml2wbxml_disable_public_id(encoder.get());
    wbxml_conv_xml2wbxml_disable_string_table(encoder.get());
    wbxml_conv_xml2wbxml_enable_preserve_whitespaces(encoder.get());
    WB_UTINY* bytes = nullptr;
    WB_ULONG size = 0;
    expectSuccess(wbxml_conv_xml2wbxml_run(encoder.get(), given(xml), static_cast<WB_ULONG>(xml.size()), &bytes, &size),
                  "write WBXML");
    return taken(bytes, size);
}

std::string libraryDecode(std::string bytes) {
    WBXMLConvWBXML2XML* created = nullptr;
    expectSuccess(wbxml_conv_wbxml2xml_create(&created), "read WBXML");
    const Decoder decoder(created);
    wbxml_conv_wbxml2xml_set_language(decoder.get(), WBXML_LANG_ACTIVESYNC);
    wbxml_conv_wbxml2xml_set_gen_type(decoder.get(), WBXML_GEN_XML_COMPACT);
    wbxml_conv_wbxml2xml_enable_preserve_whitespaces(decoder.get());
    WB_UTINY* xml = nullptr;
    WB_ULONG size = 0;
    expectSuccess(
        wbxml_conv_wbxml2xml_run(decoder.get(), given(bytes), static_cast<WB_ULONG>(bytes.size()), &xml, &size),
        "read WBXML");
    return taken(xml, size);
}

} // namespace

std::string encodeWbxml(const WbxmlElement& document) {
    return checkedWbxml(libraryEncode(elementXml(renamed(document, libraryName), XmlForm::ForLibrary)), forWire);
}

WbxmlElement decodeWbxml(std::string_view bytes) {
    return renamed(elementFromXml(libraryDecode(checkedWbxml(bytes, forLibrary))), protocolName);
}

bool looksLikeWbxml(std::string_view bytes) {
    return bytes.size() > 4 && bytes.substr(0, 4) == std::string_view("\x03\x01\x6A\x00", 4);
}

} // namespace deskwatch
