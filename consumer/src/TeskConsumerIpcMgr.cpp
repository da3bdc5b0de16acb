#include "TeskConsumerIpcMgr.h"

#include <message_port.h>

#include <memory>

#include "TeskConsumerInstance.h"
#include "TeskConsumerLog.h"
#include "req_workers/TeskConsumerReqFactory.h"

namespace {

constexpr char portName[] = "eas-itpolicy-port";
constexpr char receiverId[] = "com.velmor.quillon.consumer";
constexpr char requestKey[] = "req";
constexpr char argumentKey[] = "msg";

// marks of the relay's requests in a debugger; nothing tests them
constexpr int relayPortId = 999;
constexpr char relayName[] = "DbusTest";

/// The id that the platform gave the open port, negative while there is none.
int localPortId = -1;

struct BundleFreer {
    void operator()(bundle* message) const { bundle_free(message); }
};
using Bundle = std::unique_ptr<bundle, BundleFreer>;

Bundle newRequest(const char* req, const char* msg, const TeskConsumerPlace& place = TeskConsumerPlace::here()) {
    Bundle message(bundle_create());
    TESK_INFO_AT(place, "[RELAY MSG] %s : %s", req, msg);
    bundle_add_str(message.get(), requestKey, req);
    bundle_add_str(message.get(), argumentKey, msg);
    return message;
}

/// The text of a bundle's entry, empty when there is none. After a message that was too long the platform hands out no
/// bundle at all.
const char* entryOf(bundle* message, const char* key) {
    char* text = nullptr;
    if (message != nullptr) {
        bundle_get_str(message, key, &text);
    }
    return text != nullptr ? text : "";
}

} // namespace

TeskConsumerIpcMgr* TeskConsumerIpcMgr::getInstance() {
    return teskConsumerInstance<TeskConsumerIpcMgr>();
}

TeskConsumerIpcMgr::TeskConsumerIpcMgr() {
    TESK_INFO("");
}

TeskConsumerIpcMgr::~TeskConsumerIpcMgr() {
    TESK_INFO("");
}

bool TeskConsumerIpcMgr::init() {
    const TeskConsumerTrace trace;
    localPortId = message_port_register_local_port(portName, __teskItpolicyReqCb, nullptr);
    if (localPortId < 0) {
        TESK_ERROR("Failed message port register. (%d)", localPortId);
        return false;
    }
    return true;
}

bool TeskConsumerIpcMgr::deinit() {
    const TeskConsumerTrace trace;
    const int result = message_port_unregister_local_port(localPortId);
    if (result != MESSAGE_PORT_ERROR_NONE) {
        TESK_ERROR("Failed message port unregister. (%d)", result);
        return false;
    }
    return true;
}

void TeskConsumerIpcMgr::sendEasItpolicyReq(const char* req, const char* msg) {
    const TeskConsumerTrace trace;
    const Bundle message = newRequest(req, msg);
    message_port_send_message(receiverId, portName, message.get());
}

void TeskConsumerIpcMgr::policyTest(const char* req, const char* msg) {
    const Bundle message = newRequest(req, msg);
    __teskItpolicyReqCb(relayPortId, relayName, relayName, true, message.get(), nullptr);
}

void TeskConsumerIpcMgr::__teskItpolicyReqCb(int /*localPortId*/, const char* /*remoteAppId*/,
                                             const char* /*remotePort*/, bool /*trustedRemotePort*/, bundle* message,
                                             void* /*userData*/) {
    TESK_INFO("Enter");
    const char* const req = entryOf(message, requestKey);
    const char* const msg = entryOf(message, argumentKey);
    const auto worker = TeskConsumerReqFactory::getWorker(req);
    if (worker) {
        worker->process(msg);
    }
    TESK_INFO("Leave");
}
