#ifndef DESKWATCH_WBXML_ELEMENT_H
#define DESKWATCH_WBXML_ELEMENT_H

#include <string>
#include <string_view>
#include <vector>

namespace deskwatch {

/// An element of an ActiveSync document with all that is in it. It holds text or elements; of both, the text is lost
/// when it is written.
struct WbxmlElement {
    /// Its namespace with the colon: `Provision:`.
    std::string space;
    std::string name;
    std::string text;
    std::vector<WbxmlElement> children;

    /// The first element in it of that name, in any namespace, because servers mix them up; null for none.
    const WbxmlElement* child(std::string_view wanted) const;

    /// The element that a path of names leads to; null for none.
    const WbxmlElement* at(const std::vector<std::string_view>& path) const;
};

/// An element of the namespace `Provision:`.
WbxmlElement provisionElement(std::string name, std::string text = "");

/// An element of the namespace `Provision:` with others in it.
WbxmlElement provisionElement(std::string name, std::vector<WbxmlElement> children);

} // namespace deskwatch

#endif
