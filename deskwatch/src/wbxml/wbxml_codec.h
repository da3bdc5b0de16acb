#ifndef DESKWATCH_WBXML_CODEC_H
#define DESKWATCH_WBXML_CODEC_H

#include <string>
#include <string_view>

#include "wbxml/wbxml_element.h"

namespace deskwatch {

/// The bytes of a document in the form that servers take: no public identifier, UTF-8, no string table. Throws
/// std::runtime_error when an element is not one of the protocol or a text cannot be written.
std::string encodeWbxml(const WbxmlElement& document);

/// Reads a document. An element that nobody knows is called `unknown`. Throws std::runtime_error with the offset of the
/// first byte that is wrong, and for a document that is larger or deeper than any of the protocol.
WbxmlElement decodeWbxml(std::string_view bytes);

/// Whether bytes begin as a WBXML document of ActiveSync does.
bool looksLikeWbxml(std::string_view bytes);

} // namespace deskwatch

#endif
