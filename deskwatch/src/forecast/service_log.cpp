#include "forecast/service_log.h"

#include <array>
#include <iterator>
#include <optional>
#include <sstream>
#include <string_view>

namespace deskwatch {
namespace {

/// A line of the service's log: `W/TESK_CONSUMER(  123): File.cpp: function(45) >  text`.
struct ServiceLine {
    std::string_view file;
    std::string_view text;
};

std::optional<ServiceLine> parse(std::string_view line) {
    constexpr std::string_view tag = "/TESK_CONSUMER(";
    constexpr std::string_view processEnd = "): ";
    constexpr std::string_view textStart = " >  ";
    const auto file = line.find(processEnd);
    const auto fileEnd = line.find(": ", file + processEnd.size());
    const auto text = line.find(textStart);
    if (line.find(tag) != 1 || file == std::string_view::npos || text == std::string_view::npos) {
        return std::nullopt;
    }
    const auto fileStart = file + processEnd.size();
    return ServiceLine{line.substr(fileStart, fileEnd - fileStart), line.substr(text + textStart.size())};
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

ServiceWarnings ServiceLog::take() {
    std::ifstream stream(file_, std::ios::binary);
    stream.seekg(position_);
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    position_ += static_cast<std::streamoff>(text.size());
    std::istringstream lines(lines_.add(text));
    ServiceWarnings warnings;
    for (std::string line; std::getline(lines, line);) {
        if (const auto parsed = parse(line)) {
            add(warnings, *parsed);
        }
    }
    return warnings;
}

} // namespace deskwatch
