#include "panel/panel.h"

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>

#include "c_owners.h"
#include "commands.h"
#include "commands/output.h"
#include "device/end_request.h"
#include "device/registry.h"

namespace deskwatch {
namespace {

constexpr unsigned mostPort = 65535;

struct PanelCommandOptions {
    std::string folder;
    unsigned port = 0;
    bool isBrowserLeftOut = false;
};

Device panelDevice(const CommonOptions& common, const PanelCommandOptions& options) {
    const std::chrono::seconds patience(common.timeout);
    const auto named = !options.folder.empty() ? options.folder : common.device;
    if (!named.empty()) {
        return Device(named, patience);
    }
    return Device(Registry::ofUser().newest().value_or(Registry::ofUser().defaultDevice()), patience);
}

void openBrowser(const std::string& file) {
    if (std::getenv("DISPLAY") == nullptr && std::getenv("WAYLAND_DISPLAY") == nullptr) {
        return;
    }
    // who opens the file instead of the address does not show the token to other users of the machine
    const char* words[] = {"xdg-open", file.c_str(), nullptr};
    const auto flags =
        static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_SILENCE | G_SUBPROCESS_FLAGS_STDERR_SILENCE);
    const c::ObjectOwner<GSubprocess> browser(g_subprocess_newv(words, flags, nullptr));
}

/// Switches the watch off unless it was booted again since then.
void endBoot(const Device& device, const std::optional<pid_t>& boot) {
    if (boot && device.currentBoot() == boot) {
        device.off();
        Registry::ofUser().remove(device.layout().folder());
    }
}

void showPanel(const CommonOptions& common, const PanelCommandOptions& options) {
    setenv("DESKWATCH_TIMEOUT", std::to_string(common.timeout).c_str(), 1); // for the commands of the page
    const Device device = panelDevice(common, options);
    EndRequest endRequest; // what is booted here is switched off, however early the end comes
    std::optional<pid_t> own;
    if (!device.isBooted()) {
        bootWithDefaults(device);
        own = device.currentBoot();
    }
    try {
        const auto onReady = [&](const std::string& address, const std::string& file) {
            std::cout << address << '\n';
            flushOutput();
            if (!options.isBrowserLeftOut) {
                openBrowser(file);
            }
        };
        const auto ofPage = runPanel(device, {options.port, onReady}, endRequest);
        own = ofPage ? ofPage : own;
    } catch (...) {
        endBoot(device, own);
        throw;
    }
    endBoot(device, own);
}

} // namespace

void addPanelCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("panel", "Show a watch in the browser, with a switch for every policy");
    auto options = std::make_shared<PanelCommandOptions>();
    command->add_option("DIR", options->folder,
                        "The watch's folder; booted when it is not (default: --device, else the newest watch)");
    command->add_option("--port", options->port, "The port to listen on (default: any free one)")
        ->check(CLI::Range(1U, mostPort))
        ->type_name("N");
    command->add_flag("--no-browser", options->isBrowserLeftOut, "Print the address only");
    command->footer("Prints the address, which lets whoever knows it act on the watch. Listens on this machine only.\n"
                    "^C ends it, and switches off the watch if this command or the page booted it.\n"
                    "Example:\n  deskwatch panel /tmp/watch --no-browser");
    command->callback([&common, options] { showPanel(common, *options); });
}

} // namespace deskwatch
