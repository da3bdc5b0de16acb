#include <array>
#include <ctime>

#include "recording/timeline.h"
#include "records/log_line.h"
#include "text/text_table.h"
#include "text/value_output.h"
#include "text/value_text.h"

namespace deskwatch {
namespace {

using namespace std::chrono;

std::string member(const TraceEvent& event, const char* name) {
    const auto found = event.find(name);
    if (found == event.end() || found->is_null()) {
        return "";
    }
    return found->is_string() ? found->get<std::string>() : jsonText(*found);
}

std::string entry(const TraceEvent& event, const char* list, const char* name) {
    return event.contains(list) ? member(event[list], name) : "";
}

std::string assignment(const TraceEvent& event) {
    const auto& value = event.at("value");
    return member(event, "key") + (value.is_null() ? " is removed" : " = " + jsonText(value));
}

std::string messageText(const TraceEvent& event) {
    const auto size = entry(event, "entries", "msg").size();
    return entry(event, "entries", "req") + (size > 0 ? " with " + counted(size, "byte") : "");
}

std::string faultText(const TraceEvent& event) {
    if (event.at("code").is_null()) {
        return member(event, "function") + " works again";
    }
    const int nth = event.value("nth", 0);
    return member(event, "function") + " returns " + member(event, "code") +
           (nth > 0 ? " at call " + std::to_string(nth) : " at every call");
}

std::pair<const char*, std::string> incoming(const std::string& what, const TraceEvent& event) {
    if (what == "launch") {
        return {"request", member(event, "from") + " launches the service"};
    }
    if (what == "message") {
        return {"request", member(event, "from") + " sends " + messageText(event)};
    }
    if (what == "reply") {
        const auto result = entry(event, "extraData", "result");
        return {"answer",
                member(event, "from") + (result.empty() ? " is closed without an answer" : " answers " + result)};
    }
    if (what == "key") {
        return {"key", assignment(event)};
    }
    return {"process", member(event, "application") + (what == "start" ? " starts" : " ends")};
}

std::pair<const char*, std::string> refused(const TraceEvent& event) {
    return {"request", messageText(event) + " from " + member(event, "from") + " is refused: too long"};
}

std::pair<const char*, std::string> outgoing(const std::string& what, const TraceEvent& event) {
    if (what == "write") {
        return {"effect", assignment(event)};
    }
    if (what == "launch") {
        return {"launch", "the service launches " + member(event, "to")};
    }
    if (what == "wipe") {
        return {"wipe", "the service wipes the " + member(event, "storage") + " storage"};
    }
    return {"message", "the service sends " + messageText(event) + " to " + member(event, "to")};
}

std::pair<const char*, std::string> around(const std::string& what, const TraceEvent& event) {
    if (what == "fault") {
        return {"fault", faultText(event)};
    }
    if (what == "call") {
        return {"call", "diagnostic method " + member(event, "method")};
    }
    return {"event", member(event, "type")};
}

std::string localTime(system_clock::time_point time) {
    const auto seconds = system_clock::to_time_t(time);
    std::tm parts{};
    localtime_r(&seconds, &parts);
    std::array<char, 20> text{};
    const auto length = std::strftime(text.data(), text.size(), "%H:%M:%S", &parts);
    const auto utc = timeInUtc(time);
    return std::string(text.data(), length) + utc.substr(utc.rfind('.'));
}

/// What the wearer did with the lock, of a line `I/LOCK_SCREEN(123): text`; empty for another line.
std::string_view lockText(std::string_view line) {
    const auto start = std::string("I/") + lockScreenTag + "(";
    const auto end = line.find("): ");
    return line.substr(0, start.size()) == start && end != std::string_view::npos ? line.substr(end + 3) : "";
}

} // namespace

TimelineEntry timelineEntry(const TraceEvent& event) {
    TimelineEntry result;
    const auto [kind, text] = event.contains("in")        ? incoming(member(event, "in"), event)
                              : event.contains("out")     ? outgoing(member(event, "out"), event)
                              : event.contains("refused") ? refused(event)
                                                          : around(member(event, "around"), event);
    result.kind = kind;
    result.text = text;
    result.detail = jsonText(event);
    return result;
}

TimelineEntry timelineEntry(std::string_view logged) {
    const auto line = logLine(logged);
    TimelineEntry result;
    result.time = line.time;
    if (const auto use = lockText(line.text); !use.empty()) {
        result.kind = "lock";
        result.text = use;
        return result;
    }
    result.kind = "log";
    result.level = line.level ? std::string(1, *line.level) : "";
    result.text = line.text;
    return result;
}

std::string timelineText(const TimelineEntry& entry) {
    constexpr std::size_t kindWidth = 8;
    const auto time = entry.time ? localTime(*entry.time) : "-           ";
    const auto gap = std::string(kindWidth > entry.kind.size() ? kindWidth - entry.kind.size() : 1, ' ');
    return time + "  " + entry.kind + gap + printable(entry.text) + "\n";
}

std::string timelineJson(const TimelineEntry& entry) {
    TraceEvent object;
    object["time"] = entry.time ? TraceEvent(timeInUtc(*entry.time) + "Z") : TraceEvent(nullptr);
    object["kind"] = entry.kind;
    object["level"] = entry.level.empty() ? TraceEvent(nullptr) : TraceEvent(entry.level);
    object["text"] = entry.text;
    auto text = jsonText(object);
    text.pop_back();
    return text + ",\"detail\":" + entry.detail + "}\n";
}

} // namespace deskwatch
