#ifndef DESKWATCH_BUS_TRACE_H
#define DESKWATCH_BUS_TRACE_H

#include <gio/gio.h>
#include <nlohmann/json.hpp>

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "device/bus_daemon.h"

namespace deskwatch {

/// Something that came to the service ("in") or that it did ("out"), as one line of a recording; recorded_text.h says
/// how texts stand in extra data and entries:
///
///     {"in": "start", "application": ID}                     an application came up
///     {"in": "end", "application": ID, "how": HOW}           the service ended: "exit" or "kill", suddenly; a recorder
///                                                            says "idle" for an end that it came to by itself
///     {"in": "launch", "from": ID, "extraData": {...}}
///     {"in": "message", "from": ID, "port": PORT, "entries": {...}}
///     {"in": "reply", "from": ID, "extraData": {...}}        the answer to a launch request
///     {"in": "key", "key": PATH, "value": VALUE}             someone else set a key
///     {"out": "write", "key": PATH, "value": VALUE}          a setting, a key or a preference
///     {"out": "launch", "to": ID, "replyWanted": BOOL, "extraData": {...}}
///     {"out": "message", "to": ID, "port": PORT, "entries": {...}}
///     {"out": "wipe", "storage": NAME}                       "internal" or "external"
///
/// What came to the service's port, which took it for too long; a recording leaves it out:
///
///     {"refused": "message", "from": ID, "port": PORT, "entries": {...}}
///
/// What was done to the watch from outside:
///
///     {"around": "event", "type": NAME}                      a system event, of which an unknown one is a number
///     {"around": "fault", "function": NAME, "code": NUMBER or null, "nth": NUMBER}
///     {"around": "call", "method": NAME, "value": NUMBER}    a call of the interface for diagnosis, the value if any
using TraceEvent = nlohmann::ordered_json;

/// The extra data or entries of an event, of pairs of texts in their bus form (text_pairs.h).
TraceEvent recordedEntries(GVariant* pairs);

/// The pairs of texts in their bus form that recorded extra data or entries mean, a floating reference.
GVariant* entriesOfRecorded(const TraceEvent& entries);

/// A setting of that path as a recording has it. One that makes an application the administrator holds the number of a
/// user of the machine, and says `registered` here.
TraceEvent settingOf(const std::string& path, GVariant* value);
bool isRegistration(const std::string& path);
inline constexpr char registered[] = "registered";

/// In a fault's event: all of them.
inline constexpr char everyFunction[] = "every function";

/// The system event of that name, or of the number that the text is; none for another text.
std::optional<int> systemEventOf(const std::string& name);

/// Makes events of the messages on a bus.
class BusTrace {
public:
    using Sink = std::function<void(const TraceEvent& event)>;

    /// Learns which applications are on the bus now. The sink receives the events.
    BusTrace(const BusDaemon& daemon, Sink sink);

    /// Match rules of the bus for the messages from which effects and ends of the service come, a fraction of all.
    static std::vector<std::string> rulesOfEffects();

    /// Takes the next message of the bus.
    void take(GDBusMessage* message);

private:
    void takeCall(GDBusMessage* message);
    void takeReply(GDBusMessage* message);
    void takeOwnerChange(GDBusMessage* message);
    void takeLaunch(GDBusMessage* message);
    void takePortMessage(GDBusMessage* message);
    void takeChanges(GDBusMessage* message);
    void takeDiagnosis(GDBusMessage* message);
    void takeSystemSignal(GDBusMessage* message);
    void takeFault(const std::string& key, GVariant* value);
    std::string nameOf(const char* busName) const;
    bool isService(const char* busName) const;

    Sink sink_;
    /// Whether the service has begun to give its name back, which one that ends suddenly never does.
    bool isServiceLeaving_ = false;
    /// The application that owns each connection.
    std::map<std::string, std::string> owners_;
    /// The service's launch requests that were not answered yet: its connection and the serial, and who is to answer;
    /// nobody when it does not ask for an answer.
    std::map<std::pair<std::string, guint32>, std::string> waiting_;
};

} // namespace deskwatch

#endif
