#ifndef DESKWATCH_SETTING_TEXT_H
#define DESKWATCH_SETTING_TEXT_H

#include <string>

namespace deskwatch {

/// A text without the white space around it.
std::string trimmedText(const std::string& text);

/// A text without the quotation marks around it, if it has any.
std::string unquoted(const std::string& text);

/// Whether a text is made of letters, digits and underscores, and not empty.
bool isWord(const std::string& text);

/// A text as UTF-8 without a byte order mark. Throws std::runtime_error when it has the mark of UTF-16 and is not.
std::string decodedText(const std::string& bytes);

} // namespace deskwatch

#endif
