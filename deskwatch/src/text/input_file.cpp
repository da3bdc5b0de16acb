#include "text/input_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "device/file_descriptor.h"
#include "text/text_table.h"

namespace deskwatch {
namespace {

[[noreturn]] void fail(const std::filesystem::path& file) {
    throw std::runtime_error("cannot read " + inputName(file) + ": " + std::strerror(errno));
}

} // namespace

std::string inputName(const std::filesystem::path& file) {
    return file == standardInput ? "standard input" : printable(file.string());
}

std::string readInput(const std::filesystem::path& file, std::size_t most) {
    const FileDescriptor opened(file == standardInput ? dup(STDIN_FILENO) : open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (!opened.isOpen()) {
        fail(file);
    }
    std::string text;
    std::array<char, 65536> buffer{};
    ssize_t length = 0;
    while ((length = read(opened.get(), buffer.data(), buffer.size())) != 0) {
        if (length < 0 && errno != EINTR) {
            fail(file);
        }
        text.append(buffer.data(), static_cast<std::size_t>(length > 0 ? length : 0));
        if (text.size() > most) {
            throw std::runtime_error(inputName(file) + " has more than " + std::to_string(most) + " bytes");
        }
    }
    return text;
}

} // namespace deskwatch
