#include "policy_files/setting_text.h"

#include <glib.h>

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <string_view>

#include "c_owners.h"
#include "device/plain_text.h"

namespace deskwatch {

std::string trimmedText(const std::string& text) {
    constexpr std::string_view whiteSpace = " \t\r\n";
    const auto first = text.find_first_not_of(whiteSpace);
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

std::string unquoted(const std::string& text) {
    const bool isQuoted = text.size() > 1 && text.front() == text.back() && (text[0] == '"' || text[0] == '\'');
    return isQuoted ? text.substr(1, text.size() - 2) : text;
}

bool isWord(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char character) {
        return std::isalnum(character) != 0 || character == '_';
    });
}

std::string decodedText(const std::string& bytes) {
    constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
    if (startsWith(bytes, utf8Mark)) {
        return bytes.substr(utf8Mark.size());
    }
    const auto begin = bytes.substr(0, 2);
    const bool hasMark = begin == "\xFF\xFE" || begin == "\xFE\xFF";
    const bool isPair = begin.size() == 2 && (begin[0] == '\0') != (begin[1] == '\0'); // a letter of ASCII
    if (!hasMark && !isPair) {
        return bytes;
    }
    const bool isLittle = hasMark ? begin[0] == '\xFF' : begin[1] == '\0';
    const std::size_t start = hasMark ? 2 : 0;
    gsize written = 0;
    const c::MemoryOwner<char> text(g_convert(bytes.data() + start, static_cast<gssize>(bytes.size() - start), "UTF-8",
                                              isLittle ? "UTF-16LE" : "UTF-16BE", nullptr, &written, nullptr));
    if (text == nullptr) {
        throw std::runtime_error("not valid UTF-16");
    }
    return {text.get(), written};
}

} // namespace deskwatch
