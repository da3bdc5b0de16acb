#include <iostream>
#include <stdexcept>

#include "commands.h"
#include "device/registry.h"
#include "messages/message_lint.h"
#include "text/input_file.h"

namespace deskwatch {

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
    if (!common.device.empty()) {
        return Device(common.device);
    }
    const auto newest = Registry::ofUser().newest();
    if (!newest) {
        throw std::runtime_error("no watch is booted; boot one with: deskwatch boot");
    }
    return Device(*newest);
}

} // namespace deskwatch
