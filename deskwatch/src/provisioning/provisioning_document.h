#ifndef DESKWATCH_PROVISIONING_DOCUMENT_H
#define DESKWATCH_PROVISIONING_DOCUMENT_H

#include <string>
#include <vector>

namespace deskwatch {

/// How a file has an element, for the reader of errors, where it has it otherwise than a provisioning document.
struct ElementWording {
    std::string name;
    std::string legalValues;
    /// Why it cannot be an element.
    std::string unknown;
    /// Whether the value stands for nothing there, so that the element has it as it is written.
    bool isIllegal = false;
};

/// An element of a provisioning document.
struct ProvisioningElement {
    /// One of another namespace is called `{NAMESPACE}NAME`.
    std::string name;
    /// Its text without the white space around it.
    std::string value;
    /// Whether it holds other elements; then it has no value.
    bool isList = false;
    long line = 0;
    ElementWording wording = {};
};

/// What a server says beside a policy, or instead of one.
struct ServerNotice {
    enum class Kind {
        Wipe,        ///< the order to wipe the device
        AccountWipe, ///< the order to wipe what belongs to the account
        Status,      ///< of the whole reply, other than 1
        PolicyStatus ///< of the policy, other than 1
    };

    Kind kind = Kind::Status;
    /// The status as it is written.
    std::string status;
    long line = 0;
};

/// The one policy in a document, or in the envelope in which a server sends it.
struct ProvisioningDocument {
    /// Whether there is one; a server may have something else to say.
    bool hasPolicy = false;
    std::vector<ProvisioningElement> elements;
    std::vector<ServerNotice> notices;
};

/// Reads an XML document, of which `file` is the name in errors. A document type may stand there by name alone: with
/// what it may hold, entities come, so that is refused and never looked at. Elements of other namespaces than
/// `Provision` are none of the envelope. Throws std::runtime_error with file and line when it is not valid XML, holds
/// more than one policy, or neither a policy nor anything else that a server says.
ProvisioningDocument readProvisioningDocument(const std::string& file, const std::string& text);

} // namespace deskwatch

#endif
