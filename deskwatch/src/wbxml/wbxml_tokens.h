#ifndef DESKWATCH_WBXML_TOKENS_H
#define DESKWATCH_WBXML_TOKENS_H

#include <functional>
#include <string>
#include <string_view>

namespace deskwatch {

/// What may stand in place of a tag: given the code page and the tag without its mark for content.
using TokenChange = std::function<unsigned char(unsigned char page, unsigned char tag)>;

/// The most that a document may have. A reply of a server has some 100 elements, seven levels and 1,000 bytes.
namespace wbxml_limits {
inline constexpr std::size_t bytes = 1'000'000;
inline constexpr int levels = 64;
inline constexpr int elements = 20'000;
} // namespace wbxml_limits

/// Goes through the tokens of a WBXML document and returns it with its tags changed, so that the library gets nothing
/// that it cannot bear: not too large or too deep, no form that the protocol does not use, opaque data as text, and
/// text that XML can hold (other characters become U+FFFD). Throws std::runtime_error with the offset of the byte that
/// is wrong.
std::string checkedWbxml(std::string_view bytes, const TokenChange& change);

} // namespace deskwatch

#endif
