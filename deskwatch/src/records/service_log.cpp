#include "records/service_log.h"

#include <array>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string_view>

#include "records/log_line.h"

namespace deskwatch {
namespace {

constexpr std::string_view tag = "/TESK_CONSUMER(";

/// The parts of a line; none when another program wrote it.
std::optional<ServiceLine> parse(std::string_view logged) {
    const auto line = logLine(logged).text;
    constexpr std::string_view processEnd = "): ";
    constexpr std::string_view textStart = " >  ";
    const auto process = line.find(processEnd);
    const auto file = process + processEnd.size();
    const auto fileEnd = line.find(": ", file);
    const auto functionEnd = line.find('(', fileEnd);
    const auto text = line.find(textStart);
    if (line.find(tag) != 1 || process == std::string_view::npos || text == std::string_view::npos ||
        fileEnd == std::string_view::npos || functionEnd > text) {
        return std::nullopt;
    }
    const auto function = fileEnd + 2;
    return ServiceLine{line.front(), std::string(line.substr(file, fileEnd - file)),
                       std::string(line.substr(function, functionEnd - function)),
                       std::string(line.substr(text + textStart.size()))};
}

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

struct LockReason {
    std::string_view logged;
    const char* words;
};

/// By the end of what the service logs.
constexpr std::array<LockReason, 6> lockReasons{{
    {"enforce password by password quality", "a stronger kind of password is required"},
    {"enforce password by simple password policy", "simple passwords are forbidden now"},
    {"enforce password by password length", "a longer password is required"},
    {"enforce password by min complex charater", "more kinds of characters are required"},
    {"lock type : PIN", "the watch has no lock"},
    {"lock type : Password", "the lock is a PIN"},
}};

const char* lockReasonOf(std::string_view text) {
    for (const auto& reason : lockReasons) {
        if (endsWith(text, reason.logged)) {
            return reason.words;
        }
    }
    return nullptr;
}

/// The start and the end of the service do not concern the policy; a required lock is reported with its reason.
bool isOfNoConcern(const ServiceLine& line) {
    return line.file == "main.cpp" || line.file == "TeskConsumerKiller.cpp" ||
           line.text == "Password policy requires stronger password.";
}

void add(ServiceWarnings& warnings, const ServiceLine& line) {
    if (const char* reason = lockReasonOf(line.text)) {
        warnings.lockReason = reason;
    } else if (line.text == "tutorial is not finished yet") {
        warnings.isTutorialShown = true;
    } else if (!isOfNoConcern(line)) {
        warnings.others.emplace_back(line.text);
    }
}

} // namespace

ServiceWarnings warningsOf(const std::vector<ServiceLine>& lines) {
    ServiceWarnings warnings;
    for (const auto& line : lines) {
        if (line.level != 'V' && line.level != 'D' && line.level != 'I') {
            add(warnings, line);
        }
    }
    return warnings;
}

void ServiceLog::skip() {
    std::error_code missing;
    const auto size = std::filesystem::file_size(file_, missing);
    position_ = missing ? 0 : static_cast<std::streamoff>(size);
}

std::vector<ServiceLine> ServiceLog::takeLines() {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file_, error)) {
        return {}; // a device may never end
    }
    std::ifstream stream(file_, std::ios::binary);
    stream.seekg(position_);
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    position_ += static_cast<std::streamoff>(text.size());
    std::istringstream wanted(lines_.add(text));
    std::vector<ServiceLine> lines;
    for (std::string line; std::getline(wanted, line);) {
        if (auto parsed = parse(line)) {
            lines.push_back(std::move(*parsed));
        }
    }
    return lines;
}

} // namespace deskwatch
