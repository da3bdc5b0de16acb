#ifndef DESKWATCH_ELEMENT_XML_H
#define DESKWATCH_ELEMENT_XML_H

#include <string>

#include "wbxml/wbxml_element.h"

namespace deskwatch {

/// How an element is written: for a reader, on lines of their own and indented, or for the WBXML library, with the
/// document type by which it knows the language and no blank that is not in the element.
enum class XmlForm { Readable, ForLibrary };

/// An element as an XML document.
std::string elementXml(const WbxmlElement& element, XmlForm form = XmlForm::Readable);

/// Reads an element from XML. Nothing but the text is read. Throws std::runtime_error when it is not valid XML.
WbxmlElement elementFromXml(const std::string& xml);

} // namespace deskwatch

#endif
