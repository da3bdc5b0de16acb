#include "commands.h"

namespace deskwatch {
namespace {

void addCommonOptions(CLI::App& program, CommonOptions& common) {
    program.add_option("--device", common.device, "Folder of the watch (default: the newest booted one)")
        ->envname("DESKWATCH_DEVICE")
        ->check(checkNotEmpty, "")
        ->type_name("DIR");
    program
        .add_option("--timeout", common.timeout,
                    "How long to wait for an application, or a bus, that does not answer (default: " +
                        std::to_string(common.timeout) + ")")
        ->envname("DESKWATCH_TIMEOUT")
        ->check(checkPositive, "")
        ->type_name("SECONDS");
}

} // namespace

void addCommands(CLI::App& program, CommonOptions& common) {
    addCommonOptions(program, common);
    program.set_version_flag("--version", std::string("deskwatch ") + TESK_VERSION, "Print the version and exit");
    program.require_subcommand(1);
    program.fallthrough();
    addBootCommand(program, common);
    addOffCommand(program, common);
    addListCommand(program);
    addMailCommand(program, common);
    addPopupCommand(program, common);
    addLockCommand(program, common);
    addEncryptCommand(program, common);
    addTutorialCommand(program, common);
    addStatusCommand(program, common);
    addExplainCommand(program, common);
    addCheckCommand(program, common);
    addWhatifCommand(program, common);
    addLogCommand(program, common);
    addTimelineCommand(program, common);
    addLaunchCommand(program, common);
    addKeyCommand(program, common);
    addEventCommand(program, common);
    addBusCommand(program, common);
    addLintCommand(program);
    addImportCommand(program, common);
    addCompareCommand(program);
    addExchangeCommand(program);
    addRecordCommand(program, common);
    addReplayCommand(program);
    addFaultCommand(program, common);
    addKillCommand(program, common);
    addPanelCommand(program, common);
    addCompanionCommand(program);
    addDocsCommand(program);
    program.footer("Exit status: 0 success, 1 the command failed, 2 wrong arguments, 3 refused by the watch.\n"
                   "Example:\n  deskwatch boot /tmp/watch\n  deskwatch mail policy samples/hardened.json\n"
                   "  deskwatch status\n  deskwatch off");
}

} // namespace deskwatch
