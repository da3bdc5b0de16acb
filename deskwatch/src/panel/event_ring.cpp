#include "panel/event_ring.h"

#include <optional>

#include "device/plain_text.h"

namespace deskwatch {
namespace {

constexpr std::size_t mostAtOnce = 65'536;

/// The number at the end of an id of that epoch.
std::optional<std::uint64_t> entryNumber(const std::string& id, const std::string& epoch) {
    const auto start = epoch + "-";
    if (!startsWith(id, start)) {
        return std::nullopt;
    }
    return wholeNumber<std::uint64_t>(id.substr(start.size()));
}

} // namespace

std::string serverEvent(const std::string& name, const std::string& json, const std::string& id) {
    return (id.empty() ? "" : "id: " + id + "\n") + "event: " + name + "\ndata: " + json + "\n\n";
}

void EventRing::setState(const std::string& name, const std::string& json) {
    auto& state = states_[name];
    if (state.version == 0 || state.json != json) {
        state = {json, ++version_};
    }
}

void EventRing::add(const std::string& json) {
    entries_.push_back(json);
    bytes_ += json.size();
    ++nextEntry_;
    while (entries_.size() > mostEntries || bytes_ > mostBytes) {
        bytes_ -= entries_.front().size();
        entries_.pop_front();
    }
}

EventCursor EventRing::cursorFor(const std::string& lastId) const {
    const auto last = entryNumber(lastId, epoch_);
    const bool isKnown = last && *last < nextEntry_;
    return {isKnown ? *last + 1 : firstEntry(), {}};
}

std::string EventRing::next(EventCursor& cursor) const {
    std::string text;
    for (const auto& [name, state] : states_) {
        auto& told = cursor.states[name];
        if (told != state.version) {
            text += serverEvent(name, state.json);
            told = state.version;
        }
    }
    appendEntries(cursor, text);
    return text;
}

void EventRing::appendEntries(EventCursor& cursor, std::string& text) const {
    if (cursor.entry < firstEntry()) {
        text += serverEvent("lost", std::to_string(firstEntry() - cursor.entry));
        cursor.entry = firstEntry();
    }
    for (; cursor.entry < nextEntry_ && text.size() < mostAtOnce; ++cursor.entry) {
        const auto& json = entries_[cursor.entry - firstEntry()];
        text += serverEvent("entry", json, epoch_ + "-" + std::to_string(cursor.entry));
    }
}

} // namespace deskwatch
