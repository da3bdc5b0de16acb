#include "actors/mail_application.h"

#include <app_control.h>
#include <message_port.h>

#include <algorithm>
#include <set>
#include <stdexcept>

#include "c_owners.h"
#include "device/application_ids.h"
#include "message_size.h"

namespace deskwatch {
namespace {

void expectSuccess(int result, const std::string& what) {
    if (result != 0) {
        throw std::runtime_error("cannot " + what + ": the platform answers " + std::to_string(result));
    }
}

/// What the port refuses is refused before anything is sent.
void expectSendable(const Request& request) {
    const std::size_t others =
        message_size::empty + message_size::ofEntry("req", request.name) + message_size::ofEntry("msg", "");
    const std::size_t most = others < message_size::limit ? message_size::limit - others : 0;
    if (request.argument.size() > most) {
        throw std::runtime_error("cannot send " + request.name + ": the message has " +
                                 std::to_string(request.argument.size()) + " bytes; the port takes at most " +
                                 std::to_string(most));
    }
}

void launchService() {
    app_control_h created = nullptr;
    expectSuccess(app_control_create(&created), "make a launch request");
    const c::Owner<app_control_s, app_control_destroy> request(created);
    expectSuccess(app_control_set_app_id(request.get(), ids::service), "address a launch request");
    expectSuccess(app_control_send_launch_request(request.get(), nullptr, nullptr), "launch the service");
}

void send(const Request& request) {
    const c::Owner<bundle, bundle_free> message(bundle_create());
    expectSuccess(bundle_add_str(message.get(), "req", request.name.c_str()), "write the request's name");
    expectSuccess(bundle_add_str(message.get(), "msg", request.argument.c_str()), "write the request's argument");
    expectSuccess(message_port_send_message(ids::service, ids::policyPort, message.get()), "send " + request.name);
}

} // namespace

void sendAsMailApplication(const Device& device, const std::vector<Request>& requests) {
    sendAsMailApplication(DeviceSession(device, ids::mail), requests);
}

void sendAsMailApplication(const DeviceSession& session, const std::vector<Request>& requests) {
    std::for_each(requests.begin(), requests.end(), expectSendable);
    launchService();
    const auto firstLaunched = session.settle(ids::service); // its port is open now
    std::set<std::string> launched(firstLaunched.begin(), firstLaunched.end());
    for (const auto& request : requests) {
        send(request);
        const auto more = session.settle(ids::service);
        launched.insert(more.begin(), more.end());
    }
    for (const auto& id : launched) {
        session.settle(id);
    }
}

} // namespace deskwatch
