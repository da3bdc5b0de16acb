#include "replay/event_form.h"

#include <dconf.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "TeskConsumerKeys.h"
#include "device/application_ids.h"
#include "recording/bus_trace.h"
#include "recording/recorded_value.h"
#include "text/suggestion.h"

namespace deskwatch {
namespace {

enum class Type { Text, Application, End, SystemEvent, Path, Texts, Number, NumberOrNull, Flag, Value, List, Any };

struct Member {
    const char* name;
    Type type;
    bool isOptional = false;
};

struct EventForm {
    const char* direction;
    const char* kind;
    std::vector<Member> members;
};

const std::vector<EventForm>& forms() {
    static const std::vector<EventForm> all{
        {"in", "start", {{"application", Type::Application}}},
        {"in", "end", {{"application", Type::Application}, {"how", Type::End, true}}},
        {"in", "launch", {{"from", Type::Text}, {"extraData", Type::Texts}}},
        {"in", "message", {{"from", Type::Text}, {"port", Type::Text}, {"entries", Type::Texts}}},
        {"in", "reply", {{"from", Type::Application}, {"extraData", Type::Texts}}},
        {"in", "key", {{"key", Type::Path}, {"value", Type::Value}}},
        {"out", "write", {{"key", Type::Path}, {"value", Type::Value}}},
        {"out", "launch", {{"to", Type::Text}, {"replyWanted", Type::Flag}, {"extraData", Type::Texts}}},
        {"out", "message", {{"to", Type::Text}, {"port", Type::Text}, {"entries", Type::Texts}}},
        {"out", "wipe", {{"storage", Type::Text}}},
        {"around", "event", {{"type", Type::SystemEvent}}},
        {"around", "fault", {{"function", Type::Text}, {"code", Type::NumberOrNull}, {"nth", Type::Number}}},
        {"expect", "check", {{"findings", Type::List, true}}},
        {"around", "call", {{"method", Type::Text}, {"value", Type::Number, true}}},
    };
    return all;
}

bool isNumber(const TraceEvent& value) {
    using Limits = std::numeric_limits<int>;
    return value.is_number_integer() && value >= Limits::min() && value <= Limits::max();
}

bool isTexts(const TraceEvent& value) {
    return value.is_object() &&
           std::all_of(value.begin(), value.end(), [](const TraceEvent& text) { return text.is_string(); });
}

bool isApplication(const TraceEvent& value) {
    return value == ids::service ||
           std::find(ids::companions.begin(), ids::companions.end(), value) != ids::companions.end();
}

std::string faultOfSetting(const TraceEvent& value) {
    try {
        valueOfRecorded(value);
        return "";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

/// What a value should be, in words; empty when it is that.
std::string faultOf(const TraceEvent& value, Type type) {
    switch (type) {
    case Type::Text:
        return value.is_string() ? "" : "is not a text";
    case Type::Application:
        return value.is_string() && isApplication(value) ? "" : "is not the id of an application of the watch";
    case Type::End:
        return value == "idle" || value == "exit" || value == "kill" ? "" : R"(is not "idle", "exit" or "kill")";
    case Type::SystemEvent:
        return value.is_string() && systemEventOf(value) ? "" : "is neither the name nor the number of a system event";
    case Type::Path:
        return value.is_string() && dconf_is_key(value.get<std::string>().c_str(), nullptr) != FALSE
                   ? ""
                   : "is not the path of a setting, such as /vconf/db/setting/lock_type";
    case Type::Texts:
        return isTexts(value) ? "" : "is not an object of texts";
    case Type::Number:
        return isNumber(value) ? "" : "is not a number of 32 bits";
    case Type::NumberOrNull:
        return value.is_null() || isNumber(value) ? "" : "is neither a number of 32 bits nor null";
    case Type::Flag:
        return value.is_boolean() ? "" : "is neither true nor false";
    case Type::List:
        return value.is_array() ? "" : "is not a list";
    case Type::Value:
        return faultOfSetting(value);
    case Type::Any:
        break;
    }
    return "";
}

void requireType(const TraceEvent& object, const Member& member) {
    const auto value = object.find(member.name);
    if (value == object.end()) {
        if (member.isOptional) {
            return;
        }
        throw FormError("", std::string("\"") + member.name + "\" is missing");
    }
    if (const auto fault = faultOf(*value, member.type); !fault.empty()) {
        throw FormError(member.name, std::string("\"") + member.name + "\" " + fault);
    }
}

void requireMembers(const TraceEvent& object, const std::vector<Member>& members) {
    std::vector<std::string_view> names;
    for (const auto& member : members) {
        requireType(object, member);
        names.emplace_back(member.name);
    }
    for (const auto& [name, value] : object.items()) {
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            throw FormError(name, "\"" + name + "\" is not a member of this line" + didYouMean(name, names));
        }
    }
}

/// The faults of all functions can only be removed.
void requireOneFunction(const TraceEvent& event) {
    if (event.value("function", "") == everyFunction && !event["code"].is_null()) {
        throw FormError("code", R"("code" is not null, as it is for "every function")");
    }
}

const char* directionOf(const TraceEvent& event) {
    for (const char* direction : {"in", "out", "around", "expect"}) {
        if (event.is_object() && event.contains(direction)) {
            return direction;
        }
    }
    throw FormError("", R"(it has neither "in" nor "out" nor "around" nor "expect")");
}

void requireSettings(const TraceEvent& settings) {
    if (!settings.is_object()) {
        throw FormError("settings", R"("settings" is not an object)");
    }
    for (const auto& [path, value] : settings.items()) {
        const auto fault = faultOf(path, Type::Path) + faultOf(value, Type::Value);
        if (!fault.empty()) {
            throw FormError(path, std::string("\"").append(path).append("\" ").append(fault));
        }
    }
}

void requireStore(const TraceEvent& store) {
    const bool isTable = store.is_object() && store.contains("table") && store["table"].is_string() &&
                         store.contains("accounts") && store["accounts"].is_array();
    const bool isBytes = store.is_object() && store.contains("bytes") && store["bytes"].is_string();
    if (!store.is_null() && !isTable && !isBytes) {
        throw FormError("store", R"("store" is neither null nor {"table", "accounts"} nor {"bytes"})");
    }
    for (const auto& account : isTable ? store["accounts"] : TraceEvent::array()) {
        const bool isAccount =
            account.is_object() && std::all_of(account.begin(), account.end(), [](const TraceEvent& value) {
                return value.is_string() || value.is_number_integer();
            });
        if (!isAccount) {
            throw FormError("accounts", R"(an element of "accounts" is not an object of numbers and texts)");
        }
    }
}

/// A recording of the first format began on a fresh watch and told its lock, country and encryption alone.
RecordedState stateOfFirstFormat(const TraceEvent& head) {
    RecordedState state;
    requireType(head, {"serviceRunning", Type::Flag});
    state.isServiceRunning = head["serviceRunning"];
    const auto path = [](const char* key) { return std::string("/vconf/") + key; };
    for (const char* key : {TeskConsumerKeys::passwordPolicyApplied, TeskConsumerKeys::deviceEncryptionApplied,
                            TeskConsumerKeys::passwordInputFinished}) {
        state.settings[path(key)] = 0;
    }
    state.settings[path(TeskConsumerKeys::lockType)] = 0;
    state.settings[path(TeskConsumerKeys::tutorialInProgress)] = 0;
    state.settings[path(TeskConsumerKeys::cryptoState)] = "unencrypted";
    state.settings[path(TeskConsumerKeys::countryIso)] = "US";
    for (const char* key : {TeskConsumerKeys::lockType, TeskConsumerKeys::tutorialInProgress,
                            TeskConsumerKeys::cryptoState, TeskConsumerKeys::countryIso}) {
        requireType(head, {key, Type::Value, true});
        if (head.contains(key)) {
            state.settings[path(key)] = head[key];
        }
    }
    return state;
}

std::vector<std::string> applicationsIn(const TraceEvent& head, const char* name) {
    for (const auto& application : head[name]) {
        if (!isApplication(application)) {
            throw FormError(name, std::string("\"") + name + "\" names what is not an application of the watch");
        }
    }
    return head[name];
}

} // namespace

void requireEvent(const TraceEvent& event) {
    const std::string direction = directionOf(event);
    requireType(event, {direction.c_str(), Type::Text});
    std::vector<std::string_view> kinds;
    for (const auto& form : forms()) {
        if (direction != form.direction) {
            continue;
        }
        if (event[direction] == form.kind) {
            auto members = form.members;
            members.push_back({form.direction, Type::Text});
            requireMembers(event, members);
            requireOneFunction(event);
            return;
        }
        kinds.emplace_back(form.kind);
    }
    const auto kind = event[direction].get<std::string>();
    throw FormError(direction,
                    "\"" + direction + "\" is \"" + kind + "\", which is not known" + didYouMean(kind, kinds));
}

RecordedState stateOf(const TraceEvent& head) {
    if (!head.is_object() || !head.contains("recording")) {
        throw FormError("", R"(the first line of a recording has a member "recording", the number of its format)");
    }
    if (head["recording"] == 1) {
        return stateOfFirstFormat(head);
    }
    if (head["recording"] != recordingVersion) {
        throw FormError("recording", "the recording has another format; this deskwatch reads format 1 and " +
                                         std::to_string(recordingVersion));
    }
    requireMembers(head, {{"recording", Type::Number},
                          {"serviceRunning", Type::Flag},
                          {"running", Type::List},
                          {"waiting", Type::List},
                          {"settings", Type::Any},
                          {"store", Type::Any}});
    requireSettings(head["settings"]);
    requireStore(head["store"]);
    return {head["serviceRunning"].get<bool>(), applicationsIn(head, "running"), applicationsIn(head, "waiting"),
            head["settings"].get<std::map<std::string, TraceEvent>>(), head["store"].dump()};
}

} // namespace deskwatch
