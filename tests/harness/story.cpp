#include "story.h"

#include <stdexcept>

#include "TeskConsumerDbMgr.h"
#include "child_process.h"
#include "database_file.h"

namespace harness {

void prepare(Watch& watch, const Story& story) {
    auto& platform = watch.platform;
    platform.ports.remotePorts.emplace("com.velmor.quillon.consumer", "eas-itpolicy-port");
    if (!story.accounts.empty()) {
        platform.devicePolicy.registerService();
        platform.preferences["pref/tesk-agent/pwd_enforce_account_id"] = story.accounts.front().accountId;
    }
    if (story.device) {
        story.device(watch);
    }
}

std::string databaseWith(const std::vector<TeskPolicyData>& accounts) {
    if (accounts.empty()) {
        return "";
    }
    const auto end = runInChild([&] {
        const Watch watch;
        for (const auto& account : accounts) {
            TeskConsumerDbMgr::getInstance()->insertPolicy(account);
        }
        return contentOf(watch.databasePath());
    });
    if (!end.isFinished()) {
        throw std::runtime_error("no database can be made: " + end.how());
    }
    return end.text;
}

} // namespace harness
