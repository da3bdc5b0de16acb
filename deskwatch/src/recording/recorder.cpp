#include "recording/recorder.h"

#include <optional>
#include <stdexcept>

#include "device/application_ids.h"
#include "device/bus_client.h"
#include "device/end_request.h"
#include "recording/anonymiser.h"
#include "recording/bus_monitor.h"
#include "recording/recorded_state.h"
#include "records/idle_exit.h"
#include "records/log_line.h"
#include "session/observer.h"
#include "text/output_file.h"

namespace deskwatch {
namespace {

constexpr std::chrono::milliseconds lookUp{100};

void requireNothingLost(const RecordOptions& options) {
    const auto& file = options.file;
    std::error_code none;
    if (!options.isForced && std::filesystem::is_regular_file(file, none) &&
        std::filesystem::file_size(file, none) > 0) {
        throw std::runtime_error(file + " exists already; --force replaces it");
    }
}

/// The file of a recording, line by line.
class Lines {
public:
    explicit Lines(const RecordOptions& options) : isAnonymous_(options.isAnonymous), file_(options.file) {}

    void write(const TraceEvent& line) {
        const auto told = isAnonymous_ ? anonymiser_.anonymised(line) : line;
        file_.write(told.dump(-1, ' ', false, TraceEvent::error_handler_t::replace) + "\n");
    }

    void requireReader() const { file_.requireReader(); }

private:
    bool isAnonymous_;
    Anonymiser anonymiser_;
    OutputFile file_;
};

class Recorder {
public:
    Recorder(const Device& device, const RecordOptions& options)
        : device_(device), options_(options), bus_(device.busAddress(), device.patience()),
          monitor_(device.busAddress(), {}, device.patience()),
          trace_(bus_.daemon(), [this](const TraceEvent& event) { take(event); }),
          service_(bus_.daemon().processOf(ids::service)) {}

    /// The state belongs to one moment: nothing happens while it is read.
    void writeHead() {
        constexpr int mostTries = 100;
        for (int tries = 0; tries < mostTries; ++tries) {
            takeUpToNow();
            events_ = 0;
            const auto head = headOf(readState(DeviceSession(device_, observerId)));
            takeUpToNow();
            if (events_ == 0) {
                lines_.emplace(options_).write(head); // a watch that does not answer leaves no file
                return;
            }
        }
        throw std::runtime_error("the watch keeps changing; record it when it is quiet");
    }

    void run(const EndRequest& endRequest) {
        bool isOver = false;
        while (!isOver) {
            lines_->requireReader();
            isOver = endRequest.isNoted() || monitor_.isClosed();
            while (const auto message = monitor_.next(isOver ? std::chrono::milliseconds::zero() : lookUp)) {
                trace_.take(message.get());
            }
        }
    }

private:
    void takeUpToNow() {
        monitor_.takeUpToNow(bus_.daemon(), [this](GDBusMessage* message) { trace_.take(message); });
    }

    void take(TraceEvent event) {
        ++events_;
        const auto what = event.value("in", "");
        if (what == "start" && event["application"] == ids::service) {
            service_ = serviceProcess();
        }
        if (what == "end" && event["how"] == "exit" && service_ &&
            idleExitOf(endOfLog(device_.layout().log()), *service_, {})) {
            event["how"] = "idle"; // it was about to
        }
        if (lines_ && !event.contains("refused")) { // the service never gets it
            lines_->write(event);
        }
    }

    /// None when it has ended meanwhile, or the watch was switched off.
    std::optional<pid_t> serviceProcess() const {
        try {
            return bus_.daemon().processOf(ids::service);
        } catch (const std::runtime_error&) {
            return std::nullopt;
        }
    }

    const Device& device_;
    const RecordOptions& options_;
    std::optional<Lines> lines_;
    BusClient bus_;
    BusMonitor monitor_;
    BusTrace trace_;
    std::optional<pid_t> service_;
    std::size_t events_ = 0;
};

} // namespace

void record(const Device& device, const RecordOptions& options, const std::function<void()>& whenReady) {
    const EndRequest endRequest; // the end of a recording is a place in the code
    device.requireBooted();
    requireNothingLost(options);
    Recorder recorder(device, options);
    recorder.writeHead();
    whenReady();
    recorder.run(endRequest);
}

} // namespace deskwatch
