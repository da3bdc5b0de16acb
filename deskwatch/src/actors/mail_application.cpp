#include "actors/mail_application.h"

#include <message_port.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <set>
#include <stdexcept>

#include "actors/request_log.h"
#include "c_owners.h"
#include "device/application_ids.h"
#include "device/patience.h"
#include "device/process_handle.h"
#include "message_size.h"
#include "records/policy_database.h"
#include "records/service_log.h"
#include "session/launch_request.h"

namespace deskwatch {
namespace {

void expectSuccess(int result, const std::string& what) {
    if (result != 0) {
        throw std::runtime_error("cannot " + what + ": the platform answers " + std::to_string(result));
    }
}

/// False when the service's port is not open, or its process has ended a moment ago.
bool send(const Request& request) {
    const c::Owner<bundle, bundle_free> message(bundle_create());
    expectSuccess(bundle_add_str(message.get(), "req", request.name.c_str()), "write the request's name");
    expectSuccess(bundle_add_str(message.get(), "msg", request.argument.c_str()), "write the request's argument");
    const int result = message_port_send_message(ids::service, ids::policyPort, message.get());
    if (result != MESSAGE_PORT_ERROR_PORT_NOT_FOUND && result != MESSAGE_PORT_ERROR_IO_ERROR) {
        expectSuccess(result, "send " + request.name);
    }
    return result == MESSAGE_PORT_ERROR_NONE;
}

std::optional<std::vector<StoredAccount>> storedAccounts(const DeviceLayout& layout) {
    try {
        return readStoredAccounts(policyDatabase(layout));
    } catch (const std::runtime_error&) {
        return std::nullopt; // the service's log tells why
    }
}

/// Who sends, and whom the service has launched meanwhile.
class Sender {
public:
    explicit Sender(const DeviceSession& session) : session_(session), log_(session.device().layout().log()) {
        log_.skip();
        launch();
    }

    RequestOutcome carryOut(const Request& request) {
        const auto& layout = session_.device().layout();
        log_.skip(); // first, so that the log shows all that the store does
        RequestTraces traces{storedAccounts(layout), {}, {}};
        const auto first = session_.daemon().processOf(ids::service);
        int repetitions = 0;
        while (!deliver(request, traces)) {
            if (++repetitions > mostRepetitions) {
                const bool isSame = first && session_.daemon().processOf(ids::service) == first;
                throw std::runtime_error((isSame ? "the service runs, and its port is not open, so that it gets no "
                                                 : "the service ends each time before it has handled ") +
                                         request.name + ", see " + layout.log().string());
            }
            launch();
        }
        traces.after = storedAccounts(layout);
        takeLog(traces);
        auto outcome = outcomeOf(request, traces);
        outcome.repetitions = repetitions;
        return outcome;
    }

    void settleLaunched() const {
        for (const auto& id : launched_) {
            session_.settle(id);
        }
    }

private:
    static constexpr int mostRepetitions = 3;
    static constexpr std::chrono::seconds endTimeout{20};

    /// The port of the service is open when this returns.
    void launch() {
        for (int ends = 0;; ++ends) {
            sendLaunchRequest(ids::service, {});
            const auto launched = session_.daemon().processOf(ids::service);
            try {
                settleService();
                return;
            } catch (const NoAnswer&) {
                throw;
            } catch (const std::runtime_error&) {
                const bool hasEnded = launched && session_.daemon().processOf(ids::service) != launched;
                if (!hasEnded || ends == mostRepetitions) {
                    throw;
                }
            }
        }
    }

    void settleService() {
        const auto more = session_.settle(ids::service);
        launched_.insert(more.begin(), more.end());
    }

    /// Whether the service has handled the request, or must not get it again. It ends itself when nothing is left to
    /// wait for, and a request that is on its way then is handled by the process that ends, or by nobody.
    bool deliver(const Request& request, RequestTraces& traces) {
        const auto pid = session_.daemon().processOf(ids::service);
        const auto service = pid ? ProcessHandle::open(*pid) : std::nullopt;
        if (!service || !send(request)) {
            return false;
        }
        try {
            settleService();
        } catch (const NoAnswer&) {
            throw;
        } catch (const std::runtime_error&) {
            if (!service->waitForEnd(endTimeout)) {
                throw;
            }
        }
        const bool isSame = session_.daemon().processOf(ids::service) == pid;
        if (!isSame) {
            service->waitForEnd(endTimeout); // it may be handling the request still
        }
        takeLog(traces);
        const auto log = logOf(request, traces.log);
        return isSame || isWipe(request) || (log.isOwn && isHandled(log.lines));
    }

    void takeLog(RequestTraces& traces) {
        const auto lines = log_.takeLines();
        traces.log.insert(traces.log.end(), lines.begin(), lines.end());
    }

    const DeviceSession& session_;
    ServiceLog log_;
    std::set<std::string> launched_;
};

} // namespace

std::size_t largestArgument(const std::string& request) {
    const std::size_t others =
        message_size::empty + message_size::ofEntry("req", request) + message_size::ofEntry("msg", "");
    return others < message_size::limit ? message_size::limit - others : 0;
}

std::string whyTooLong(const Request& request) {
    const std::size_t most = largestArgument(request.name);
    return request.argument.size() <= most ? ""
                                           : "the message has " + std::to_string(request.argument.size()) +
                                                 " bytes; the port takes at most " + std::to_string(most);
}

void sendAsMailApplication(const DeviceSession& session, const std::vector<Request>& requests,
                           const std::function<void(const RequestOutcome& outcome)>& tell) {
    for (const auto& request : requests) {
        if (const auto reason = whyTooLong(request); !reason.empty()) {
            throw std::runtime_error("cannot send " + request.name + ": " + reason);
        }
    }
    Sender sender(session);
    for (const auto& request : requests) {
        tell(sender.carryOut(request));
    }
    sender.settleLaunched();
}

} // namespace deskwatch
