#include "actors/message_file.h"

#include <nlohmann/json.hpp>

#include <stdexcept>

#include "text/input_file.h"
#include "text/json_input.h"

namespace deskwatch {
namespace {

/// What helps with a file that is not valid JSON; one that does not look like JSON is probably in another format.
std::string helpWith(const std::string& text) {
    const auto start = text.find_first_not_of(" \t\r\n");
    const bool isMeantAsJson = start == std::string::npos || text[start] == '{';
    return std::string(" (--raw sends it as it is") + (isMeantAsJson ? "" : "; deskwatch import reads other formats") +
           ")";
}

} // namespace

std::string readMessageFile(const std::filesystem::path& file, Check check) {
    std::string text = readInput(file);
    if (check == Check::ValidJson) {
        requireJson(inputName(file), text, helpWith(text));
    }
    if (const auto null = text.find('\0'); null != std::string::npos) {
        throw std::runtime_error(inputName(file) + ":" + positionIn(text, null) +
                                 ": a message cannot carry a null character");
    }
    return text;
}

std::string readMessageOfKind(const std::filesystem::path& file, const std::string& kind) {
    std::string text = readMessageFile(file, Check::None);
    requireJson(inputName(file), text, "");
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
