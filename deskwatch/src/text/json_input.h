#ifndef DESKWATCH_JSON_INPUT_H
#define DESKWATCH_JSON_INPUT_H

#include <exception>
#include <string>
#include <string_view>

namespace deskwatch {

/// `line:column` of a byte of a text, counted from 1 as editors do; a column is a byte, too.
std::string positionIn(std::string_view text, std::size_t offset);

/// What the JSON library says is wrong, without the marks and the position that it puts in front.
std::string jsonFault(const std::exception& error);

/// Throws std::runtime_error with the file, the place and the reason when a text is not valid JSON. `remark` stands
/// between them.
void requireJson(const std::string& file, const std::string& text, const std::string& remark);

} // namespace deskwatch

#endif
