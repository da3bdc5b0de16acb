#ifndef FILE_BYTES_H
#define FILE_BYTES_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// All bytes of a file; none when it cannot be read.
inline std::string bytesOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Makes the file hold these bytes and no others.
inline void writeBytes(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

#endif
