#ifndef DESKWATCH_EVENT_STREAMS_H
#define DESKWATCH_EVENT_STREAMS_H

#include <libsoup/soup.h>

#include <list>
#include <memory>
#include <string>

#include "device/timer.h"
#include "panel/event_ring.h"

namespace deskwatch {

/// The streams of events to the open pages.
///
/// Each has one chunk on its way at most; the next one holds all that has come meanwhile. So a page that does not read
/// costs one chunk. A browser has six connections to a server, and actions need some, so that the oldest stream beyond
/// four is parked: its page is told, and its stream ends.
class EventStreams {
public:
    static constexpr std::size_t mostStreams = 4;

    explicit EventStreams(const EventRing& ring);
    ~EventStreams();
    EventStreams(const EventStreams&) = delete;
    EventStreams& operator=(const EventStreams&) = delete;

    /// Answers a request with a stream. `lastId` is that of the last entry that the page was told, or empty.
    void open(SoupServerMessage* message, const std::string& lastId);

    /// Tells all pages what is new in the ring.
    void tell();

    /// Tells all pages that the panel ends, and ends the streams.
    void close();

    bool isEmpty() const { return streams_.empty(); }

private:
    struct Stream;

    static void onWrote(SoupServerMessage* message, gpointer data);
    static void onGone(SoupServerMessage* message, gpointer data);

    void pump(Stream& stream);
    static void write(Stream& stream, const std::string& text);
    void end(Stream& stream, const char* lastEvent);
    void forget(const Stream* stream);
    void sendSigns();

    const EventRing& ring_;
    std::list<std::unique_ptr<Stream>> streams_;
    Timer signs_;
};

} // namespace deskwatch

#endif
