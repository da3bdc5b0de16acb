#include <array>
#include <iostream>
#include <memory>

#include "actors/refusal.h"
#include "actors/request_outcome.h"
#include "commands.h"
#include "records/service_log.h"
#include "session/platform_events.h"
#include "text/value_text.h"

namespace deskwatch {
namespace {

/// What the service can be asked for.
constexpr std::array<const char*, 15> diagnosticMethods{"ping",
                                                        "removeAccount",
                                                        "usingFile",
                                                        "devicePasswordEnabled",
                                                        "allowSimplePassword",
                                                        "minDevicePasswordLength",
                                                        "minDevicePasswordComplexCharacters",
                                                        "maxInactivityTimeDeviceLock",
                                                        "devicePasswordExpiration",
                                                        "devicePasswordHistory",
                                                        "requireDeviceEncryption",
                                                        "allowBluetooth",
                                                        "allowPopimapEmail",
                                                        "allowTextMessaging",
                                                        "allowWifi"};

struct BusOptions {
    std::string method;
    std::optional<int> value;
};

/// Calls a method and prints what it returns. The service answers before it does what it was called for, so whether it
/// did is in its log.
void callMethod(const Device& device, const BusOptions& options) {
    ServiceLog log(device.layout().log());
    log.skip();
    int answer = 0;
    suggestWhenUnknown(options.method, {diagnosticMethods.begin(), diagnosticMethods.end()},
                       [&] { answer = callDiagnosticMethod(device, options.method, options.value); });
    if (const auto reason = reasonToPassOver(log.takeLines()); !reason.empty()) {
        throw Refusal(options.method + ": " + reason);
    }
    std::cout << answer << '\n';
}

} // namespace

void addEventCommand(CLI::App& program, const CommonOptions& common) {
    const std::map<std::string, app_event_type_e> events{{"low-memory", APP_EVENT_LOW_MEMORY},
                                                         {"low-battery", APP_EVENT_LOW_BATTERY},
                                                         {"orientation", APP_EVENT_DEVICE_ORIENTATION_CHANGED}};
    auto* command = program.add_subcommand("event", "Announce a system event to the applications of the watch");
    auto type = std::make_shared<app_event_type_e>();
    chooseByName(
        command->add_option("EVENT", *type, "The event")->required()->type_name("low-memory|low-battery|orientation"),
        events);
    command->footer("Example:\n  deskwatch event low-memory");
    command->callback([&common, type] { announceEvent(chosenDevice(common), *type); });
}

void addBusCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("bus", "Call the service's bus interface for diagnosis");
    auto options = std::make_shared<BusOptions>();
    auto* method = command->add_option("METHOD", options->method, "What the service is asked for")->required();
    method->type_name(joined({diagnosticMethods.begin(), diagnosticMethods.end()}, "|"));
    command->add_option("VALUE", options->value, "The field's value");
    command->footer(
        "Starts the service when it does not run; prints what the method returns.\n"
        "usingFile makes the service read its policy from /opt/usr/media/policy.json; fails with 3 when the\n"
        "service does not take it.\n"
        "Example:\n  deskwatch bus allowWifi 0");
    command->callback([&common, options] { callMethod(chosenDevice(common), *options); });
}

void addKillCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("kill", "End the service suddenly, as a crash would");
    command->footer("The next request starts it again.\nExample:\n  deskwatch kill");
    command->callback([&common] {
        std::cout << (killService(chosenDevice(common)) ? "the service was ended\n" : "the service did not run\n");
    });
}

} // namespace deskwatch
