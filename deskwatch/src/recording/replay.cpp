#include "recording/replay.h"

#include <dconf.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <limits>
#include <map>
#include <stdexcept>

#include "device/application_ids.h"
#include "device/bus_client.h"
#include "host_bus.h"
#include "recording/bus_monitor.h"
#include "recording/recorded_text.h"
#include "session/companion_bus.h"
#include "text_pairs.h"

namespace deskwatch {
namespace {

/// Longer than the bus waits for a program to come up.
constexpr std::chrono::seconds replayTimeout{120};

struct ChangesetRelease {
    void operator()(DConfChangeset* changeset) const { dconf_changeset_unref(changeset); }
};

struct Effect {
    TraceEvent event;
    std::size_t line = 0;
};

std::vector<Effect> effectsOf(const Recording& recording) {
    std::vector<Effect> effects;
    for (const auto& [event, line] : recording.events) {
        if (event.contains("out")) {
            effects.push_back({event, line});
        }
    }
    return effects;
}

GVariant* entries(const TraceEvent& object) {
    std::vector<std::pair<std::string, std::string>> texts;
    for (const auto& [key, value] : object.items()) {
        texts.emplace_back(textOfRecorded(key), textOfRecorded(value.get<std::string>()));
    }
    return text_pairs::toVariant(texts);
}

GVariant* settingOf(const TraceEvent& value) {
    if (value.is_null()) {
        return nullptr;
    }
    if (value.is_number_integer()) {
        return g_variant_new_int32(value.get<int>());
    }
    if (value.is_string()) {
        return g_variant_new_string(value.get<std::string>().c_str());
    }
    GError* error = nullptr;
    GVariant* parsed = g_variant_parse(nullptr, value.at("value").get<std::string>().c_str(), nullptr, nullptr, &error);
    if (parsed == nullptr) {
        throw std::runtime_error("not a valid value for a key: " + c::takeMessage(error));
    }
    return parsed;
}

/// Plays everybody but the service.
class Surroundings {
public:
    explicit Surroundings(const Device& device)
        : bus_(device.busAddress()), monitor_(device.busAddress()),
          trace_(bus_.daemon(), [this](const TraceEvent& event) { note(event); }) {}

    void launch(const std::string& caller, const TraceEvent& extraData) const {
        bus_.call({ids::service, host_bus::applicationPath, "tesk.host.Application", "Launch"},
                  g_variant_new("(s@a(ayay)b)", caller.c_str(), entries(extraData), FALSE), replayTimeout);
    }

    /// Does what came in.
    void act(const TraceEvent& event) const {
        const auto kind = event.at("in").get<std::string>();
        if (kind == "launch") {
            launch(event.at("from"), event.at("extraData"));
        } else if (kind == "message") {
            send(event);
        } else if (kind == "reply") {
            reply(event);
        } else if (kind == "key") {
            setKey(event.at("key"), event.at("value"));
        } else if (kind == "start") {
            settle(event.at("application"));
        } else if (kind == "end") {
            endService();
        }
    }

    /// Returns when the service has handled everything, with its effects since the last time.
    std::vector<TraceEvent> effects() {
        if (bus_.daemon().isOwned(ids::service)) {
            settle(ids::service);
        }
        for (const auto* application : ids::companions) {
            if (bus_.daemon().isOwned(application)) {
                settle(application);
            }
        }
        readUpToNow();
        return std::exchange(effects_, {});
    }

private:
    void note(const TraceEvent& event) {
        if (event.contains("out")) {
            effects_.push_back(event);
        }
    }

    void send(const TraceEvent& event) const {
        bus_.call({ids::service, host_bus::applicationPath, "tesk.host.MessagePort", "Send"},
                  g_variant_new("(ss@a(ayay))", event.at("port").get<std::string>().c_str(),
                                event.at("from").get<std::string>().c_str(), entries(event.at("entries"))),
                  replayTimeout);
    }

    void reply(const TraceEvent& event) const {
        const auto& extraData = event.at("extraData");
        const bool isAnswer = extraData.contains("result");
        GVariant* arguments =
            isAnswer ? g_variant_new("(s)", extraData.at("result").get<std::string>().c_str()) : nullptr;
        bus_.call({event.at("from"), companion_bus::path, "tesk.desk.Companion", isAnswer ? "Answer" : "Dismiss"},
                  arguments, replayTimeout);
    }

    void setKey(const std::string& key, const TraceEvent& value) const {
        const std::unique_ptr<DConfChangeset, ChangesetRelease> changes(dconf_changeset_new());
        dconf_changeset_set(changes.get(), key.c_str(), settingOf(value));
        const std::string mark = host_bus::keyMarksPath + key.substr(std::strlen(host_bus::sharedKeysPath));
        const c::MemoryOwner<char> another(g_uuid_string_random());
        dconf_changeset_set(changes.get(), mark.c_str(), g_variant_new_string(another.get()));
        const c::VariantOwner serialised(g_variant_ref_sink(dconf_changeset_serialise(changes.get())));
        GVariant* bytes = g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, g_variant_get_data(serialised.get()),
                                                    g_variant_get_size(serialised.get()), 1);
        bus_.call({"ca.desrt.dconf", "/ca/desrt/dconf/Writer/user", "ca.desrt.dconf.Writer", "Change"},
                  g_variant_new("(@ay)", bytes), replayTimeout);
    }

