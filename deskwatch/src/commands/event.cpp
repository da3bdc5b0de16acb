#include <algorithm>
#include <array>
#include <iostream>
#include <iterator>
#include <memory>

#include "actors/refusal.h"
#include "actors/request_log.h"
#include "commands.h"
#include "records/service_log.h"
#include "session/platform_events.h"
#include "text/value_text.h"

namespace deskwatch {
namespace {

/// What the service can be asked for.
struct DiagnosticMethod {
    const char* name;
    bool takesValue;
};

constexpr std::array<DiagnosticMethod, 15> diagnosticMethods{{{"ping", false},
                                                              {"removeAccount", false},
                                                              {"usingFile", false},
                                                              {"devicePasswordEnabled", true},
                                                              {"allowSimplePassword", true},
                                                              {"minDevicePasswordLength", true},
                                                              {"minDevicePasswordComplexCharacters", true},
                                                              {"maxInactivityTimeDeviceLock", true},
                                                              {"devicePasswordExpiration", true},
                                                              {"devicePasswordHistory", true},
                                                              {"requireDeviceEncryption", true},
                                                              {"allowBluetooth", true},
                                                              {"allowPopimapEmail", true},
                                                              {"allowTextMessaging", true},
                                                              {"allowWifi", true}}};

std::vector<std::string> methodNames() {
    std::vector<std::string> names;
    std::transform(diagnosticMethods.begin(), diagnosticMethods.end(), std::back_inserter(names),
                   [](const DiagnosticMethod& method) { return method.name; });
    return names;
}

struct BusOptions {
    std::string method;
    std::optional<int> value;
};

void requireValue(const BusOptions& options) {
    const auto* const method =
        std::find_if(diagnosticMethods.begin(), diagnosticMethods.end(),
                     [&options](const DiagnosticMethod& known) { return options.method == known.name; });
    if (method->takesValue != options.value.has_value()) {
        throw CLI::ValidationError(options.method + (method->takesValue ? " needs a value" : " does not take a value"));
    }
}

/// Calls a method and prints what it returns. The service answers before it does what it was called for, so whether it
/// did is in its log.
void callMethod(const Device& device, const BusOptions& options) {
    ServiceLog log(device.layout().log());
    log.skip();
    const int answer = callDiagnosticMethod(device, options.method, options.value);
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
    method->type_name(joined(methodNames(), "|"))->check(oneOf(methodNames()));
    command->add_option("VALUE", options->value, "The field's value")->check(checkNumber, "");
    command->footer(
        "Starts the service when it does not run; prints what the method returns.\n"
        "A field's method stores a policy of the account 999, in the place of the last one, in which this field alone\n"
        "is set; removeAccount deletes it.\n"
        "usingFile makes the service read its policy from /opt/usr/media/policy.json; fails with 3 when the\n"
        "service does not take it.\n"
        "Example:\n  deskwatch bus allowWifi 0");
    command->callback([&common, options] {
        requireValue(*options);
        callMethod(chosenDevice(common), *options);
    });
}

void addKillCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("kill", "End the service suddenly, as a crash would");
    command->footer("The next request starts it again.\nExample:\n  deskwatch kill");
    command->callback([&common] {
        std::cout << (killService(chosenDevice(common)) ? "the service was ended\n" : "the service did not run\n");
    });
}

} // namespace deskwatch
