#ifndef DESKWATCH_ACTION_RUNNER_H
#define DESKWATCH_ACTION_RUNNER_H

#include <nlohmann/json.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "panel/event_ring.h"
#include "panel/panel_server.h"

namespace deskwatch {

/// Runs the commands that pages ask for, a few actions at a time, and tells all pages what was done.
class ActionRunner {
public:
    /// About the watch in that folder. `tell` is called when the ring has something new.
    ActionRunner(std::string folder, EventRing& ring, std::function<void()> tell);

    /// Answers when the action has ended. Throws BadAction.
    void run(const nlohmann::json& request, const PanelServer::Answer& answer);

    /// The last boot that a page asked for.
    const std::optional<pid_t>& lastBoot() const { return lastBoot_; }

private:
    struct Action;

    void continueWith(const std::shared_ptr<Action>& action);
    void finish(const Action& action);
    void tellAction(const Action& action);

    std::string folder_;
    EventRing& ring_;
    std::function<void()> tell_;
    int running_ = 0;
    std::optional<pid_t> lastBoot_;
};

} // namespace deskwatch

#endif
