#ifndef DESKWATCH_MESSAGE_FILE_H
#define DESKWATCH_MESSAGE_FILE_H

#include <filesystem>
#include <string>

namespace deskwatch {

/// Whether the text of a message file is checked before it is sent.
enum class Check { ValidJson, None };

/// The text of a message file, or of standard input where it is "-". Throws std::runtime_error when it cannot be read
/// or holds a null character, which no message can carry; with Check::ValidJson also when it is not valid JSON, with
/// file, line and column.
std::string readMessageFile(const std::filesystem::path& file, Check check);

/// The text of a message file whose kind, its "msgId", is that one. Throws std::runtime_error as above, and when it is
/// a message of another kind or not a message.
std::string readMessageOfKind(const std::filesystem::path& file, const std::string& kind);

} // namespace deskwatch

#endif
