#include "req_workers/TeskConsumerDeleteAccountWorker.h"

#include <cstdlib>

#include "TeskConsumerAccountMgr.h"
#include "TeskConsumerDbMgr.h"
#include "TeskConsumerPreferenceProxy.h"

namespace {

constexpr int decimal = 10;

} // namespace

int TeskConsumerDeleteAccountWorker::process(const char* data) {
    const auto accountId = static_cast<int>(std::strtol(data, nullptr, decimal));
    TeskConsumerAccountMgr::getInstance()->delAccount(accountId);

    int count = 0;
    TeskConsumerDbMgr::getInstance()->getAllEasAccountCount(&count);
    if (count == 0) {
        TeskConsumerPreferenceProxy().set<int>(TESK_PWD_ENFORCE_ACCOUNT_KEY, 0);
    }
    return 0;
}
