#include "wbxml/element_xml.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <stdexcept>

#include "c_owners.h"
#include "device/plain_text.h"

namespace deskwatch {
namespace {

/// The library's own is a variable.
void freeText(xmlChar* text) {
    xmlFree(text);
}

using Context = c::Owner<xmlParserCtxt, xmlFreeParserCtxt>;
using Document = c::Owner<xmlDoc, xmlFreeDoc>;
using Text = c::Owner<xmlChar, freeText>;

const xmlChar* xmlText(const std::string& text) {
    return reinterpret_cast<const xmlChar*>(text.c_str());
}

/// What the library made; null means out of memory.
template <class Type>
Type* made(Type* object) {
    if (object == nullptr) {
        throw std::runtime_error("cannot write XML: out of memory");
    }
    return object;
}

bool isIn(const xmlNs* space, const WbxmlElement& element) {
    return space != nullptr && element.space == reinterpret_cast<const char*>(space->href);
}

/// Fills a node. The default namespace is declared where it changes.
void fill(xmlNode* node, xmlNs* outer, const WbxmlElement& element) {
    auto* const space = isIn(outer, element) ? outer : made(xmlNewNs(node, xmlText(element.space), nullptr));
    xmlSetNs(node, space);
    if (element.children.empty()) {
        if (!element.text.empty()) {
            xmlAddChild(node, made(xmlNewDocText(node->doc, xmlText(element.text))));
        }
        return;
    }
    for (const auto& child : element.children) {
        fill(made(xmlNewChild(node, nullptr, xmlText(child.name), nullptr)), space, child);
    }
}

WbxmlElement elementOf(xmlNode* node) {
    constexpr std::string_view undeclared = "Provision:"; // a prefix, which people do not declare
    WbxmlElement element;
    element.space = node->ns != nullptr ? reinterpret_cast<const char*>(node->ns->href) : "";
    element.name = reinterpret_cast<const char*>(node->name);
    if (node->ns == nullptr && startsWith(element.name, undeclared)) {
        element.space = undeclared;
        element.name.erase(0, undeclared.size());
    }
    for (auto* child = xmlFirstElementChild(node); child != nullptr; child = xmlNextElementSibling(child)) {
        element.children.push_back(elementOf(child));
    }
    if (element.children.empty()) {
        const Text text(xmlNodeGetContent(node));
        element.text = text != nullptr ? reinterpret_cast<const char*>(text.get()) : "";
    }
    return element;
}

} // namespace

std::string elementXml(const WbxmlElement& element, XmlForm form) {
    const Document document(made(xmlNewDoc(xmlText("1.0"))));
    if (form == XmlForm::ForLibrary) {
        made(xmlCreateIntSubset(document.get(), xmlText("ActiveSync"), xmlText("-//MICROSOFT//DTD ActiveSync//EN"),
                                xmlText("http://www.microsoft.com/")));
    }
    auto* const root = made(xmlNewDocNode(document.get(), nullptr, xmlText(element.name), nullptr));
    xmlDocSetRootElement(document.get(), root);
    fill(root, nullptr, element);
    xmlChar* written = nullptr;
    int size = 0;
    xmlDocDumpFormatMemoryEnc(document.get(), &written, &size, "UTF-8", form == XmlForm::Readable ? 1 : 0);
    const Text text(made(written));
    return {reinterpret_cast<const char*>(text.get()), static_cast<std::size_t>(size)};
}

WbxmlElement elementFromXml(const std::string& xml) {
    const Context context(made(xmlNewParserCtxt()));
    constexpr int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NOCDATA;
    const Document document(
        xmlCtxtReadMemory(context.get(), xml.data(), static_cast<int>(xml.size()), nullptr, nullptr, options));
    auto* const root = document != nullptr ? xmlDocGetRootElement(document.get()) : nullptr;
    if (root == nullptr) {
        throw std::runtime_error("not valid XML");
    }
    return elementOf(root);
}

} // namespace deskwatch
