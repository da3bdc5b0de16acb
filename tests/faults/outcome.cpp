#include "outcome.h"

#include <algorithm>
#include <array>
#include <sstream>

namespace {

using Lines = Outcome::Lines;

/// The lists, each with the letter that begins its lines in the text.
constexpr std::array<std::pair<char, Lines Outcome::*>, 5> lists{{{'c', &Outcome::calls},
                                                                  {'s', &Outcome::steps},
                                                                  {'w', &Outcome::warnings},
                                                                  {'l', &Outcome::launches},
                                                                  {'k', &Outcome::leaks}}};
constexpr char countLetter = 'n';
constexpr char administratorLetter = 'a';
constexpr char requestLetter = 'r';

std::string lineOf(char letter, std::string value) {
    std::replace(value.begin(), value.end(), '\n', ' ');
    return letter + value + "\n";
}

} // namespace

std::map<std::string, std::string> Outcome::settings() const {
    std::map<std::string, std::string> last;
    for (const auto& line : calls) {
        for (const char* beginning : {"dpm_password_set_", "dpm_restriction_set_", "dpm_security_set_"}) {
            if (line.rfind(beginning, 0) == 0) {
                last[line.substr(0, line.find(' '))] = line;
            }
        }
    }
    return last;
}

Lines Outcome::keys() const {
    Lines keys;
    for (const std::string key : {"db/eas/device_encryption_applied", "db/eas/password_policy_applied"}) {
        const auto isWrite = [&](const std::string& line) { return line.rfind("vconf_set_int " + key + " ", 0) == 0; };
        if (std::any_of(calls.begin(), calls.end(), isWrite)) {
            keys.push_back(key);
        }
    }
    return keys;
}

std::string Outcome::toText() const {
    std::string text;
    for (const auto& [letter, list] : lists) {
        for (const auto& value : this->*list) {
            text += lineOf(letter, value);
        }
    }
    for (const auto& [function, number] : counts) {
        text += lineOf(countLetter, function + " " + std::to_string(number));
    }
    return text + (isAdministrator ? lineOf(administratorLetter, "") : "") + lineOf(requestLetter, nextRequest);
}

Outcome Outcome::fromText(const std::string& text) {
    Outcome outcome;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const char letter = line.front();
        const auto value = line.substr(1);
        if (letter == countLetter) {
            const auto blank = value.rfind(' ');
            outcome.counts[value.substr(0, blank)] = std::stoi(value.substr(blank));
        } else if (letter == requestLetter) {
            outcome.nextRequest = value;
        } else if (letter == administratorLetter) {
            outcome.isAdministrator = true;
        } else {
            const auto isOfLine = [&](const auto& list) { return list.first == letter; };
            (outcome.*std::find_if(lists.begin(), lists.end(), isOfLine)->second).push_back(value);
        }
    }
    return outcome;
}
