#include "text.h"

#include <glib.h>

#include <cstring>
#include <new>

namespace host {

char* copyForCaller(const std::string& text) {
    char* copy = strdup(text.c_str());
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    return copy;
}

bool isUtf8(const std::string& text) {
    return g_utf8_validate_len(text.data(), text.size(), nullptr) != FALSE;
}

std::string escapedForBusName(const std::string& text) {
    constexpr char digits[] = "0123456789abcdef";
    std::string escaped;
    for (const char letter : text) {
        if (g_ascii_isalnum(letter)) {
            escaped += letter;
        } else {
            const auto byte = static_cast<unsigned char>(letter);
            escaped += {'_', digits[byte / 16U], digits[byte % 16U]};
        }
    }
    return escaped;
}

} // namespace host