    void settle(const std::string& application) const {
        bus_.call({application, host_bus::applicationPath, "tesk.host.Application", "Settle"}, nullptr, replayTimeout);
    }

    /// The service ends itself when it is idle; here a signal ends it.
    void endService() const {
        const auto pid = bus_.daemon().processOf(ids::service);
        const auto process = pid ? ProcessHandle::open(*pid) : std::nullopt;
        if (process) {
            process->signal(SIGTERM);
            process->waitForEnd(replayTimeout);
        }
    }

    /// Reads what the bus has said up to a question of our own, which passes after everything else.
    void readUpToNow() {
        const std::string marker = "tesk.desk.marker" + std::to_string(++markers_);
        bus_.daemon().isOwned(marker);
        while (const auto message = monitor_.next(replayTimeout)) {
            GVariant* body = g_dbus_message_get_body(message.get());
            const char* member = g_dbus_message_get_member(message.get());
            if (member != nullptr && std::string(member) == "NameHasOwner" && body != nullptr &&
                g_variant_is_of_type(body, G_VARIANT_TYPE("(s)")) != FALSE) {
                const char* name = nullptr;
                g_variant_get(body, "(&s)", &name);
                if (marker == name) {
                    return;
                }
            }
            trace_.take(message.get());
        }
        throw std::runtime_error("the bus monitor does not report the messages of the bus");
    }

    BusClient bus_;
    BusMonitor monitor_;
    std::vector<TraceEvent> effects_;
    BusTrace trace_;
    int markers_ = 0;
};

std::string described(const TraceEvent* event) {
    return event != nullptr ? event->dump() : "nothing";
}

/// Effects that the bus keeps in order: all writes, and everything that goes to one application. The order between two
/// applications is not defined.
struct Channel {
    std::vector<Effect> recorded;
    std::vector<TraceEvent> happened;
};

std::string channelOf(const TraceEvent& event) {
    return event.value("out", "") + " " + event.value("to", "");
}

std::map<std::string, Channel> channels(const std::vector<Effect>& recorded, const std::vector<TraceEvent>& happened) {
    std::map<std::string, Channel> channels;
    for (const auto& effect : recorded) {
        channels[channelOf(effect.event)].recorded.push_back(effect);
    }
    for (const auto& event : happened) {
        channels[channelOf(event)].happened.push_back(event);
    }
    return channels;
}

/// What differs first in a channel, and the line of the recording where that is.
struct Difference {
    std::size_t line = 0;
    std::string text;
};

/// Compares in order, up to the first difference.
std::optional<Difference> differenceIn(const Channel& channel) {
    const auto& [recorded, happened] = channel;
    const std::size_t count = std::max(recorded.size(), happened.size());
    for (std::size_t index = 0; index < count; ++index) {
        const auto* expected = index < recorded.size() ? &recorded[index].event : nullptr;
        const auto* seen = index < happened.size() ? &happened[index] : nullptr;
        if (expected != nullptr && seen != nullptr && *expected == *seen) {
            continue;
        }
        const std::size_t after = recorded.empty() ? std::numeric_limits<std::size_t>::max() : recorded.back().line + 1;
        const std::string what = ":\n  recorded " + described(expected) + "\n  now      " + described(seen);
        return expected != nullptr
                   ? Difference{recorded[index].line, "line " + std::to_string(recorded[index].line) + what}
                   : Difference{after, "after the last of its kind" + what};
    }
    return std::nullopt;
}

/// The channels are compared one by one; the reader is told of the difference that comes first in the recording.
ReplayOutcome compare(const std::vector<Effect>& recorded, const std::vector<TraceEvent>& happened) {
    std::optional<Difference> first;
    for (const auto& [name, channel] : channels(recorded, happened)) {
        auto difference = differenceIn(channel);
        if (difference && (!first || difference->line < first->line)) {
            first = std::move(difference);
        }
    }
    if (!first) {
        return {recorded.size(), std::nullopt};
    }
    const auto equal = std::count_if(recorded.begin(), recorded.end(),
                                     [&](const Effect& effect) { return effect.line < first->line; });
    return {static_cast<std::size_t>(equal), first->text};
}

} // namespace

ReplayOutcome replay(const Device& device, const Recording& recording) {
    Surroundings surroundings(device);
    if (recording.isServiceRunning) {
        surroundings.launch(ids::mail, TraceEvent::object());
        surroundings.effects(); // those of its start are not in the recording
    }
    std::vector<TraceEvent> happened;
    bool isPending = false;
    const auto collect = [&] {
        const auto effects = surroundings.effects();
        happened.insert(happened.end(), effects.begin(), effects.end());
        isPending = false;
    };
    for (const auto& [event, line] : recording.events) {
        if (event.contains("in")) {
            surroundings.act(event);
            isPending = true;
        } else if (isPending) {
            collect(); // what came in together is handled together
        }
    }
    collect();
    return compare(effectsOf(recording), happened);
}

} // namespace deskwatch
