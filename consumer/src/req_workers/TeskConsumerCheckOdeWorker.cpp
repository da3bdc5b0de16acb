#include "req_workers/TeskConsumerCheckOdeWorker.h"

#include <vconf.h>

#include "TeskConsumerKeys.h"
#include "TeskConsumerUtil.h"

int TeskConsumerCheckOdeWorker::process(const char* /*data*/) {
    int passwordApplied = 0;
    vconf_get_int(TeskConsumerKeys::passwordPolicyApplied, &passwordApplied);
    return passwordApplied != 0 ? TeskConsumerUtil::launchOdePopup() : 0;
}
