#ifndef DESKWATCH_PANEL_SERVER_H
#define DESKWATCH_PANEL_SERVER_H

#include <libsoup/soup.h>

#include <functional>
#include <optional>
#include <string>

#include "c_owners.h"
#include "panel/event_streams.h"
#include "panel/gate.h"
#include "panel/panel_secrets.h"

namespace deskwatch {

/// An answer to a request.
struct PanelReply {
    unsigned status = 200;
    std::string contentType = "text/plain; charset=utf-8";
    std::string body;
};

/// Serves the page, its events and its actions on the loopback interface. Whatever comes passes the gate first.
class PanelServer {
public:
    using Answer = std::function<void(const PanelReply& reply)>;
    /// Handles an action; the answer may be given later.
    using OnAction = std::function<void(const std::string& body, const Answer& answer)>;
    /// A document made on request; none when there is none of that name.
    using OnDocument = std::function<std::optional<PanelReply>(const std::string& name)>;

    struct Handlers {
        OnAction onAction;
        OnDocument onDocument;
    };

    /// Listens on that port, any free one for 0. Throws std::runtime_error when it cannot.
    PanelServer(unsigned port, const EventRing& ring, Handlers handlers);
    PanelServer(const PanelServer&) = delete;
    PanelServer& operator=(const PanelServer&) = delete;
    ~PanelServer();

    /// The address that lets a browser in.
    std::string address() const;

    /// The streams of events to the pages.
    EventStreams& streams() { return streams_; }

    /// Says goodbye to the pages and waits, half a second at most, until they have heard it.
    void close();

private:
    static void onRequest(SoupServer* server, SoupServerMessage* message, gpointer self);
    static void onHead(SoupServerMessage* message, gpointer self);
    static void onMessage(SoupServer* server, SoupServerMessage* message, const char* path, GHashTable* query,
                          gpointer self);

    void answer(SoupServerMessage* message, const std::string& path, const std::string& from);
    void answerAction(SoupServerMessage* message) const;

    PanelSecrets secrets_;
    unsigned port_ = 0;
    c::ObjectOwner<SoupServer> server_;
    Gate gate_;
    Handlers handlers_;
    EventStreams streams_;
};

} // namespace deskwatch

#endif
