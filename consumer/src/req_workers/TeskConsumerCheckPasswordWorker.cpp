#include "req_workers/TeskConsumerCheckPasswordWorker.h"

#include "TeskConsumerUtil.h"

int TeskConsumerCheckPasswordWorker::process(const char* /*data*/) {
    return TeskConsumerUtil::launchPopup();
}
