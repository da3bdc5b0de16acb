#include "panel/action_runner.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <stdexcept>
#include <string_view>

#include "device/device.h"
#include "panel/actions.h"
#include "panel/child_process.h"
#include "recording/timeline.h"
#include "text/value_output.h"

namespace deskwatch {
namespace {

constexpr unsigned tooBusy = 503;
constexpr int mostActions = 8;

/// What only looks is not told.
constexpr std::array<std::string_view, 3> looks{"whatif", "import", "servers"};

} // namespace

/// The commands of one action, run one after the other.
struct ActionRunner::Action {
    std::string name;
    std::vector<CommandLine> commands;
    std::size_t next = 0;
    std::string shell;
    CommandOutcome outcome{0, "", ""};
    PanelServer::Answer answer;
};

ActionRunner::ActionRunner(std::string folder, EventRing& ring, std::function<void()> tell)
    : folder_(std::move(folder)), ring_(ring), tell_(std::move(tell)) {}

void ActionRunner::run(const nlohmann::json& request, const PanelServer::Answer& answer) {
    const auto action = std::make_shared<Action>();
    action->commands = commandsOf(request);
    action->name = request.at("action").get<std::string>();
    action->shell = shellText(folder_, action->commands);
    action->answer = answer;
    if (running_ >= mostActions) {
        answer({tooBusy, "text/plain; charset=utf-8", "too many actions are going on; wait for one to end"});
        return;
    }
    ++running_;
    continueWith(action);
}

void ActionRunner::continueWith(const std::shared_ptr<Action>& action) {
    if (action->outcome.status != 0 || action->next == action->commands.size()) {
        finish(*action);
        return;
    }
    const auto& command = action->commands[action->next++];
    std::vector<std::string> words{"--device", folder_};
    words.insert(words.end(), command.arguments.begin(), command.arguments.end());
    if (!command.password.empty()) {
        words.insert(words.end(), {"--password-file", "-"});
    }
    try {
        runCommand(words, command.password.empty() ? command.input : command.password + "\n",
                   [this, action](const CommandOutcome& outcome) {
                       action->outcome = outcome;
                       continueWith(action);
                   });
    } catch (const std::runtime_error& error) {
        action->outcome = {-1, "", error.what()};
        finish(*action);
    }
}

void ActionRunner::finish(const Action& action) {
    --running_;
    if (action.outcome.status == 0 && action.name == "boot") {
        lastBoot_ = Device(folder_).currentBoot();
    }
    if (std::find(looks.begin(), looks.end(), action.name) == looks.end()) {
        tellAction(action);
    }
    const nlohmann::ordered_json result{{"status", action.outcome.status},
                                        {"output", action.outcome.output},
                                        {"errors", action.outcome.errors},
                                        {"command", action.shell}};
    action.answer({200, "application/json", jsonText(result)});
}

/// All pages see what one of them did.
void ActionRunner::tellAction(const Action& action) {
    auto commands = action.commands;
    for (auto& command : commands) {
        command.input.clear(); // the time line has the message itself
    }
    TimelineEntry entry;
    entry.time = std::chrono::system_clock::now();
    entry.kind = "action";
    entry.text = shellText(folder_, commands);
    entry.detail = jsonText(
        {{"status", action.outcome.status}, {"output", action.outcome.output}, {"errors", action.outcome.errors}});
    auto line = timelineJson(entry);
    line.pop_back();
    ring_.add(line);
    tell_();
}

} // namespace deskwatch
