#ifndef DESKWATCH_BUS_TRACE_H
#define DESKWATCH_BUS_TRACE_H

#include <gio/gio.h>
#include <nlohmann/json.hpp>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "device/bus_daemon.h"

namespace deskwatch {

/// Something that came to the service ("in") or that it did ("out"), as one line of a recording; recorded_text.h says
/// how texts stand in extra data and entries:
///
///     {"in": "start", "application": ID}                     an application came up
///     {"in": "end", "application": ID}                       the service ended
///     {"in": "launch", "from": ID, "extraData": {...}}
///     {"in": "message", "from": ID, "port": PORT, "entries": {...}}
///     {"in": "reply", "from": ID, "extraData": {...}}        the answer to a launch request
///     {"in": "key", "key": PATH, "value": VALUE}             someone else set a key
///     {"out": "write", "key": PATH, "value": VALUE}          a setting, a key or a preference
///     {"out": "launch", "to": ID, "replyWanted": BOOL, "extraData": {...}}
///     {"out": "message", "to": ID, "port": PORT, "entries": {...}}
///
/// What was done to the watch from outside ("around") is in no recording, because a replay cannot repeat it:
///
///     {"around": "event", "type": NAME}                      a system event
///     {"around": "fault", "function": NAME, "code": NUMBER or null, "nth": NUMBER}
///     {"around": "call", "method": NAME}                     a call of the interface for diagnosis
using TraceEvent = nlohmann::ordered_json;

/// The extra data or entries of an event, of pairs of texts in their bus form (text_pairs.h).
TraceEvent recordedEntries(GVariant* pairs);

/// Makes events of the messages on a bus.
class BusTrace {
public:
    using Sink = std::function<void(const TraceEvent& event)>;

    /// Learns which applications are on the bus now. The sink receives the events.
    BusTrace(const BusDaemon& daemon, Sink sink);

    /// Takes the next message of the bus.
    void take(GDBusMessage* message);

private:
    void takeCall(GDBusMessage* message);
    void takeReply(GDBusMessage* message);
    void takeOwnerChange(GDBusMessage* message);
    void takeLaunch(GDBusMessage* message);
    void takePortMessage(GDBusMessage* message);
    void takeChanges(GDBusMessage* message);
    void takeSystemEvent(GDBusMessage* message);
    void takeFault(const std::string& key, GVariant* value);
    std::string nameOf(const char* busName) const;
    bool isService(const char* busName) const;

    Sink sink_;
    /// The application that owns each connection.
    std::map<std::string, std::string> owners_;
    /// The service's launch requests that wait for an answer: its connection and the serial, and who is to answer.
    std::map<std::pair<std::string, guint32>, std::string> waiting_;
};

} // namespace deskwatch

#endif
