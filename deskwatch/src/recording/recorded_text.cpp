#include "recording/recorded_text.h"

#include <glib.h>

namespace deskwatch {
namespace {

constexpr char byteMark = '\x1a';

std::string marked(char byte) {
    constexpr char digits[] = "0123456789abcdef";
    const auto value = static_cast<unsigned char>(byte);
    return {byteMark, digits[value / 16U], digits[value % 16U]};
}

} // namespace

std::string recordedText(const std::string& text) {
    std::string recorded;
    const char* const end = text.data() + text.size();
    for (const char* at = text.data(); at < end;) {
        const gunichar letter = g_utf8_get_char_validated(at, end - at);
        const bool isLetter = letter != static_cast<gunichar>(-1) && letter != static_cast<gunichar>(-2);
        if (isLetter && *at != byteMark) {
            const char* const next = g_utf8_next_char(at);
            recorded.append(at, next);
            at = next;
        } else {
            recorded += marked(*at);
            ++at;
        }
    }
    return recorded;
}

std::string textOfRecorded(const std::string& recorded) {
    std::string text;
    for (std::size_t at = 0; at < recorded.size(); ++at) {
        const bool isMarked = recorded[at] == byteMark && at + 2 < recorded.size() &&
                              g_ascii_isxdigit(recorded[at + 1]) && g_ascii_isxdigit(recorded[at + 2]);
        if (isMarked) {
            const int byte = g_ascii_xdigit_value(recorded[at + 1]) * 16 + g_ascii_xdigit_value(recorded[at + 2]);
            text += static_cast<char>(byte);
            at += 2;
        } else {
            text += recorded[at];
        }
    }
    return text;
}

} // namespace deskwatch
