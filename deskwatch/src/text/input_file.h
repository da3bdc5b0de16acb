#ifndef DESKWATCH_INPUT_FILE_H
#define DESKWATCH_INPUT_FILE_H

#include <filesystem>
#include <string>

namespace deskwatch {

/// The name by which a command line means standard input.
inline constexpr char standardInput[] = "-";

/// The bytes of a file, or of standard input. Throws std::runtime_error with the file and the reason when it cannot be
/// read, or has more bytes than `most`.
std::string readInput(const std::filesystem::path& file, std::size_t most = 1'000'000);

/// How messages name a file: its path, with what is not UTF-8 replaced, or "standard input".
std::string inputName(const std::filesystem::path& file);

} // namespace deskwatch

#endif
