#ifndef DESKWATCH_EVENT_RING_H
#define DESKWATCH_EVENT_RING_H

#include <cstdint>
#include <deque>
#include <map>
#include <string>

namespace deskwatch {

/// Where a page stands in what there is to tell.
struct EventCursor {
    /// The next entry of the time line.
    std::uint64_t entry = 0;
    /// The version of each state that was told.
    std::map<std::string, std::uint64_t> states;
};

/// What pages are told, as server-sent events: states, of which only the newest counts, and the entries of a time line,
/// of which the newest are kept. It is one for all pages, so that a page that does not read costs nothing.
class EventRing {
public:
    /// Entries that are kept at most, and their bytes together.
    static constexpr std::size_t mostEntries = 5000;
    static constexpr std::size_t mostBytes = 8 << 20;

    /// `epoch` tells the entries of this ring from those of another process.
    explicit EventRing(std::string epoch) : epoch_(std::move(epoch)) {}

    /// Sets a state to a JSON text on one line. One that is as before is not told again.
    void setState(const std::string& name, const std::string& json);

    /// Adds an entry, a JSON text on one line.
    void add(const std::string& json);

    /// The cursor of a page that is new, or that comes back with the id of the last entry it was told.
    EventCursor cursorFor(const std::string& lastId) const;

    /// What a page has not been told yet, up to about 64 KB, and moves its cursor; empty when it knows all.
    std::string next(EventCursor& cursor) const;

private:
    struct State {
        std::string json;
        std::uint64_t version = 0;
    };

    std::uint64_t firstEntry() const { return nextEntry_ - entries_.size(); }
    void appendEntries(EventCursor& cursor, std::string& text) const;

    std::string epoch_;
    std::map<std::string, State> states_;
    std::deque<std::string> entries_;
    std::size_t bytes_ = 0;
    std::uint64_t nextEntry_ = 0;
    std::uint64_t version_ = 0;
};

/// A server-sent event.
std::string serverEvent(const std::string& name, const std::string& json, const std::string& id = "");

} // namespace deskwatch

#endif
