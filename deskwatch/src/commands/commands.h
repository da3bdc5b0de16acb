#ifndef DESKWATCH_COMMANDS_H
#define DESKWATCH_COMMANDS_H

#include <CLI/CLI.hpp>

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "actors/message_file.h"
#include "actors/request.h"
#include "device/device.h"

namespace deskwatch {

/// The options before the command.
struct CommonOptions {
    /// The folder of the watch; empty when the newest one is meant.
    std::string device;
    /// How long to wait for an answer of an application or a bus, in seconds.
    int timeout = static_cast<int>(Device::defaultPatience.count());
};

// What a command cannot take whatever watch, file or server it is for is a wrong argument: a check of the option
// refuses it, or the command throws CLI::ValidationError when it needs several options to tell. The program then ends
// with 2.

/// Refuses a text that is none of these names: with the list, or with other words for a long one, and with the name
/// that was probably meant.
CLI::Validator oneOf(const std::vector<std::string>& names, const std::string& refusal = "");

/// Refuses a text for which a function throws std::runtime_error, in its words.
CLI::Validator acceptedBy(std::function<void(const std::string&)> take);

/// Runs what throws std::runtime_error for wrong arguments alone; throws CLI::ValidationError then, with the same
/// words.
void asArgument(const std::function<void()>& take);

/// Makes an option accept the names of values.
template <class Type>
void chooseByName(CLI::Option* option, const std::map<std::string, Type>& values) {
    std::vector<std::string> names;
    names.reserve(values.size());
    for (const auto& [name, value] : values) {
        names.push_back(name);
    }
    option->transform(CLI::Transformer(values).description(""));
    option->transform(oneOf(names)); // the last one is asked first
}

/// Runs what fails for a name that nobody knows; the failure then says which name was probably meant.
void suggestWhenUnknown(const std::string& name, const std::vector<std::string>& known,
                        const std::function<void()>& action);

/// Refuses what is not a number from 1 to the largest one, in words; empty when it is one.
std::string checkPositive(const std::string& text);

/// Refuses what is not a number of 32 bits, in words; empty when it is one.
std::string checkNumber(const std::string& text);

/// Refuses an empty text, in words; empty when there is one.
std::string checkNotEmpty(const std::string& text);

/// Makes an option accept the name of a lock.
void chooseLock(CLI::Option* option);

/// Prints to standard error what lint would remark on a message.
void warnOf(const std::string& file, const std::string& message);

/// The text of a message file. Prints to standard error what lint would remark.
std::string readMessageAndWarn(const std::string& file, Check check);

/// A request and where it comes from: a file, or nothing where the command says it all.
struct SourcedRequest {
    std::string source;
    Request request;
};

/// Sends requests and prints what became of each. What the watch did not do is thrown as one Refusal.
void sendAndTell(const CommonOptions& common, const std::vector<SourcedRequest>& sourced);

/// The watch that a command applies to. Throws std::runtime_error when none is named and none is booted.
Device chosenDevice(const CommonOptions& common);

/// Boots a watch as `deskwatch boot` does without options, and remembers it as the newest one. Throws
/// std::runtime_error as Device::boot does.
void bootWithDefaults(const Device& device);

/// The watch that was booted last, of those that ls lists and whose folders are still there.
std::optional<std::filesystem::path> newestWatch();

/// Whether a folder is that of a watch.
bool isThere(const std::filesystem::path& folder);

// Each adds one command to the program. Parsing the arguments runs the command, which throws std::runtime_error when it
// fails. The options are read then and must outlive the program.
void addBootCommand(CLI::App& program, const CommonOptions& common);
void addOffCommand(CLI::App& program, const CommonOptions& common);
void addMailCommand(CLI::App& program, const CommonOptions& common);
/// Adds the commands for servers to the command `mail`.
void addMailServerCommands(CLI::App& mail, const CommonOptions& common);
void addExchangeCommand(CLI::App& program);
void addStatusCommand(CLI::App& program, const CommonOptions& common);
void addExplainCommand(CLI::App& program, const CommonOptions& common);
void addCheckCommand(CLI::App& program, const CommonOptions& common);
void addWhatifCommand(CLI::App& program, const CommonOptions& common);
void addPopupCommand(CLI::App& program, const CommonOptions& common);
void addLockCommand(CLI::App& program, const CommonOptions& common);
void addEncryptCommand(CLI::App& program, const CommonOptions& common);
void addTutorialCommand(CLI::App& program, const CommonOptions& common);
void addLaunchCommand(CLI::App& program, const CommonOptions& common);
void addKeyCommand(CLI::App& program, const CommonOptions& common);
void addEventCommand(CLI::App& program, const CommonOptions& common);
void addBusCommand(CLI::App& program, const CommonOptions& common);
void addFaultCommand(CLI::App& program, const CommonOptions& common);
void addLogCommand(CLI::App& program, const CommonOptions& common);
void addTimelineCommand(CLI::App& program, const CommonOptions& common);
void addKillCommand(CLI::App& program, const CommonOptions& common);
void addPanelCommand(CLI::App& program, const CommonOptions& common);
void addListCommand(CLI::App& program);

void addLintCommand(CLI::App& program);
void addCompareCommand(CLI::App& program);
void addImportCommand(CLI::App& program, const CommonOptions& common);
void addRecordCommand(CLI::App& program, const CommonOptions& common);
void addReplayCommand(CLI::App& program);

/// Adds the command that writes the manual page and the completion from the commands; the build runs it.
void addDocsCommand(CLI::App& program);

/// Adds all commands and the options before them, which are stored in `common`.
void addCommands(CLI::App& program, CommonOptions& common);

/// Adds the command that the bus starts as the applications beside the service; users do not see it.
void addCompanionCommand(CLI::App& program);

} // namespace deskwatch

#endif
