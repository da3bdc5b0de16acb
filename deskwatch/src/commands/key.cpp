#include <iostream>
#include <memory>

#include "TeskConsumerKeys.h"
#include "commands.h"
#include "commands/completion.h"
#include "commands/output.h"
#include "device/watch_end.h"
#include "session/observer.h"
#include "session/shared_keys.h"
#include "text/value_output.h"

namespace deskwatch {
namespace {

struct KeyOptions {
    std::string key;
    std::vector<std::string> keys;
    std::string value;
    int count = 0;
    bool isText = false;
    bool isJson = false;
};

/// The keys that the service reads or writes.
std::vector<std::string> namedKeys() {
    return {TeskConsumerKeys::passwordPolicyApplied, TeskConsumerKeys::deviceEncryptionApplied,
            TeskConsumerKeys::passwordInputFinished, TeskConsumerKeys::lockType,
            TeskConsumerKeys::cryptoState,           TeskConsumerKeys::countryIso,
            TeskConsumerKeys::tutorialInProgress};
}

CLI::Option* takeKeys(CLI::Option* option) {
    const auto take = [](const std::string& key) { suggestWhenUnknown(key, namedKeys(), [&key] { requireKey(key); }); };
    return option->required()->check(proposing(namedKeys(), acceptedBy(take)));
}

std::string asLine(const std::string& key, const Value& value) {
    return jsonText({{"key", key}, {"value", valueJson(value)}});
}

void get(const CommonOptions& common, const KeyOptions& options) {
    const DeviceSession session(chosenDevice(common), observerId);
    Value value;
    suggestWhenUnknown(options.key, namedKeys(), [&] {
        value = readKey(options.key);
        if (std::holds_alternative<std::monostate>(value)) {
            throw std::runtime_error(options.key + " is not set");
        }
    });
    std::cout << (options.isJson ? asLine(options.key, value) : valueText(value)) << '\n';
}

/// A program that reads the key as what it was gets nothing then.
void warnOfOtherType(const std::string& key, const Value& value) {
    const auto before = readKey(key);
    if (before.index() == value.index() || std::holds_alternative<std::monostate>(before)) {
        return;
    }
    const bool isNumber = std::holds_alternative<int>(value);
    std::cerr << "warning: " << key << " was a " << (isNumber ? "text" : "number") << " and is a "
              << (isNumber ? "number now (--text keeps it a text)" : "text now") << '\n';
}

void set(const CommonOptions& common, const KeyOptions& options) {
    const DeviceSession session(chosenDevice(common), observerId);
    const Value value = options.isText ? Value(options.value) : typedValue(options.value);
    if (!options.isText) {
        warnOfOtherType(options.key, value);
    }
    writeKey(options.key, value);
    session.settleService();
}

void followAll(const CommonOptions& common, const KeyOptions& options) {
    const auto device = chosenDevice(common);
    untilWatchEnds(device, [&] {
        const DeviceSession session(device, observerId);
        endWithReader();
        session.endWithWatch();
        followKeys(options.keys, [&, left = options.count](const std::string& key, const Value& value) mutable {
            std::cout << (options.isJson ? asLine(key, value) : key + " " + valueText(value)) << '\n';
            flushFollowed();
            return left == 0 || --left > 0;
        });
    });
}

void addGet(CLI::App& key, const CommonOptions& common) {
    auto* command = key.add_subcommand("get", "Print a key's value");
    auto options = std::make_shared<KeyOptions>();
    takeKeys(command->add_option("KEY", options->key, "The key, such as db/setting/lock_type"));
    command->add_flag("--json", options->isJson, "One JSON object");
    command->footer("Fails with 1 when the key is not set.\nExample:\n  deskwatch key get db/setting/lock_type");
    command->callback([&common, options] { get(common, *options); });
}

void addSet(CLI::App& key, const CommonOptions& common) {
    auto* command = key.add_subcommand("set", "Set a key, as any application may");
    auto options = std::make_shared<KeyOptions>();
    takeKeys(command->add_option("KEY", options->key, "The key, below db/, file/ or memory/"));
    command->add_option("VALUE", options->value, "Its value: a number if it looks like one, else a text")->required();
    command->add_flag("--text", options->isText, "The value is a text even if it looks like a number");
    command->footer("Returns when the service has handled the change.\n"
                    "Example:\n  deskwatch key set db/rgn/country_iso KR");
    command->callback([&common, options] { set(common, *options); });
}

void addWatch(CLI::App& key, const CommonOptions& common) {
    auto* command = key.add_subcommand("watch", "Print the values of keys now, and again each time they are set");
    auto options = std::make_shared<KeyOptions>();
    takeKeys(command->add_option("KEY", options->keys, "The keys"));
    command
        ->add_option("--count", options->count,
                     "End after this many lines (default: run until interrupted, or the watch is switched off)")
        ->check(checkPositive, "")
        ->type_name("N");
    command->add_flag("--json", options->isJson, "Each line is a JSON object");
    command->footer("Example:\n  deskwatch key watch db/setting/lock_type db/ode/crypto_state");
    command->callback([&common, options] { followAll(common, *options); });
}

} // namespace

void addKeyCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("key", "Read, set and watch the keys that applications share");
    command->require_subcommand(1);
    addGet(*command, common);
    addSet(*command, common);
    addWatch(*command, common);
    command->footer("Example:\n  deskwatch key get db/setting/lock_type");
}

} // namespace deskwatch
