#include "provisioning/provisioning_document.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <fstream>
#include <stdexcept>

#include "c_owners.h"
#include "provisioning/exchange_trace_format.h"
#include "provisioning/provisioning_tolerance.h"

namespace deskwatch {
namespace {

constexpr char documentName[] = "EASProvisionDoc";
constexpr char whiteSpace[] = " \t\r\n";

/// Far beyond any provisioning document, characters.
constexpr std::size_t largestFile = 1'000'000;

/// The library's own is a variable.
void freeText(xmlChar* text) {
    xmlFree(text);
}

using Context = c::Owner<xmlParserCtxt, xmlFreeParserCtxt>;
using Document = c::Owner<xmlDoc, xmlFreeDoc>;

std::string trimmed(const std::string& text) {
    const auto first = text.find_first_not_of(whiteSpace);
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

[[noreturn]] void refuse(const std::filesystem::path& file, long line, const std::string& reason) {
    throw std::runtime_error(file.string() + ":" + std::to_string(line) + ": " + reason);
}

std::string readText(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::string text(largestFile + 1, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (!stream.is_open() || stream.bad() || std::filesystem::is_directory(file)) {
        throw std::runtime_error("cannot read " + file.string());
    }
    text.resize(static_cast<std::size_t>(stream.gcount()));
    if (text.size() > largestFile) {
        throw std::runtime_error(file.string() + " is too large for a provisioning document, which has at most " +
                                 std::to_string(largestFile) + " bytes");
    }
    return text;
}

/// Called where a document type begins: nothing of it is read.
void stopAtDocumentType(void* parser, const xmlChar* /*name*/, const xmlChar* /*externalId*/,
                        const xmlChar* /*systemId*/) {
    auto* const context = static_cast<xmlParserCtxtPtr>(parser);
    *static_cast<long*>(context->_private) = xmlSAX2GetLineNumber(context);
    xmlStopParser(context);
}

/// The XML in a trace, with its lines.
std::string xmlInTrace(const std::filesystem::path& file, const std::string& trace) {
    auto xml = exchange_trace::lastPolicy(trace);
    if (xml.empty()) {
        throw std::runtime_error(file.string() + ": no server sent a policy in this trace");
    }
    return xml;
}

Document parse(const std::filesystem::path& file, const std::string& text) {
    const Context context(xmlNewParserCtxt());
    if (context == nullptr) {
        throw std::runtime_error("cannot read " + file.string() + ": out of memory");
    }
    long documentTypeLine = 0;
    context->_private = &documentTypeLine;
    context->sax->internalSubset = stopAtDocumentType;
    constexpr int options =
        XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NOCDATA | XML_PARSE_BIG_LINES;
    Document document(
        xmlCtxtReadMemory(context.get(), text.data(), static_cast<int>(text.size()), nullptr, nullptr, options));
    if (documentTypeLine != 0) {
        refuse(file, documentTypeLine, "a provisioning document must not have a document type (<!DOCTYPE)");
    }
    if (document == nullptr) {
        const xmlError* const error = xmlCtxtGetLastError(context.get());
        const bool isTold = error != nullptr && error->message != nullptr;
        refuse(file, error != nullptr ? error->line : 1,
               "not valid XML: " + (isTold ? trimmed(error->message) : "the file is empty"));
    }
    return document;
}

std::string nameOf(const xmlNode* node) {
    return reinterpret_cast<const char*>(node->name);
}

/// Adds the documents at and below an element. The parser bounds the depth.
void findDocuments(xmlNode* element, std::vector<xmlNode*>& found) {
    if (nameOf(element) == documentName) {
        found.push_back(element);
        return;
    }
    for (auto* child = xmlFirstElementChild(element); child != nullptr; child = xmlNextElementSibling(child)) {
        findDocuments(child, found);
    }
}

ProvisioningElement readElement(xmlNode* node) {
    ProvisioningElement element;
    element.name = nameOf(node);
    element.line = xmlGetLineNo(node);
    element.isList = xmlFirstElementChild(node) != nullptr;
    if (!element.isList) {
        const c::Owner<xmlChar, freeText> text(xmlNodeGetContent(node));
        element.value = text != nullptr ? trimmed(reinterpret_cast<const char*>(text.get())) : "";
    }
    return element;
}

} // namespace

std::vector<ProvisioningElement> readProvisioningDocument(const std::filesystem::path& file) {
    const auto text = readText(file);
    const bool isTraceOfServer = exchange_trace::isTrace(text);
    const Document document = parse(file, isTraceOfServer ? xmlInTrace(file, text) : text);
    std::vector<xmlNode*> found;
    findDocuments(xmlDocGetRootElement(document.get()), found);
    if (found.empty()) {
        refuse(file, 1, std::string("this XML does not contain an ") + documentName);
    }
    if (found.size() > 1) {
        refuse(file, xmlGetLineNo(found[1]), std::string("a second ") + documentName + "; there must be one");
    }
    std::vector<ProvisioningElement> elements;
    for (auto* child = xmlFirstElementChild(found.front()); child != nullptr; child = xmlNextElementSibling(child)) {
        elements.push_back(readElement(child));
    }
    return isTraceOfServer ? tolerated(elements).elements : elements;
}

} // namespace deskwatch
