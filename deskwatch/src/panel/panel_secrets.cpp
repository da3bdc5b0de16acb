#include "panel/panel_secrets.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace deskwatch {

std::string randomText() {
    std::array<unsigned char, 32> bytes{};
    if (getentropy(bytes.data(), bytes.size()) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot make a secret");
    }
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : bytes) {
        text += digits[byte >> 4U];
        text += digits[byte & 0xFU];
    }
    return text;
}

bool isSameSecret(const std::string& given, const std::string& secret) {
    unsigned difference = given.size() == secret.size() ? 0 : 1;
    for (std::size_t index = 0; index < secret.size(); ++index) {
        const char character = index < given.size() ? given[index] : '\0';
        difference |= static_cast<unsigned char>(character) ^ static_cast<unsigned char>(secret[index]);
    }
    return difference == 0;
}

} // namespace deskwatch
