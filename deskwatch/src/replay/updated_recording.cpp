#include <algorithm>
#include <set>

#include "replay/channels.h"

namespace deskwatch {
namespace {

/// What becomes of the lines: those that go, and what comes in after a line.
struct Changes {
    std::set<std::size_t> removed;
    std::map<std::size_t, std::vector<TraceEvent>> added;
};

/// The lengths of the longest common sequences of the rests of two lists.
std::vector<std::vector<std::size_t>> commonLengths(const Channel& channel) {
    const auto& [recorded, happened] = channel;
    std::vector<std::vector<std::size_t>> lengths(recorded.size() + 1, std::vector<std::size_t>(happened.size() + 1));
    for (std::size_t i = recorded.size(); i-- > 0;) {
        for (std::size_t j = happened.size(); j-- > 0;) {
            lengths[i][j] = recorded[i].event == happened[j].event ? lengths[i + 1][j + 1] + 1
                                                                   : std::max(lengths[i + 1][j], lengths[i][j + 1]);
        }
    }
    return lengths;
}

/// As few lines as possible change. Something new stands after the one before it, and after what led to it.
void addChanges(const Channel& channel, Changes& changes) {
    const auto& [recorded, happened] = channel;
    const auto lengths = commonLengths(channel);
    std::size_t i = 0;
    std::size_t j = 0;
    std::size_t last = 1;
    while (i < recorded.size() || j < happened.size()) {
        const bool isKept = i < recorded.size() && j < happened.size() && recorded[i].event == happened[j].event;
        if (isKept) {
            last = std::max(last, recorded[i++].line);
            ++j;
        } else if (i < recorded.size() && (j == happened.size() || lengths[i + 1][j] >= lengths[i][j + 1])) {
            last = std::max(last, recorded[i].line);
            changes.removed.insert(recorded[i++].line);
        } else {
            last = std::max(last, happened[j].line);
            changes.added[last].push_back(happened[j++].event);
        }
    }
}

} // namespace

std::string updatedRecording(const Recording& recording, const std::vector<ReplayedEffect>& happened) {
    Changes changes;
    for (const auto& [name, channel] : channelsOf(recording, happened)) {
        addChanges(channel, changes);
    }
    std::string text = recording.head + "\n";
    const auto add = [&](std::size_t line) {
        for (const auto& event : changes.added[line]) {
            text += event.dump(-1, ' ', false, TraceEvent::error_handler_t::replace) + "\n";
        }
    };
    add(1);
    for (const auto& event : recording.events) {
        if (changes.removed.count(event.line) == 0) {
            text += event.text + "\n";
        }
        add(event.line);
    }
    return text;
}

} // namespace deskwatch
