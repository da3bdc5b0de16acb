#include "panel/watch_feed.h"

#include "text/value_output.h"

namespace deskwatch {
namespace {

/// After the watch was seen going, or a follower failed on a watch that runs.
constexpr std::chrono::milliseconds timeToLookAgain{500};

/// What goes with the lines is for a reader of a terminal.
bool isJsonLine(const std::string& line) {
    return !line.empty() && line.front() == '{';
}

} // namespace

WatchFeed::WatchFeed(const Device& device, EventRing& ring, std::function<void()> tell)
    : device_(device), ring_(ring), tell_(std::move(tell)), mark_(device.layout().bootedMark(), [this] { look(); }) {
    look();
}

void WatchFeed::look() {
    if (followers_.empty() && device_.isBooted()) {
        start();
    }
    tellWatch(!followers_.empty());
}

void WatchFeed::start() {
    const auto state = [this](const char* name) {
        return [this, name](const std::string& line) {
            if (isJsonLine(line)) {
                ring_.setState(name, line);
                tell_();
            }
        };
    };
    follow({"status", "--follow", "--json"}, state("status"));
    follow({"explain", "--follow", "--json"}, state("explanation"));
    std::vector<std::string> timeline{"timeline", "--follow", "--json"};
    if (isPastTold_) {
        timeline.emplace_back("--new");
    }
    isPastTold_ = true;
    follow(timeline, [this](const std::string& line) {
        if (isJsonLine(line)) {
            ring_.add(line);
            tell_();
        }
    });
}

void WatchFeed::follow(const std::vector<std::string>& arguments, const LineProcess::OnLine& onLine) {
    std::vector<std::string> words{"--device", device_.layout().folder().string()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    followers_.emplace_back(words, onLine, [this](int) { onEnd(); });
}

/// One that ends, ends all, so that what is told is always of one boot.
void WatchFeed::onEnd() {
    followers_.clear();
    tellWatch(false);
    retry_.start(timeToLookAgain, [this] { look(); });
}

void WatchFeed::tellWatch(bool isBooted) {
    ring_.setState("watch", jsonText({{"folder", device_.layout().folder().string()}, {"booted", isBooted}}));
    tell_();
}

} // namespace deskwatch
