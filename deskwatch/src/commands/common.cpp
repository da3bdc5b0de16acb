#include <algorithm>
#include <charconv>
#include <iostream>
#include <limits>
#include <stdexcept>

#include "actors/refusal.h"
#include "commands.h"
#include "device/registry.h"
#include "messages/message_lint.h"
#include "text/input_file.h"
#include "text/suggestion.h"
#include "text/value_text.h"

namespace deskwatch {

std::string checkPositive(const std::string& text) {
    constexpr std::size_t longestShown = 40;
    int number = 0;
    const auto* const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, number);
    if (error == std::errc() && last == end && number > 0) {
        return "";
    }
    return (text.size() > longestShown ? "a text of " + std::to_string(text.size()) + " characters" : text) +
           " is not a number from 1 to " + std::to_string(std::numeric_limits<int>::max());
}

std::string checkNotEmpty(const std::string& text) {
    return text.empty() ? "an empty name names no watch" : "";
}

CLI::Validator oneOf(std::vector<std::string> names) {
    const auto refuse = [names = std::move(names)](const std::string& text) -> std::string {
        if (std::find(names.begin(), names.end(), text) != names.end()) {
            return "";
        }
        return text + " not in {" + joined(names, ",") + "}" + didYouMean(text, {names.begin(), names.end()});
    };
    return {refuse, ""};
}

void suggestWhenUnknown(const std::string& name, const std::vector<std::string>& known,
                        const std::function<void()>& action) {
    try {
        action();
    } catch (const Refusal&) {
        throw;
    } catch (const std::runtime_error& error) {
        if (std::find(known.begin(), known.end(), name) != known.end()) {
            throw;
        }
        throw std::runtime_error(error.what() + didYouMean(name, {known.begin(), known.end()}));
    }
}

void chooseLock(CLI::Option* option) {
    const std::map<std::string, Lock> locks{{"none", Lock::None}, {"pin", Lock::Pin}, {"password", Lock::Password}};
    option->type_name("none|pin|password");
    chooseByName(option, locks);
}

void warnOf(const std::string& file, const std::string& message) {
    for (const auto& line : remarkLines(inputName(file), message)) {
        std::cerr << "warning: " << line << '\n';
    }
}

std::string readMessageAndWarn(const std::string& file, Check check) {
    auto text = readMessageFile(file, check);
    if (check == Check::ValidJson) {
        warnOf(file, text);
    }
    return text;
}

Device chosenDevice(const CommonOptions& common) {
    const std::chrono::seconds patience(common.timeout);
    if (!common.device.empty()) {
        return Device(common.device, patience);
    }
    const auto newest = newestWatch();
    if (!newest) {
        throw std::runtime_error("no watch is booted; boot one with: deskwatch boot");
    }
    return Device(*newest, patience);
}

std::optional<std::filesystem::path> newestWatch() {
    const auto folders = Registry::ofUser().folders();
    const auto newest = std::find_if(folders.rbegin(), folders.rend(), isThere);
    return newest != folders.rend() ? std::optional(*newest) : std::nullopt;
}

bool isThere(const std::filesystem::path& folder) {
    try {
        return Device(folder).exists();
    } catch (const std::runtime_error&) {
        return false;
    }
}

} // namespace deskwatch
