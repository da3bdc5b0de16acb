#include "actors/wearer.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <memory>

#include "actors/lock_screen_use.h"
#include "commands.h"

namespace deskwatch {
namespace {

struct NamedAnswer {
    const char* name;
    const char* description;
    PopupAnswer answer;
};

void addAnswer(CLI::App& popup, const CommonOptions& common, const NamedAnswer& named) {
    auto* command = popup.add_subcommand(named.name, named.description);
    command->footer(std::string("Example:\n  deskwatch popup ") + named.name);
    command->callback([&common, answer = named.answer] { answerPopup(chosenDevice(common), answer); });
}

struct LockOptions {
    std::optional<Lock> lock;
    std::optional<int> length;
    std::optional<int> wrongPasswords;
    bool isUnlocked = false;
    std::optional<int> inactivity;
    std::optional<int> passwordAge;
};

std::string locked(const Device& device, const LockOptions& options) {
    const int length = setLock(device, *options.lock, options.length);
    return *options.lock == Lock::None
               ? "the screen has no lock"
               : std::string("the screen is locked with a ") + (*options.lock == Lock::Pin ? "PIN" : "password") +
                     " of " + std::to_string(length) + " characters";
}

std::string used(const Device& device, const LockOptions& options) {
    return options.lock             ? locked(device, options)
           : options.wrongPasswords ? enterWrongPassword(device, *options.wrongPasswords)
           : options.isUnlocked     ? unlock(device)
           : options.inactivity     ? leaveAlone(device, *options.inactivity)
                                    : agePassword(device, *options.passwordAge);
}

CLI::Option* addPositive(CLI::App& command, const char* name, std::optional<int>& value, const char* description) {
    return command.add_option(name, value, description)->check(checkPositive, "");
}

/// What the wearer can do with the lock, one thing at a time. The first is the option for a kind of lock.
std::array<const CLI::Option*, 5> addLockActions(CLI::App& command, LockOptions& options) {
    auto* const lock = command.add_option("LOCK", options.lock, "Set this kind of lock");
    chooseLock(lock);
    addPositive(command, "--length", options.length,
                "Number of characters of LOCK (default: the fewest that are allowed)")
        ->needs(lock)
        ->type_name("N");
    return {lock,
            addPositive(command, "--wrong", options.wrongPasswords, "Enter a wrong password N times")->type_name("N"),
            command.add_flag("--right", options.isUnlocked, "Enter the right password"),
            addPositive(command, "--idle", options.inactivity, "Leave the watch alone that long")->type_name("SECONDS"),
            addPositive(command, "--age", options.passwordAge, "Make the password that old")->type_name("DAYS")};
}

void addTutorialState(CLI::App& tutorial, const CommonOptions& common, const char* name, bool isInProgress) {
    auto* command = tutorial.add_subcommand(name, isInProgress ? "Start the tutorial" : "End the tutorial");
    command->footer(std::string("Example:\n  deskwatch tutorial ") + name);
    command->callback([&common, isInProgress] { setTutorial(chosenDevice(common), isInProgress); });
}

} // namespace

void addPopupCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("popup", "Answer, as the wearer, the popup that asks for a lock");
    command->require_subcommand(1);
    addAnswer(*command, common, {"ok", "Set a lock: the lock settings open", PopupAnswer::Ok});
    addAnswer(*command, common,
              {"sync-off", "Refuse: the mail application is asked to stop synchronising", PopupAnswer::SyncOff});
    addAnswer(*command, common, {"dismiss", "Close it without an answer", PopupAnswer::Dismiss});
    command->footer("Returns when the service has handled the answer; fails with 3 when no popup is open.\n"
                    "Example:\n  deskwatch popup ok");
}

void addLockCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("lock", "Set or use the screen's lock, as the wearer");
    auto options = std::make_shared<LockOptions>();
    const auto actions = addLockActions(*command, *options);
    command->footer(
        "Fails with 3, and says what is required, when the enforced policy does not allow that lock. After\n"
        "the last wrong password that it allows, the watch wipes itself.\n"
        "Example:\n  deskwatch lock pin --length 6\n  deskwatch lock --wrong 3");
    command->callback([&common, options, actions] {
        if (std::count_if(actions.begin(), actions.end(), [](const auto* action) { return action->count() > 0; }) !=
            1) {
            throw CLI::ValidationError("exactly one of LOCK, --wrong, --right, --idle and --age is needed");
        }
        std::cout << used(chosenDevice(common), *options) << '\n';
    });
}

void addEncryptCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("encrypt", "Encrypt the internal storage, as the wearer in the settings");
    command->footer("Example:\n  deskwatch encrypt");
    command->callback([&common] {
        const bool isChanged = encrypt(chosenDevice(common));
        std::cout << "the internal storage is encrypted" << (isChanged ? "\n" : " already\n");
    });
}

void addTutorialCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("tutorial", "Start or end the tutorial of the watch's first use");
    command->require_subcommand(1);
    addTutorialState(*command, common, "done", false);
    addTutorialState(*command, common, "start", true);
    command->footer("No popup opens while the tutorial is shown.\nExample:\n  deskwatch tutorial done");
}

} // namespace deskwatch
