#ifndef DESKWATCH_PROVISIONING_DOCUMENT_H
#define DESKWATCH_PROVISIONING_DOCUMENT_H

#include <filesystem>
#include <string>
#include <vector>

namespace deskwatch {

/// An element of a provisioning document.
struct ProvisioningElement {
    std::string name;
    /// Its text without the white space around it.
    std::string value;
    /// Whether it holds other elements; then it has no value.
    bool isList = false;
    long line = 0;
};

/// Reads the elements of the EASProvisionDoc in an XML file, which may stand in the envelope in which a server sends
/// it. In a trace of an exchange with a server, the last policy counts, and is taken as a client takes it (see
/// `tolerated`). Nothing but the file is read, and a document type, with which entities come, is refused. Throws
/// std::runtime_error with file and line when the file cannot be read, is not valid XML, or does not hold exactly one
/// such document.
std::vector<ProvisioningElement> readProvisioningDocument(const std::filesystem::path& file);

} // namespace deskwatch

#endif
