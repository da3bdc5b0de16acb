#include "text/json_input.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <stdexcept>

namespace deskwatch {
namespace {

[[noreturn]] void refuse(const std::string& place, const std::string& remark, const nlohmann::json::exception& error) {
    throw std::runtime_error(place + ": not valid JSON" + remark + ": " + jsonFault(error));
}

} // namespace

std::string jsonFault(const std::exception& error) {
    const std::string what = error.what();
    const auto mark = what.find("syntax error");
    return what.substr(mark == std::string::npos ? what.find("] ") + 2 : mark);
}

std::string positionIn(std::string_view text, std::size_t offset) {
    const auto before = text.substr(0, offset);
    const auto lineStart = before.rfind('\n') + 1; // no line break: npos + 1 is the start of the text
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    return std::to_string(line) + ":" + std::to_string(offset - lineStart + 1);
}

void requireJson(const std::string& file, const std::string& text, const std::string& remark) {
    try {
        const auto parsed = nlohmann::json::parse(text);
    } catch (const nlohmann::json::parse_error& error) {
        const auto offset = error.byte > 0 ? error.byte - 1 : 0;
        refuse(file + ":" + positionIn(text, offset), remark, error);
    } catch (const nlohmann::json::exception& error) {
        refuse(file, remark, error); // a number out of range: the library does not say where
    }
}

} // namespace deskwatch
