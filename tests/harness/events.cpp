#include "events.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "TeskConsumerIpcMgr.h"
#include "TestDbus.h"
#include "sample_policies.h"

namespace harness {

namespace {

constexpr char update[] = "req_update_policy";
constexpr char deletion[] = "req_delete_account";

/// An event at the platform, followed by what it leads to.
template <typename Act>
Event at(const Act& act) {
    return [act](Watch& watch) {
        act(watch.platform);
        watch.platform.deliverPending();
    };
}

void answerPopup(fake::Launches& launches, const std::optional<std::string>& answer, std::size_t popup) {
    std::vector<std::size_t> waiting;
    for (std::size_t index = 0; index < launches.sent.size(); ++index) {
        if (launches.sent[index].wantsReply()) {
            waiting.push_back(index);
        }
    }
    if (!waiting.empty()) {
        launches.answer(waiting[popup % waiting.size()], answer);
    }
}

} // namespace

Event requestArrives(const std::optional<std::string>& name, const std::optional<std::string>& argument) {
    return [name, argument](Watch& watch) { watch.request(name, argument); };
}

Event messageArrives(const std::string& text) {
    return requestArrives(update, text);
}

Event policyArrives(int accountId, const std::string& policySet) {
    return messageArrives(samples::indication(accountId, policySet));
}

Event accountIsRemoved(const std::string& accountId) {
    return requestArrives(deletion, accountId);
}

Event passwordCheckIsAskedFor() {
    return requestArrives("chk_password_policy", "");
}

Event encryptionCheckIsAskedFor() {
    return requestArrives("chk_device_encryption_policy", "");
}

Event wipeIsOrdered() {
    return messageArrives(R"({"msgId":"eas-remote-wipe"})");
}

Event wearerAnswers(const std::optional<std::string>& answer, std::size_t popup) {
    return at([answer, popup](fake::FakePlatform& platform) { answerPopup(platform.launches, answer, popup); });
}

Event keyChanges(const std::string& key, const fake::SettingsStore::Value& value) {
    return at([key, value](fake::FakePlatform& platform) { platform.settings.setKeyAsDevice(key, value); });
}

Event lockIsSet() {
    return keyChanges("db/setting/lock_type", 2);
}

Event deviceRuleChanges(const std::string& name, int value) {
    return at([name, value](fake::FakePlatform& platform) { platform.devicePolicy.settings[name] = value; });
}

Event serviceIsLaunched() {
    return at([](fake::FakePlatform& platform) { platform.service.launch(); });
}

Event platformTells(app_event_type_e event) {
    return at([event](fake::FakePlatform& platform) { platform.service.fire(event); });
}

Event timePasses(unsigned seconds) {
    return at([seconds](fake::FakePlatform& platform) { platform.system.passSeconds(seconds); });
}

Event processEnds() {
    return [](Watch& watch) { watch.platform.service.exited = true; };
}

Event developerSendsPolicy(const TeskPolicyData& policy) {
    return at([policy](fake::FakePlatform& /*platform*/) {
        const std::unique_ptr<std::string> text(TestDbus::__getPolicyDataJson(policy));
        if (text) {
            TeskConsumerIpcMgr::getInstance()->policyTest(update, text->c_str());
        }
    });
}

Event developerRemovesAccount(int accountId) {
    return at([accountId](fake::FakePlatform& /*platform*/) {
        TeskConsumerIpcMgr::getInstance()->policyTest(deletion, std::to_string(accountId).c_str());
    });
}

} // namespace harness
