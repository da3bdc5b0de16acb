#include "provisioning/provisioning_document.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <stdexcept>
#include <string_view>

#include "c_owners.h"
#include "device/plain_text.h"

namespace deskwatch {
namespace {

constexpr std::string_view whiteSpace = " \t\r\n";

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

[[noreturn]] void refuse(const std::string& file, long line, const std::string& reason) {
    throw std::runtime_error(file + ":" + std::to_string(line) + ": " + reason);
}

/// Called where a document type has said its name and what it refers to. More than the name is not read.
void stopAtDeclarations(void* parser, const xmlChar* /*name*/, const xmlChar* externalId, const xmlChar* systemId) {
    auto* const context = static_cast<xmlParserCtxtPtr>(parser);
    if (externalId != nullptr || systemId != nullptr || *context->input->cur == '[') {
        *static_cast<long*>(context->_private) = xmlSAX2GetLineNumber(context);
        xmlStopParser(context);
    }
}

Document parse(const std::string& file, const std::string& text) {
    const Context context(xmlNewParserCtxt());
    if (context == nullptr) {
        throw std::runtime_error("cannot read " + file + ": out of memory");
    }
    long declarationLine = 0;
    context->_private = &declarationLine;
    context->sax->internalSubset = stopAtDeclarations;
    constexpr int options =
        XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NOCDATA | XML_PARSE_BIG_LINES;
    Document document(
        xmlCtxtReadMemory(context.get(), text.data(), static_cast<int>(text.size()), nullptr, nullptr, options));
    if (declarationLine != 0) {
        refuse(file, declarationLine,
               "the document type (<!DOCTYPE) has declarations or refers to some; remove it, nothing needs it");
    }
    if (document == nullptr) {
        const xmlError* const error = xmlCtxtGetLastError(context.get());
        const bool isTold = error != nullptr && error->message != nullptr;
        refuse(file, error != nullptr ? error->line : 1,
               "not valid XML: " + (isTold ? trimmed(error->message) : "the file is empty"));
    }
    return document;
}

/// The name of an element of ours: people leave the namespace out, write it without its colon, or use it as a prefix
/// that they do not declare. Any other element keeps its namespace in its name.
std::string nameOf(const xmlNode* node) {
    constexpr std::string_view undeclared = "Provision:";
    const std::string name = reinterpret_cast<const char*>(node->name);
    if (node->ns == nullptr || node->ns->href == nullptr) {
        return startsWith(name, undeclared) ? name.substr(undeclared.size()) : name;
    }
    const std::string space = reinterpret_cast<const char*>(node->ns->href);
    return space == "Provision:" || space == "Provision" || space.empty()
               ? name
               : std::string("{").append(space).append("}").append(name);
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

/// Collects the policy and what the server says from an element and those in it. The parser bounds the depth.
class Envelope {
public:
    explicit Envelope(std::string file) : file_(std::move(file)) {}

    void read(xmlNode* node) {
        const auto name = nameOf(node);
        if (name == "EASProvisionDoc") {
            readPolicy(node);
        } else if (name == "RemoteWipe" || name == "AccountOnlyRemoteWipe") {
            const auto kind = name == "RemoteWipe" ? ServerNotice::Kind::Wipe : ServerNotice::Kind::AccountWipe;
            document_.notices.push_back({kind, "", xmlGetLineNo(node)});
        } else if (name == "Status") {
            readStatus(node);
        } else {
            for (auto* child = xmlFirstElementChild(node); child != nullptr; child = xmlNextElementSibling(child)) {
                read(child);
            }
        }
    }

    ProvisioningDocument take() {
        if (!document_.hasPolicy && document_.notices.empty()) {
            refuse(file_, 1, "this XML does not contain an EASProvisionDoc");
        }
        return std::move(document_);
    }

private:
    void readPolicy(xmlNode* node) {
        if (document_.hasPolicy) {
            refuse(file_, xmlGetLineNo(node), "a second EASProvisionDoc; there must be one");
        }
        document_.hasPolicy = true;
        for (auto* child = xmlFirstElementChild(node); child != nullptr; child = xmlNextElementSibling(child)) {
            document_.elements.push_back(readElement(child));
        }
    }

    /// A Status counts where the protocol has one; what describes the device has its own.
    void readStatus(xmlNode* node) {
        const auto status = readElement(node);
        const auto outer = node->parent->type == XML_ELEMENT_NODE ? nameOf(node->parent) : "";
        if (status.value != "1" && (outer == "Provision" || outer == "Policy")) {
            const auto kind = outer == "Policy" ? ServerNotice::Kind::PolicyStatus : ServerNotice::Kind::Status;
            document_.notices.push_back({kind, status.value, status.line});
        }
    }

    std::string file_;
    ProvisioningDocument document_;
};

} // namespace

ProvisioningDocument readProvisioningDocument(const std::string& file, const std::string& text) {
    const Document document = parse(file, text);
    Envelope envelope(file);
    envelope.read(xmlDocGetRootElement(document.get()));
    return envelope.take();
}

} // namespace deskwatch
