#include <algorithm>
#include <cctype>
#include <iostream>
#include <memory>
#include <optional>

#include "commands.h"
#include "commands/completion.h"
#include "device/application_ids.h"
#include "device/end_request.h"
#include "device/registry.h"
#include "text/country.h"

namespace deskwatch {
namespace {

struct BootOptions {
    std::string folder;
    std::string service;
    std::string mail;
    std::string country;
    std::optional<Lock> lock;
    bool isEncrypted = false;
    bool isTutorialShown = false;
};

std::filesystem::path ownProgram() {
    return std::filesystem::read_symlink("/proc/self/exe");
}

std::filesystem::path serviceProgram(const BootOptions& options) {
    return options.service.empty() ? ownProgram().parent_path() / "tesk-agent"
                                   : std::filesystem::absolute(options.service);
}

std::vector<Application> applications(const BootOptions& options) {
    auto all = standardApplications(serviceProgram(options), {ownProgram().string(), "companion"});
    if (!options.mail.empty()) {
        const auto mail = std::find_if(all.begin(), all.end(), [](const auto& one) { return one.id == ids::mail; });
        mail->command = {std::filesystem::absolute(options.mail).string()};
    }
    return all;
}

Device bootedDevice(const CommonOptions& common, const BootOptions& options) {
    const std::chrono::seconds patience(common.timeout);
    if (!options.folder.empty()) {
        return Device(options.folder, patience);
    }
    return Device(common.device.empty() ? Registry::ofUser().defaultDevice() : std::filesystem::path(common.device),
                  patience);
}

DeviceState deviceState(const BootOptions& options) {
    DeviceState state;
    state.lock = options.lock;
    state.encrypted = options.isEncrypted ? std::optional(true) : std::nullopt;
    state.country = options.country.empty() ? std::nullopt : std::optional(options.country);
    state.tutorial = options.isTutorialShown;
    return state;
}

/// Makes a country's code of a text; says in words why it is none.
std::string takeCountry(std::string& text) {
    std::string code = text;
    std::transform(code.begin(), code.end(), code.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    if (!isCountry(code)) {
        return text + " is not a country; an ISO 3166 code has two letters, such as KR";
    }
    text = code;
    return "";
}

/// The watch runs and is listed, or it does not run: also when this process is told to end meanwhile, and when it is
/// killed, which leaves a watch that is listed and can be switched off.
void bootAs(const Device& device, const BootOptions& options) {
    const auto folder = device.layout().folder();
    const auto registry = Registry::ofUser();
    const EndRequest endRequest;
    const bool isNew = registry.announce(folder);
    bool isBooted = false;
    const auto undo = [&] {
        if (isBooted) {
            device.off();
        }
        if (isNew || isBooted) {
            registry.remove(folder);
        }
    };
    try {
        device.boot(applications(options), deviceState(options));
        isBooted = true;
        registry.add(folder);
    } catch (const std::exception&) {
        undo();
        endRequest.obey();
        throw;
    }
    if (endRequest.isNoted()) {
        undo();
        endRequest.obey();
    }
}

void boot(const CommonOptions& common, const BootOptions& options) {
    const Device device = bootedDevice(common, options);
    bootAs(device, options);
    std::cout << "booted " << device.layout().folder().string() << '\n';
}

} // namespace

void bootWithDefaults(const Device& device) {
    bootAs(device, {});
}

void addBootCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("boot", "Boot a watch in a folder, which keeps its state");
    auto options = std::make_shared<BootOptions>();
    command
        ->add_option("DIR", options->folder,
                     "The watch's folder, new or from an earlier boot (default: --device, else a folder of the user)")
        ->check(checkNotEmpty, "");
    command
        ->add_option("--country", options->country,
                     "Country of the watch, an ISO 3166 code (default for a fresh watch: US)")
        ->type_name("CODE")
        ->transform(proposing(countryCodes(), {takeCountry, ""}));
    chooseLock(command->add_option("--lock", options->lock, "Lock of the screen (default for a fresh watch: none)"));
    command->add_flag("--encrypted", options->isEncrypted, "The internal storage is encrypted");
    command->add_flag("--tutorial", options->isTutorialShown, "The tutorial of the first use is being shown");
    command->add_option("--service", options->service, "Program of the service (default: tesk-agent beside deskwatch)")
        ->type_name("PATH");
    command->add_option("--mail", options->mail, "Program of the mail application (default, at each boot: a stand-in)")
        ->type_name("PATH");
    command->footer("Example:\n  deskwatch boot /tmp/watch --country KR --lock pin");
    command->callback([&common, options] { boot(common, *options); });
}

} // namespace deskwatch
