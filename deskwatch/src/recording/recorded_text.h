#ifndef DESKWATCH_RECORDED_TEXT_H
#define DESKWATCH_RECORDED_TEXT_H

#include <string>

namespace deskwatch {

/// A text of launch data or a message as a recording has it. JSON takes UTF-8 alone, so that a byte that is not part of
/// valid UTF-8 becomes the character U+001A and the byte's two hexadecimal digits: in the file, \u001aff is the byte
/// 255. So does U+001A itself. Other texts stay as they are.
std::string recordedText(const std::string& text);

/// The text that a recording means.
std::string textOfRecorded(const std::string& recorded);

} // namespace deskwatch

#endif
