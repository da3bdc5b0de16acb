#include <algorithm>
#include <iostream>
#include <limits>
#include <stdexcept>

#include "actors/refusal.h"
#include "commands.h"
#include "commands/completion.h"
#include "device/plain_text.h"
#include "device/registry.h"
#include "messages/message_lint.h"
#include "text/input_file.h"
#include "text/suggestion.h"
#include "text/value_text.h"

namespace deskwatch {

namespace {

std::string checkAtLeast(int least, const std::string& text) {
    constexpr std::size_t longestShown = 40;
    if (const auto number = wholeNumber(text); number >= least) {
        return "";
    }
    return (text.size() > longestShown ? "a text of " + std::to_string(text.size()) + " characters" : text) +
           " is not a number from " + std::to_string(least) + " to " + std::to_string(std::numeric_limits<int>::max());
}

} // namespace

std::string checkPositive(const std::string& text) {
    return checkAtLeast(1, text);
}

std::string checkNumber(const std::string& text) {
    return checkAtLeast(std::numeric_limits<int>::min(), text);
}

std::string checkNotEmpty(const std::string& text) {
    return text.empty() ? "an empty name names nothing" : "";
}

CLI::Validator oneOf(const std::vector<std::string>& names, const std::string& refusal) {
    const auto refuse = [names, refusal](const std::string& text) -> std::string {
        if (std::find(names.begin(), names.end(), text) != names.end()) {
            return "";
        }
        const auto reason = refusal.empty() ? " not in {" + joined(names, ",") + "}" : " " + refusal;
        return text + reason + didYouMean(text, {names.begin(), names.end()});
    };
    return proposing(names, {refuse, ""});
}

CLI::Validator acceptedBy(std::function<void(const std::string&)> take) {
    const auto refuse = [take = std::move(take)](const std::string& text) -> std::string {
        try {
            take(text);
            return "";
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    };
    return {refuse, ""};
}

void asArgument(const std::function<void()>& take) {
    try {
        take();
    } catch (const std::runtime_error& error) {
        throw CLI::ValidationError(error.what());
    }
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
