#include "text/text_table.h"

#include <algorithm>

#include "c_owners.h"

namespace deskwatch {
namespace {

std::size_t width(const std::string& text) {
    return static_cast<std::size_t>(g_utf8_strlen(text.data(), static_cast<gssize>(text.size())));
}

std::vector<std::size_t> columnWidths(const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], width(row[column]));
        }
    }
    return widths;
}

} // namespace

std::string printable(const std::string& text) {
    const c::MemoryOwner<char> valid(g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())));
    std::string result;
    for (const char* at = valid.get(); *at != '\0';) {
        const char* next = g_utf8_next_char(at);
        const bool isControl = g_unichar_iscntrl(g_utf8_get_char(at)) != FALSE;
        result += isControl ? "\uFFFD" : std::string(at, next);
        at = next;
    }
    return result;
}

std::string textTable(const std::vector<std::vector<std::string>>& rows) {
    auto cells = rows;
    for (auto& row : cells) {
        std::transform(row.begin(), row.end(), row.begin(), printable);
    }
    const auto widths = columnWidths(cells);
    std::string text;
    for (const auto& row : cells) {
        std::string line = " ";
        for (std::size_t column = 0; column < row.size(); ++column) {
            line += " " + row[column] + std::string(widths[column] - width(row[column]) + 1, ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    return text;
}

} // namespace deskwatch
