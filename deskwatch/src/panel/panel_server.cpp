#include "panel/panel_server.h"

#include <memory>

#include "c_owners.h"
#include "device/timer.h"
#include "panel/http_head.h"
#include "panel/http_listening.h"
#include "panel/page_files.h"

namespace deskwatch {
namespace {

constexpr std::chrono::milliseconds timeForGoodbye{500};
constexpr unsigned seeOther = 303;
constexpr unsigned notFound = 404;

void send(SoupServerMessage* message, const PanelReply& reply) {
    setSafeHeaders(message);
    soup_server_message_set_status(message, reply.status, nullptr);
    soup_server_message_set_response(message, reply.contentType.c_str(), SOUP_MEMORY_COPY, reply.body.data(),
                                     reply.body.size());
}

/// A request that is answered later, and whose client may have gone by then.
struct PendingReply {
    c::ObjectOwner<SoupServerMessage> message;
    bool isGone = false;

    explicit PendingReply(SoupServerMessage* pending) : message(SOUP_SERVER_MESSAGE(g_object_ref(pending))) {
        g_signal_connect_swapped(pending, "disconnected", G_CALLBACK(onGone), this);
        g_signal_connect_swapped(pending, "finished", G_CALLBACK(onGone), this);
        soup_server_message_pause(pending);
    }
    ~PendingReply() { g_signal_handlers_disconnect_by_data(message.get(), this); }
    PendingReply(const PendingReply&) = delete;
    PendingReply& operator=(const PendingReply&) = delete;

    static void onGone(gpointer self) { static_cast<PendingReply*>(self)->isGone = true; }

    void give(const PanelReply& reply) const {
        if (!isGone) {
            send(message.get(), reply);
            soup_server_message_unpause(message.get());
        }
    }
};

} // namespace

PanelServer::PanelServer(unsigned port, const EventRing& ring, Handlers handlers)
    : port_(port), server_(listenOnLoopback(port_)), gate_(port_, secrets_), handlers_(std::move(handlers)),
      streams_(ring) {
    g_signal_connect(server_.get(), "request-started", G_CALLBACK(onRequest), this);
    soup_server_add_handler(server_.get(), nullptr, onMessage, this, nullptr);
}

PanelServer::~PanelServer() {
    g_signal_handlers_disconnect_by_data(server_.get(), this);
    soup_server_disconnect(server_.get());
}

std::string PanelServer::address() const {
    return "http://127.0.0.1:" + std::to_string(port_) + Gate::entrance + "?token=" + secrets_.token;
}

void PanelServer::close() {
    streams_.close();
    Timer timer;
    timer.start(timeForGoodbye, [] {}); // its end wakes the loop
    while (!streams_.isEmpty() && timer.isRunning()) {
        g_main_context_iteration(nullptr, TRUE);
    }
}

void PanelServer::onRequest(SoupServer* /*server*/, SoupServerMessage* message, gpointer self) {
    setSafeHeaders(message);
    g_signal_connect(message, "got-headers", G_CALLBACK(onHead), self);
}

void PanelServer::onHead(SoupServerMessage* message, gpointer self) {
    auto* headers = soup_server_message_get_request_headers(message);
    soup_message_headers_remove(headers, "Range"); // thousands of ranges of a small file would make a large answer
    const auto verdict = static_cast<PanelServer*>(self)->gate_.judge(requestHead(message));
    if (!verdict.isPassed()) {
        soup_message_body_set_accumulate(soup_server_message_get_request_body(message), FALSE);
        send(message, {verdict.status, "text/plain; charset=utf-8", verdict.reason});
    }
}

void PanelServer::onMessage(SoupServer* /*server*/, SoupServerMessage* message, const char* path, GHashTable* query,
                            gpointer self) {
    const auto* from = query != nullptr ? static_cast<const char*>(g_hash_table_lookup(query, "from")) : nullptr;
    static_cast<PanelServer*>(self)->answer(message, path, textOrNothing(from));
}

void PanelServer::answer(SoupServerMessage* message, const std::string& path, const std::string& from) {
    if (path == Gate::entrance) {
        send(message, {seeOther, "text/plain; charset=utf-8", ""});
        auto* headers = soup_server_message_get_response_headers(message);
        soup_message_headers_replace(headers, "Location", gate_.folder().c_str());
        soup_message_headers_replace(headers, "Set-Cookie", gate_.cookie().c_str());
        return;
    }
    const auto name = path.substr(gate_.folder().size());
    if (isActionPath(name)) {
        answerAction(message);
    } else if (name == "events") {
        setSafeHeaders(message);
        auto* headers = soup_server_message_get_request_headers(message);
        const auto last = textOrNothing(soup_message_headers_get_one(headers, "Last-Event-ID"));
        streams_.open(message, last.empty() ? from : last); // a page that comes back of its own has no header
    } else if (const auto document = handlers_.onDocument(name)) {
        send(message, *document);
    } else if (!sendPageFile(message, name)) {
        send(message, {notFound, "text/plain; charset=utf-8", "there is nothing of that name"});
    }
}

void PanelServer::answerAction(SoupServerMessage* message) const {
    const auto text = c::takeText(soup_message_body_flatten(soup_server_message_get_request_body(message)));
    const auto pending = std::make_shared<PendingReply>(message);
    handlers_.onAction(text, [pending](const PanelReply& reply) { pending->give(reply); });
}

} // namespace deskwatch
