#include <iostream>
#include <memory>

#include "commands.h"
#include "session/observer.h"
#include "session/platform_faults.h"
#include "status/device_status.h"
#include "text/value_output.h"

namespace deskwatch {
namespace {

struct FaultOptions {
    PlatformFault fault;
    bool isCleared = false;
    bool isListed = false;
    bool isJson = false;
};

void listFunctions(bool isJson) {
    const auto functions = platformFunctions();
    if (isJson) {
        std::cout << jsonText(functions, 2) << '\n';
        return;
    }
    for (const auto& function : functions) {
        std::cout << function << '\n';
    }
}

void changeFaults(const CommonOptions& common, const FaultOptions& options) {
    const DeviceSession session(chosenDevice(common), observerId);
    if (options.isCleared) {
        clearFaults(session);
    } else if (!options.fault.function.empty()) {
        setFault(session, options.fault);
    } else {
        const auto faults = readFaults();
        std::cout << (options.isJson ? jsonText(faultsJson(faults), 2) + "\n" : faultTable(faults));
    }
}

} // namespace

void addFaultCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("fault", "Make a function of the platform fail when the service calls it");
    auto options = std::make_shared<FaultOptions>();
    auto* function =
        command
            ->add_option("FUNCTION", options->fault.function, "The function, one of --list (default: list the faults)")
            ->check(oneOf(platformFunctions(), "is not a function of the platform; fault --list names those that are"));
    auto* code = command->add_option("CODE", options->fault.code, "The code that it returns instead of doing its work")
                     ->check(checkNumber, "");
    function->needs(code);
    code->needs(function);
    command->add_option("--nth", options->fault.nth, "Only this call fails, counted from now (default: every call)")
        ->check(checkPositive, "")
        ->needs(function)
        ->type_name("N");
    command->add_flag("--clear", options->isCleared, "Remove all faults")->excludes(function);
    command->add_flag("--list", options->isListed, "List the functions that can fail")->excludes(function);
    command->add_flag("--json", options->isJson, "The list as a JSON array");
    command->footer("A function that returns a pointer returns null. A boot clears all faults.\n"
                    "Example:\n  deskwatch fault dpm_password_set_quality -13 --nth 2\n  deskwatch fault --clear");
    command->callback(
        [&common, options] { options->isListed ? listFunctions(options->isJson) : changeFaults(common, *options); });
}

} // namespace deskwatch
