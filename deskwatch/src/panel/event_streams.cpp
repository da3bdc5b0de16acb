#include "panel/event_streams.h"

#include <algorithm>

#include "c_owners.h"

namespace deskwatch {
namespace {

/// A page that has gone is noticed only when something is sent to it.
constexpr std::chrono::seconds timeBetweenSigns{10};

/// How soon a browser comes back by itself.
constexpr char retryAdvice[] = "retry: 500\n\n";

} // namespace

struct EventStreams::Stream {
    Stream(EventStreams& streams, SoupServerMessage* request, EventCursor from)
        : owner(streams), message(SOUP_SERVER_MESSAGE(g_object_ref(request))), cursor(std::move(from)) {}

    EventStreams& owner;
    c::ObjectOwner<SoupServerMessage> message;
    EventCursor cursor;
    bool isWriting = false;
    /// Set when the stream is to end, with the event that says so.
    const char* lastEvent = nullptr;
    bool isComplete = false;
};

EventStreams::EventStreams(const EventRing& ring) : ring_(ring) {
    signs_.repeat(timeBetweenSigns, [this] { sendSigns(); });
}

EventStreams::~EventStreams() {
    for (const auto& stream : streams_) {
        g_signal_handlers_disconnect_by_data(stream->message.get(), stream.get());
    }
}

void EventStreams::open(SoupServerMessage* message, const std::string& lastId) {
    const auto isOpen = [](const auto& stream) { return stream->lastEvent == nullptr; };
    if (std::count_if(streams_.begin(), streams_.end(), isOpen) >= static_cast<std::ptrdiff_t>(mostStreams)) {
        end(**std::find_if(streams_.begin(), streams_.end(), isOpen), "parked");
    }
    auto* headers = soup_server_message_get_response_headers(message);
    const bool isOld = soup_server_message_get_http_version(message) == SOUP_HTTP_1_0;
    soup_message_headers_set_encoding(headers, isOld ? SOUP_ENCODING_EOF : SOUP_ENCODING_CHUNKED);
    soup_message_headers_set_content_type(headers, "text/event-stream", nullptr);
    soup_message_body_set_accumulate(soup_server_message_get_response_body(message), FALSE);
    soup_server_message_set_status(message, SOUP_STATUS_OK, nullptr);
    streams_.push_back(std::make_unique<Stream>(*this, message, ring_.cursorFor(lastId)));
    auto& stream = *streams_.back();
    g_signal_connect(message, "wrote-chunk", G_CALLBACK(onWrote), &stream);
    g_signal_connect(message, "finished", G_CALLBACK(onGone), &stream);
    g_signal_connect(message, "disconnected", G_CALLBACK(onGone), &stream);
    write(stream, retryAdvice + ring_.next(stream.cursor));
}

void EventStreams::tell() {
    for (const auto& stream : streams_) {
        pump(*stream);
    }
}

void EventStreams::close() {
    for (const auto& stream : streams_) {
        end(*stream, "bye");
    }
}

void EventStreams::pump(Stream& stream) {
    if (stream.isWriting || stream.isComplete) {
        return;
    }
    if (stream.lastEvent != nullptr) {
        stream.isComplete = true;
        auto* body = soup_server_message_get_response_body(stream.message.get());
        write(stream, serverEvent(stream.lastEvent, "{}"));
        soup_message_body_complete(body);
        return;
    }
    const auto text = ring_.next(stream.cursor);
    if (!text.empty()) {
        write(stream, text);
    }
}

void EventStreams::write(Stream& stream, const std::string& text) {
    stream.isWriting = true;
    auto* body = soup_server_message_get_response_body(stream.message.get());
    soup_message_body_append(body, SOUP_MEMORY_COPY, text.data(), text.size());
    soup_server_message_unpause(stream.message.get());
}

void EventStreams::end(Stream& stream, const char* lastEvent) {
    if (stream.lastEvent == nullptr) {
        stream.lastEvent = lastEvent;
        pump(stream);
    }
}

void EventStreams::onWrote(SoupServerMessage* /*message*/, gpointer data) {
    auto& stream = *static_cast<Stream*>(data);
    stream.isWriting = false;
    stream.owner.pump(stream);
}

void EventStreams::onGone(SoupServerMessage* message, gpointer data) {
    g_signal_handlers_disconnect_by_data(message, data);
    auto* stream = static_cast<Stream*>(data);
    stream->owner.forget(stream);
}

void EventStreams::forget(const Stream* stream) {
    streams_.remove_if([stream](const auto& candidate) { return candidate.get() == stream; });
}

void EventStreams::sendSigns() {
    for (const auto& stream : streams_) {
        if (!stream->isWriting && !stream->isComplete) {
            write(*stream, ":\n\n");
        }
    }
}

} // namespace deskwatch
