#include "req_workers/TeskConsumerCheckOdeWorker.h"

#include "TeskConsumerKeys.h"
#include "TeskConsumerUtil.h"
#include "TeskConsumerVconf.h"

int TeskConsumerCheckOdeWorker::process(const char* /*data*/) {
    const bool isPasswordApplied = TeskConsumerVconf::get(TeskConsumerKeys::passwordPolicyApplied) != 0;
    return isPasswordApplied ? TeskConsumerUtil::launchOdePopup() : 0;
}
