#include "outcome.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <sstream>

namespace {

// The words that begin the lines of the text.
namespace word {
constexpr char call[] = "call";
constexpr char step[] = "step";
constexpr char warning[] = "warning";
constexpr char launch[] = "launch";
constexpr char leak[] = "leak";
constexpr char count[] = "count";
constexpr char device[] = "device";
constexpr char running[] = "running";
constexpr char administrator[] = "administrator";
constexpr char nextRequest[] = "next";
} // namespace word

void addLine(std::string& text, const std::string& kind, std::string value) {
    std::replace(value.begin(), value.end(), '\n', ' ');
    text.append(kind).append(" ").append(value).append("\n");
}

void addLines(std::string& text, const std::string& kind, const Outcome::Lines& values) {
    for (const auto& value : values) {
        addLine(text, kind, value);
    }
}

void addNumbers(std::string& text, const std::string& kind, const std::map<std::string, int>& numbers) {
    for (const auto& [name, number] : numbers) {
        addLine(text, kind, std::to_string(number) + " " + name);
    }
}

void readNumber(std::map<std::string, int>& numbers, const std::string& value) {
    const auto blank = value.find(' ');
    numbers[value.substr(blank + 1)] = std::stoi(value.substr(0, blank));
}

bool begins(const std::string& text, const std::string& beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

std::string firstWord(const std::string& text) {
    return text.substr(0, text.find(' '));
}

} // namespace

std::map<std::string, std::string> Outcome::settings() const {
    std::map<std::string, std::string> last;
    for (const auto& line : calls) {
        if (begins(line, "dpm_password_set_") || begins(line, "dpm_restriction_set_") ||
            begins(line, "dpm_security_set_")) {
            last[firstWord(line)] = line;
        }
    }
    return last;
}

Outcome::Lines Outcome::settingNames() const {
    Lines names;
    for (const auto& [name, line] : settings()) {
        names.push_back(name);
    }
    return names;
}

Outcome::Lines Outcome::keys() const {
    Lines keys;
    for (const std::string key : {"db/eas/device_encryption_applied", "db/eas/password_policy_applied"}) {
        const auto isWrite = [&](const std::string& line) { return begins(line, "vconf_set_int " + key + " "); };
        if (std::any_of(calls.begin(), calls.end(), isWrite)) {
            keys.push_back(key);
        }
    }
    return keys;
}

std::string Outcome::toText() const {
    std::string text;
    addLines(text, word::call, calls);
    addLines(text, word::step, steps);
    addLines(text, word::warning, warnings);
    addLines(text, word::launch, launches);
    addLines(text, word::leak, leaks);
    addNumbers(text, word::count, counts);
    addNumbers(text, word::device, device);
    addLine(text, word::running, isRunning ? "1" : "0");
    addLine(text, word::administrator, isAdministrator ? "1" : "0");
    addLine(text, word::nextRequest, nextRequest);
    return text;
}

Outcome Outcome::fromText(const std::string& text) {
    Outcome outcome;
    const std::map<std::string, std::function<void(const std::string&)>> readers{
        {word::call, [&](const std::string& value) { outcome.calls.push_back(value); }},
        {word::step, [&](const std::string& value) { outcome.steps.push_back(value); }},
        {word::warning, [&](const std::string& value) { outcome.warnings.push_back(value); }},
        {word::launch, [&](const std::string& value) { outcome.launches.push_back(value); }},
        {word::leak, [&](const std::string& value) { outcome.leaks.push_back(value); }},
        {word::count, [&](const std::string& value) { readNumber(outcome.counts, value); }},
        {word::device, [&](const std::string& value) { readNumber(outcome.device, value); }},
        {word::running, [&](const std::string& value) { outcome.isRunning = value == "1"; }},
        {word::administrator, [&](const std::string& value) { outcome.isAdministrator = value == "1"; }},
        {word::nextRequest, [&](const std::string& value) { outcome.nextRequest = value; }},
    };
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const auto kind = firstWord(line);
        readers.at(kind)(line.substr(kind.size() + 1));
    }
    return outcome;
}
