#include "actors/wearer.h"

#include <iostream>
#include <memory>

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
    Lock lock = Lock::None;
    std::optional<int> length;
};

void lockScreen(const CommonOptions& common, const LockOptions& options) {
    const int length = setLock(chosenDevice(common), options.lock, options.length);
    if (options.lock == Lock::None) {
        std::cout << "the screen has no lock\n";
        return;
    }
    std::cout << "the screen is locked with a " << (options.lock == Lock::Pin ? "PIN" : "password") << " of " << length
              << " characters\n";
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
    auto* command = program.add_subcommand("lock", "Set the screen's lock, as the wearer in the lock settings");
    auto options = std::make_shared<LockOptions>();
    chooseLock(command->add_option("LOCK", options->lock, "Kind of the lock")->required());
    command->add_option("--length", options->length, "Its number of characters (default: the fewest that are allowed)")
        ->check(checkPositive, "")
        ->type_name("N");
    command->footer("Fails with 3, and says what is required, when the enforced policy does not allow that lock.\n"
                    "Example:\n  deskwatch lock pin --length 6");
    command->callback([&common, options] { lockScreen(common, *options); });
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
