#include "recording/recording.h"

#include <sys/signalfd.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "TeskConsumerKeys.h"
#include "device/application_ids.h"
#include "device/bus_client.h"
#include "device/file_descriptor.h"
#include "recording/bus_monitor.h"
#include "session/observer.h"
#include "status/device_status.h"
#include "text/input_file.h"
#include "text/suggestion.h"

namespace deskwatch {
namespace {

constexpr std::chrono::milliseconds lookUp{100};
constexpr int version = 1;

/// Holds SIGINT and SIGTERM back, so that the end of a recording is a place in the code.
class EndSignals {
public:
    EndSignals() {
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGINT);
        sigaddset(&signals, SIGTERM);
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
        descriptor_ = FileDescriptor(signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC));
    }

    bool arrived() const {
        signalfd_siginfo signal{};
        return read(descriptor_.get(), &signal, sizeof signal) == static_cast<ssize_t>(sizeof signal);
    }

private:
    FileDescriptor descriptor_;
};

TraceEvent header(const DeviceStatus& status) {
    TraceEvent head{{"recording", version}, {"serviceRunning", status.isServiceRunning}};
    for (const auto& [name, value] : status.keys) {
        for (const auto* key : {TeskConsumerKeys::lockType, TeskConsumerKeys::cryptoState, TeskConsumerKeys::countryIso,
                                TeskConsumerKeys::tutorialInProgress}) {
            if (name == key && std::holds_alternative<int>(value)) {
                head[key] = std::get<int>(value);
            } else if (name == key && std::holds_alternative<std::string>(value)) {
                head[key] = std::get<std::string>(value);
            }
        }
    }
    return head;
}

TraceEvent headerOf(const Device& device) {
    const auto status = readStatus(DeviceSession(device, observerId));
    if (!status.accounts.empty()) {
        throw std::runtime_error(
            "the watch already has stored accounts; record on a watch without any, such as a fresh one");
    }
    return header(status);
}

Recording recordingOf(const TraceEvent& head) {
    if (head.at("recording") != version) {
        throw std::runtime_error("the recording has another version; this deskwatch reads version " +
                                 std::to_string(version));
    }
    Recording recording;
    recording.isServiceRunning = head.at("serviceRunning").get<bool>();
    recording.device.lock = static_cast<Lock>(head.value(TeskConsumerKeys::lockType, 0));
    recording.device.encrypted = head.value(TeskConsumerKeys::cryptoState, "") == "encrypted";
    recording.device.country = head.value(TeskConsumerKeys::countryIso, "");
    recording.device.tutorial = head.value(TeskConsumerKeys::tutorialInProgress, 0) != 0;
    return recording;
}

/// A replay that passes over what it does not know would compare less than the reader thinks.
void requireKnown(const TraceEvent& event) {
    const bool isInput = event.is_object() && event.contains("in");
    if (!isInput && (!event.is_object() || !event.contains("out"))) {
        throw std::runtime_error(R"(it has neither "in" nor "out")");
    }
    const char* const direction = isInput ? "in" : "out";
    const auto kind = event.at(direction).get<std::string>();
    const std::vector<std::string_view> kinds =
        isInput ? std::vector<std::string_view>{"start", "end", "launch", "message", "reply", "key"}
                : std::vector<std::string_view>{"write", "launch", "message"};
    if (std::find(kinds.begin(), kinds.end(), kind) == kinds.end()) {
        throw std::runtime_error("\"" + std::string(direction) + "\" is \"" + kind + "\", which nobody knows" +
                                 didYouMean(kind, kinds));
    }
}

} // namespace

void record(const Device& device, const std::filesystem::path& file) {
    const EndSignals signals;
    const auto head = headerOf(device);
    std::ofstream stream(file, std::ios::trunc);
    const auto write = [&](const TraceEvent& line) {
        stream << line.dump(-1, ' ', false, TraceEvent::error_handler_t::replace) << '\n' << std::flush;
        if (!stream) {
            throw std::runtime_error("cannot write " + file.string());
        }
    };
    const BusMonitor monitor(device.busAddress());
    BusTrace trace(BusClient(device.busAddress()).daemon(), [&write](const TraceEvent& event) {
        if (!event.contains("around")) {
            write(event);
        }
    });
    write(head);
    bool isOver = false;
    while (!isOver) {
        isOver = signals.arrived() || monitor.isClosed();
        while (const auto message = monitor.next(isOver ? std::chrono::milliseconds::zero() : lookUp)) {
            trace.take(message.get());
        }
    }
}

Recording readRecording(const std::filesystem::path& file) {
    constexpr std::size_t mostBytes = 100'000'000;
    std::istringstream stream(readInput(file, mostBytes));
    Recording recording;
    std::string text;
    std::size_t line = 0;
    try {
        while (std::getline(stream, text)) {
            ++line;
            const auto event = TraceEvent::parse(text);
            if (line == 1) {
                recording = recordingOf(event);
            } else {
                requireKnown(event);
                recording.events.push_back({event, line});
            }
        }
    } catch (const std::exception& error) {
        throw std::runtime_error(inputName(file) + ":" + std::to_string(line) +
                                 ": not a line of a recording: " + error.what());
    }
    if (recording.events.empty()) {
        throw std::runtime_error(inputName(file) + " has no event to replay");
    }
    return recording;
}

} // namespace deskwatch
