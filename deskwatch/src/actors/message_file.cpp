#include "actors/message_file.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <stdexcept>
#include <string_view>

#include "text/input_file.h"

namespace deskwatch {
namespace {

/// `line:column` of a byte of a text, counted from 1 as editors do; a column is a byte, too.
std::string position(std::string_view text, std::size_t offset) {
    const auto before = text.substr(0, offset);
    const auto lineStart = before.rfind('\n') + 1; // no line break: npos + 1 is the start of the text
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    return std::to_string(line) + ":" + std::to_string(offset - lineStart + 1);
}

/// What the library says, without the marks and the position that it puts in front.
std::string reason(const std::string& what) {
    const auto mark = what.find("syntax error");
    const auto start = mark == std::string::npos ? what.find("] ") + 2 : mark;
    return what.substr(start);
}

[[noreturn]] void refuse(const std::string& place, const std::string& remark, const nlohmann::json::exception& error) {
    throw std::runtime_error(place + ": not valid JSON" + remark + ": " + reason(error.what()));
}

void refuseOtherThanJson(const std::filesystem::path& file, const std::string& text, const std::string& remark) {
    try {
        const auto parsed = nlohmann::json::parse(text);
    } catch (const nlohmann::json::parse_error& error) {
        const auto offset = error.byte > 0 ? error.byte - 1 : 0;
        refuse(inputName(file) + ":" + position(text, offset), remark, error);
    } catch (const nlohmann::json::exception& error) {
        refuse(inputName(file), remark, error); // a number out of range: the library does not say where
    }
}

} // namespace

std::string readMessageFile(const std::filesystem::path& file, Check check) {
    std::string text = readInput(file);
    if (check == Check::ValidJson) {
        refuseOtherThanJson(file, text, " (--raw sends it as it is)");
    }
    if (const auto null = text.find('\0'); null != std::string::npos) {
        throw std::runtime_error(inputName(file) + ":" + position(text, null) +
                                 ": a message cannot carry a null character");
    }
    return text;
}

std::string readMessageOfKind(const std::filesystem::path& file, const std::string& kind) {
    std::string text = readMessageFile(file, Check::None);
    refuseOtherThanJson(file, text, "");
    const auto message = nlohmann::json::parse(text);
    const auto found = message.is_object() ? message.find("msgId") : message.end();
    if (found == message.end() || !found->is_string()) {
        throw std::runtime_error(inputName(file) + ": not a message: it has no \"msgId\"");
    }
    if (*found != kind) {
        throw std::runtime_error(inputName(file) + ": a message of the kind " + found->get<std::string>() +
                                 "; this command takes " + kind);
    }
    return text;
}

} // namespace deskwatch
