#include "panel/actions.h"

#include <algorithm>
#include <functional>
#include <map>

#include "device/plain_text.h"
#include "session/platform_faults.h"

namespace deskwatch {
namespace {

using ActionRequest = nlohmann::json;
using CommandLines = std::vector<CommandLine>;

/// What each function of a settings store says that cannot be reached.
constexpr char storeCode[] = "-1";

const ActionRequest& memberOf(const ActionRequest& request, const char* name) {
    const auto found = request.find(name);
    if (found == request.end()) {
        throw BadAction(std::string("the action lacks \"") + name + "\"");
    }
    return *found;
}

std::string textOf(const ActionRequest& request, const char* name) {
    const auto& value = memberOf(request, name);
    if (!value.is_string()) {
        throw BadAction(std::string("\"") + name + "\" must be a text");
    }
    auto text = value.get<std::string>();
    if (text.find('\0') != std::string::npos) {
        throw BadAction(std::string("\"") + name + "\" must not hold a null character");
    }
    return text;
}

/// A text that is an argument of its own, which must not be taken for an option.
std::string wordOf(const ActionRequest& request, const char* name) {
    auto text = textOf(request, name);
    if (text.empty() || text.front() == '-') {
        throw BadAction(std::string("\"") + name + "\" must neither be empty nor begin with -");
    }
    return text;
}

std::string numberOf(const ActionRequest& request, const char* name) {
    const auto& value = memberOf(request, name);
    if (!value.is_number_integer()) {
        throw BadAction(std::string("\"") + name + "\" must be a whole number");
    }
    return value.dump();
}

std::string choiceOf(const ActionRequest& request, const char* name, const std::vector<std::string>& choices) {
    auto text = textOf(request, name);
    if (std::find(choices.begin(), choices.end(), text) == choices.end()) {
        std::string list;
        for (const auto& choice : choices) {
            list += (list.empty() ? "" : ", ") + choice;
        }
        throw BadAction(std::string("\"") + name + "\" must be one of " + list);
    }
    return text;
}

CommandLines command(std::vector<std::string> arguments, std::string input = "") {
    return {{std::move(arguments), std::move(input), ""}};
}

CommandLines lockAction(const ActionRequest& request) {
    std::vector<std::string> arguments{"lock", choiceOf(request, "lock", {"none", "pin", "password"})};
    if (request.contains("length")) {
        arguments.insert(arguments.end(), {"--length", numberOf(request, "length")});
    }
    return command(arguments);
}

CommandLines importAction(const ActionRequest& request) {
    return command({"import", "/dev/stdin", "--json", "--account", numberOf(request, "account"),
                    "--name=" + textOf(request, "name")},
                   textOf(request, "document"));
}

CommandLines faultAction(const ActionRequest& request) {
    std::vector<std::string> arguments{"fault", wordOf(request, "function"), numberOf(request, "code")};
    if (request.contains("nth")) {
        arguments.insert(arguments.end(), {"--nth", numberOf(request, "nth")});
    }
    return command(arguments);
}

CommandLines storeAwayAction(const ActionRequest& /*request*/) {
    CommandLines commands;
    for (const auto& function : platformFunctions()) {
        if (startsWith(function, "vconf_") && !startsWith(function, "vconf_keynode_")) {
            commands.push_back({{"fault", function, storeCode}, "", ""});
        }
    }
    return commands;
}

/// A command that speaks to a server. The wearer's answer is left to a later refresh, so that the page is not kept
/// waiting.
CommandLines serverAction(const ActionRequest& request, std::vector<std::string> arguments) {
    auto password = textOf(request, "password");
    if (password.empty() || password.find('\n') != std::string::npos) {
        throw BadAction("\"password\" must be a line of text");
    }
    arguments.emplace_back("--no-wait");
    return {{std::move(arguments), "", std::move(password)}};
}

CommandLines connectAction(const ActionRequest& request) {
    return serverAction(request, {"mail", "connect", wordOf(request, "server"), "--user=" + textOf(request, "user")});
}

CommandLines keyAction(const ActionRequest& request) {
    const auto& value = memberOf(request, "value");
    std::vector<std::string> arguments{"key", "set", wordOf(request, "key")};
    if (value.is_string()) {
        arguments.insert(arguments.end(), {"--text", "--", textOf(request, "value")});
    } else {
        arguments.insert(arguments.end(), {"--", numberOf(request, "value")});
    }
    return command(arguments);
}

CommandLines bootAction(const ActionRequest& request) {
    std::vector<std::string> arguments{"boot"};
    if (request.contains("country")) {
        arguments.insert(arguments.end(), {"--country", wordOf(request, "country")});
    }
    return command(arguments);
}

using Action = std::function<CommandLines(const ActionRequest& request)>;

const std::map<std::string, Action>& actions() {
    static const std::map<std::string, Action> table{
        {"popup",
         [](const auto& request) {
             return command({"popup", choiceOf(request, "answer", {"ok", "sync-off", "dismiss"})});
         }},
        {"lock", lockAction},
        {"unlock",
         [](const auto&) {
             return command({"lock", "--right"});
         }},
        {"wrong-password",
         [](const auto&) {
             return command({"lock", "--wrong", "1"});
         }},
        {"idle",
         [](const auto& request) {
             return command({"lock", "--idle", numberOf(request, "seconds")});
         }},
        {"age",
         [](const auto& request) {
             return command({"lock", "--age", numberOf(request, "days")});
         }},
        {"encrypt", [](const auto&) { return command({"encrypt"}); }},
        {"tutorial",
         [](const auto& request) {
             return command({"tutorial", choiceOf(request, "state", {"start", "done"})});
         }},
        {"send",
         [](const auto& request) {
             return command({"mail", "policy", "/dev/stdin"}, textOf(request, "message"));
         }},
        {"whatif",
         [](const auto& request) {
             return command({"whatif", "--json", "/dev/stdin"}, textOf(request, "message"));
         }},
        {"import", importAction},
        {"delete",
         [](const auto& request) {
             return command({"mail", "delete", numberOf(request, "account")});
         }},
        {"mail",
         [](const auto& request) {
             return command({"mail", choiceOf(request, "request", {"check-password", "check-encryption", "wipe"})});
         }},
        {"servers",
         [](const auto&) {
             return command({"mail", "servers", "--json"});
         }},
        {"connect", connectAction},
        {"refresh",
         [](const auto& request) {
             return serverAction(request, {"mail", "refresh", numberOf(request, "account")});
         }},
        {"disconnect",
         [](const auto& request) {
             return command({"mail", "disconnect", numberOf(request, "account")});
         }},
        {"event",
         [](const auto& request) {
             return command({"event", choiceOf(request, "event", {"low-memory", "low-battery", "orientation"})});
         }},
        {"fault", faultAction},
        {"store-away", storeAwayAction},
        {"clear-faults",
         [](const auto&) {
             return command({"fault", "--clear"});
         }},
        {"kill", [](const auto&) { return command({"kill"}); }},
        {"key", keyAction},
        {"boot", bootAction},
        {"off", [](const auto&) { return command({"off"}); }},
    };
    return table;
}

std::string quoted(const std::string& word) {
    const bool isPlain = !word.empty() && word.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                                                 "0123456789_-./=@:+,") == std::string::npos;
    if (isPlain) {
        return word;
    }
    std::string text = "'";
    for (const char character : word) {
        text += character == '\'' ? std::string("'\\''") : std::string(1, character);
    }
    return text + "'";
}

} // namespace

std::vector<CommandLine> commandsOf(const nlohmann::json& request) {
    if (!request.is_object()) {
        throw BadAction("an action is an object, {\"action\": NAME, ...}");
    }
    const auto name = textOf(request, "action");
    const auto action = actions().find(name);
    if (action == actions().end()) {
        throw BadAction(name + " is not an action");
    }
    return action->second(request);
}

std::string shellText(const std::string& folder, const std::vector<CommandLine>& commands) {
    std::string text;
    for (const auto& command : commands) {
        text += (text.empty() ? "" : " && ") + std::string("deskwatch --device ") + quoted(folder);
        for (const auto& argument : command.arguments) {
            text += " " + quoted(argument);
        }
        text += command.input.empty() ? "" : " <<< " + quoted(command.input);
    }
    return text;
}

} // namespace deskwatch
