#include "req_workers/TeskConsumerReqFactory.h"

#include <array>
#include <cstring>

#include "TeskConsumerLog.h"
#include "req_workers/TeskConsumerCheckOdeWorker.h"
#include "req_workers/TeskConsumerCheckPasswordWorker.h"
#include "req_workers/TeskConsumerDeleteAccountWorker.h"
#include "req_workers/TeskConsumerPolicyWorker.h"

namespace {

using WorkerPtr = std::shared_ptr<ITeskConsumerWorker>;

template <class Worker>
WorkerPtr newWorker() {
    return std::make_shared<Worker>();
}

struct RequestKind {
    const char* name;
    WorkerPtr (*create)();
};

constexpr std::array<RequestKind, 4> requestKinds{{
    {"req_update_policy", newWorker<TeskConsumerPolicyWorker>},
    {"req_delete_account", newWorker<TeskConsumerDeleteAccountWorker>},
    {"chk_password_policy", newWorker<TeskConsumerCheckPasswordWorker>},
    {"chk_device_encryption_policy", newWorker<TeskConsumerCheckOdeWorker>},
}};

} // namespace

std::shared_ptr<ITeskConsumerWorker> TeskConsumerReqFactory::getWorker(const char* request) {
    const TeskConsumerTrace trace;
    for (const auto& kind : requestKinds) {
        if (std::strcmp(request, kind.name) == 0) {
            return kind.create();
        }
    }
    TESK_ERROR("Unsupported request : %s", request);
    return nullptr;
}
