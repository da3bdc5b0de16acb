#ifndef FAKE_LAUNCHES_H
#define FAKE_LAUNCHES_H

#include <app_control.h>

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

struct app_control_s {
    std::optional<std::string> appId;
    std::vector<std::pair<std::string, std::string>> extraData;
};

namespace fake {

/// A launch request that the service sent.
struct Launch {
    std::string appId;
    std::vector<std::pair<std::string, std::string>> extraData;
    app_control_reply_cb reply = nullptr;
    void* userData = nullptr;

    bool wantsReply() const { return reply != nullptr; }
};

/// The launch requests that the service sent and the handles that are alive.
class Launches {
public:
    std::vector<Launch> sent;

    /// The applications that the device lacks.
    std::set<std::string> missing{"", "com.example.nobody"};

    /// The handles that were created and not destroyed.
    std::set<app_control_h> handles;

    /// Answers a sent request with the extra data "result", or with none.
    void answer(std::size_t index, const std::optional<std::string>& result);
};

} // namespace fake

#endif
