#ifndef DESKWATCH_PROVISIONING_IMPORT_H
#define DESKWATCH_PROVISIONING_IMPORT_H

#include <string>
#include <vector>

#include "provisioning/element_rule.h"
#include "provisioning/provisioning_document.h"

namespace deskwatch {

/// What becomes of what an element demands; nothing of one that demands nothing.
enum class Fate { Nothing, Enforced, Stored, Lost };

/// What became of one element.
struct ImportedElement {
    ProvisioningElement element;
    Support support = Support::Unknown;
    /// The member of the policy set that carries it and its value there; empty for none.
    std::string member;
    std::string carried;
    /// What else the reader should know; may be empty.
    std::string remark;
    Fate fate = Fate::Nothing;
};

/// The account that a document is for.
struct ImportTarget {
    int account = 1;
    std::string name;
    /// Whether the limits of a document that requires no password are carried, too. The protocol has clients ignore
    /// them, but not every mail application does.
    bool keepsLimits = false;
};

/// A document as the mail application would hand it to the service.
struct ProvisioningImport {
    /// The message, JSON.
    std::string message;
    /// What else the file says, as lines of a report.
    std::vector<std::string> notices;
    /// In the order of the document.
    std::vector<ImportedElement> elements;
};

/// A place in a file for the reader: `FILE:LINE`, or the file where the line is 0.
std::string placeIn(const std::string& file, long line);

/// Whether its name looks like a slip of the pen for a known one.
bool isSlip(const ProvisioningElement& element);

/// Makes a message of a document's elements. `file` is named in errors. Throws std::runtime_error with the file and the
/// line of every illegal value.
ProvisioningImport importProvisioning(const std::string& file, const std::vector<ProvisioningElement>& elements,
                                      const ImportTarget& target);

/// The notices, what is enforced, only stored and lost of the policy, and a line for each element.
std::string importText(const std::string& file, const ProvisioningImport& import);

/// The same as one JSON object.
std::string importJson(const std::string& file, const ProvisioningImport& import);

} // namespace deskwatch

#endif
