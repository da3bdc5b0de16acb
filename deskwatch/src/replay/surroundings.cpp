#include "replay/surroundings.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <set>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "device/application_ids.h"
#include "device/first_settings.h"
#include "device/patience.h"
#include "device/plain_text.h"
#include "host_bus.h"
#include "recording/recorded_store.h"
#include "recording/recorded_value.h"
#include "records/policy_database.h"
#include "replay/channels.h"

namespace deskwatch {
namespace {

/// Longer than the bus waits for a program to come up.
constexpr std::chrono::seconds replayTimeout{120};

/// More than the service waits for before it ends itself.
constexpr guint enoughToBeIdle = 60;

/// In the machine's time: to end once it has decided to.
constexpr std::chrono::seconds idleTimeout{10};

constexpr char diagnosis[] = "tesk.consumer.test";
const std::string faultsFolder = std::string("/faults/") + ids::service + "/";

c::VariantOwner settingFor(const std::string& path, const TraceEvent& value) {
    if (isRegistration(path) && value == registered) {
        return c::VariantOwner(g_variant_ref_sink(g_variant_new_uint32(numberOfOwner())));
    }
    return valueOfRecorded(value);
}

bool hasEnded(const std::vector<TraceEvent>& effects) {
    return std::any_of(effects.begin(), effects.end(), [](const TraceEvent& event) { return event.contains("in"); });
}

/// The applications beside the service of which a recording tells.
std::set<std::string> applicationsOf(const Recording& recording) {
    std::set<std::string> named(recording.state.running.begin(), recording.state.running.end());
    named.insert(recording.state.waiting.begin(), recording.state.waiting.end());
    for (const auto& [event, line, text] : recording.events) {
        for (const char* member : {"application", "from", "to"}) {
            named.insert(event.value(member, ""));
        }
    }
    std::set<std::string> known;
    std::copy_if(ids::companions.begin(), ids::companions.end(), std::inserter(known, known.end()),
                 [&](const char* id) { return named.count(id) > 0; });
    return known;
}

} // namespace

Surroundings::Surroundings(const Device& device, const Recording& recording)
    : device_(device), bus_(device.busAddress()), monitor_(device.busAddress(), BusTrace::rulesOfEffects()),
      standIns_(device, applicationsOf(recording)),
      trace_(bus_.daemon(), [this, hasWipes = recording.hasWipes](const TraceEvent& event) {
          if (isEffect(event) && (hasWipes || event.value("out", "") != "wipe")) {
              effects_.push_back(event);
          }
      }) {}

void Surroundings::begin(const RecordedState& state) {
    std::vector<std::pair<std::string, TraceEvent>> settings;
    std::vector<std::pair<std::string, TraceEvent>> faults;
    for (const auto& [path, value] : state.settings) {
        (startsWith(path, faultsFolder) ? faults : settings).emplace_back(path, value);
    }
    writeSettings(settings);
    for (const auto& application : state.running) {
        standIns_.start(application);
    }
    const auto store = policyDatabase(device_.layout());
    // At its start the service enforces the stored policies, which opens the screens that wait. When none waits, it
    // enforced them long ago, so it starts without accounts and gets them when it runs.
    const bool isStoreFirst = !state.isServiceRunning || !state.waiting.empty();
    if (isStoreFirst) {
        writeStore(TraceEvent::parse(state.store), store);
    }
    if (state.isServiceRunning) {
        launchService(ids::mail, TraceEvent::object());
        settings.clear();
        for (const auto& effect : effects()) {
            const auto path = effect.value("key", "");
            const auto recorded = state.settings.find(path);
            if (!path.empty()) {
                settings.emplace_back(path, recorded != state.settings.end() ? recorded->second : TraceEvent());
            }
        }
        writeSettings(settings);
    }
    if (!isStoreFirst) {
        writeStore(TraceEvent::parse(state.store), store);
    }
    writeSettings(faults);
    effects();
}

bool Surroundings::act(const TraceEvent& event) {
    const auto kind = event.value("in", event.value("around", ""));
    if (kind == "launch") {
        launchService(event["from"], event["extraData"]);
    } else if (kind == "message") {
        send(event);
    } else if (kind == "reply") {
        settle(event["from"]); // the request has reached it
        return standIns_.answer(event["from"], event["extraData"]);
    } else if (kind == "key") {
        writeSettings({{event["key"], event["value"]}});
        letNewsArrive();
    } else if (kind == "start") {
        event["application"] == ids::service ? settle(ids::service) : standIns_.start(event["application"]);
    } else if (kind == "end") {
        end(event.value("how", "exit"));
    } else if (kind == "event") {
        bus_.announce({"", host_bus::systemPath, "tesk.host.System", "Event"},
                      g_variant_new("(i)", systemEventOf(event["type"]).value_or(0)));
    } else if (kind == "fault") {
        setFault(event);
    } else if (kind == "call") {
        callDiagnosis(event);
    }
    return true;
}

std::vector<TraceEvent> Surroundings::effects() {
    const auto takeUpToNow = [this] {
        monitor_.takeUpToNow(bus_.daemon(), [this](GDBusMessage* message) { trace_.take(message); });
    };
    try {
        if (bus_.daemon().isOwned(ids::service)) {
            settle(ids::service);
        }
    } catch (const std::runtime_error&) {
        takeUpToNow(); // it may have ended suddenly, which is an effect
        if (!hasEnded(effects_)) {
            throw;
        }
    }
    takeUpToNow();
    return std::exchange(effects_, {});
}

void Surroundings::launchService(const std::string& caller, const TraceEvent& extraData) const {
    try {
        bus_.call({ids::service, host_bus::applicationPath, "tesk.host.Application", "Launch"},
                  g_variant_new("(s@a(ayay)b)", caller.c_str(), entriesOfRecorded(extraData), FALSE), noticeOfStart);
    } catch (const std::runtime_error&) {
        if (!device_.hasProgramOf(ids::service)) {
            throw; // the bus waits a minute for what a program leaves that has ended
        }
        settle(ids::service); // the bus still has the request for it
    }
}

void Surroundings::send(const TraceEvent& event) const {
    try {
        bus_.call({ids::service, host_bus::applicationPath, "tesk.host.MessagePort", "Send"},
                  g_variant_new("(ss@a(ayay))", event["port"].get<std::string>().c_str(),
                                event["from"].get<std::string>().c_str(), entriesOfRecorded(event["entries"])),
                  replayTimeout);
    } catch (const std::runtime_error&) {
        // the sender of a message need not care what becomes of it
    }
}

void Surroundings::end(const std::string& how) {
    const auto pid = bus_.daemon().processOf(ids::service);
    const auto process = pid ? ProcessHandle::open(*pid) : std::nullopt;
    if (!process) {
        return;
    }
    if (how == "idle") {
        letTimePass();
    } else {
        process->signal(how == "kill" ? SIGKILL : SIGTERM);
    }
    if (!process->waitForEnd(how == "idle" ? idleTimeout : replayTimeout)) {
        return; // it does not end by itself, which is a difference
    }
    while (!hasEnded(effects_)) { // the bus may hear of it later than we
        const auto message = monitor_.next(replayTimeout);
        if (message == nullptr) {
            throw std::runtime_error("the bus does not tell the end of the service");
        }
        trace_.take(message.get());
    }
}

void Surroundings::letTimePass() const {
    try {
        bus_.call({ids::service, host_bus::applicationPath, "tesk.host.Application", "Advance"},
                  g_variant_new("(u)", enoughToBeIdle), replayTimeout);
    } catch (const std::runtime_error&) {
        // it ended before it answered
    }
}

void Surroundings::setFault(const TraceEvent& event) const {
    const auto function = event["function"].get<std::string>();
    const bool isSet = !event["code"].is_null();
    const c::VariantOwner value(
        isSet ? g_variant_ref_sink(g_variant_new("(ii)", event["code"].get<int>(), event["nth"].get<int>())) : nullptr);
    const ChangesetOwner changes(dconf_changeset_new());
    const std::string path = faultsFolder + (function == everyFunction ? "" : function);
    dconf_changeset_set(changes.get(), path.c_str(), value.get());
    writeChanges(bus_, changes);
    letNewsArrive();
}

void Surroundings::letNewsArrive() const {
    try {
        if (bus_.daemon().isOwned(ids::service)) {
            settle(ids::service);
        }
    } catch (const std::runtime_error&) {
        // it may have ended suddenly, which its effects tell
    }
}

void Surroundings::callDiagnosis(const TraceEvent& event) const {
    if (!bus_.daemon().isOwned(ids::service)) {
        return; // which has ended too early, and its effects tell
    }
    bus_.daemon().awaitOwner(diagnosis, replayTimeout); // it comes after the service's start
    const auto value = event.find("value");
    try {
        bus_.call({diagnosis, "/tesk/consumer/test", diagnosis, event["method"]},
                  value != event.end() ? g_variant_new("(i)", value->get<int>()) : nullptr, replayTimeout);
    } catch (const std::runtime_error&) {
        // what the service refused then, it refuses now
    }
}

/// In one step; each key's mark tells the service of a value that is the same, too.
void Surroundings::writeSettings(const std::vector<std::pair<std::string, TraceEvent>>& settings) const {
    if (settings.empty()) {
        return;
    }
    const ChangesetOwner changes(dconf_changeset_new());
    for (const auto& [path, value] : settings) {
        dconf_changeset_set(changes.get(), path.c_str(), settingFor(path, value).get());
        if (startsWith(path, host_bus::sharedKeysPath)) {
            const std::string mark = host_bus::keyMarksPath + path.substr(std::strlen(host_bus::sharedKeysPath));
            const c::MemoryOwner<char> another(g_uuid_string_random());
            dconf_changeset_set(changes.get(), mark.c_str(), g_variant_new_string(another.get()));
        }
    }
    writeChanges(bus_, changes);
}

void Surroundings::settle(const std::string& application) const {
    bus_.call({application, host_bus::applicationPath, "tesk.host.Application", "Settle"}, nullptr, replayTimeout);
}

} // namespace deskwatch
