#include "stories.h"

#include <algorithm>
#include <ostream>

#include "TeskConsumerIpcMgr.h"
#include "TestDbus.h"
#include "fault.h"
#include "sample_policies.h"

namespace {

using fake::FakePlatform;

constexpr char passwordApplied[] = "db/eas/password_policy_applied";
constexpr char encryptionApplied[] = "db/eas/device_encryption_applied";

constexpr char update[] = "req_update_policy";
constexpr char deletion[] = "req_delete_account";

/// The account of a small office: a PIN of four digits.
TeskPolicyData office(int accountId) {
    TeskPolicyData data;
    data.accountId = accountId;
    data.accountName = "bob@fabrikam.example";
    data.displayName = "Bob";
    data.devicePasswordEnabled = 1;
    data.minDevicePasswordLength = 4;
    data.maxDevicePasswordFailedAttempts = 8;
    return data;
}

/// The account of a bank: a long password, encryption, and no radio.
TeskPolicyData bank(int accountId) {
    auto data = office(accountId);
    data.accountName = "bob@woodgrove.example";
    data.allowSimplePassword = 0;
    data.alphanumericDevicePasswordRequired = 1;
    data.minDevicePasswordComplexCharacters = 2;
    data.minDevicePasswordLength = 8;
    data.requireDeviceEncryption = 1;
    data.allowWifi = 0;
    return data;
}

/// The account of an advertising agency: no rule at all.
TeskPolicyData agency(int accountId) {
    TeskPolicyData data;
    data.accountId = accountId;
    data.accountName = "bob@adventure.example";
    return data;
}

std::function<void(FakePlatform&)> request(const std::string& name, const std::string& argument) {
    return [name, argument](FakePlatform& platform) { platform.ports.deliver(name, argument); };
}

std::string listed(int accountId, const std::string& policySet) {
    return R"({"id":)" + std::to_string(accountId) +
           R"(,"accountName":"alice@contoso.example","displayName":"Alice","policySet":)" + policySet + "}";
}

/// An entry that lists an account again and leaves its policy as it is.
std::string mentioned(int accountId) {
    return R"({"id":)" + std::to_string(accountId) + R"(,"accountName":"bob","displayName":"Bob"})";
}

void answerPopup(FakePlatform& platform, const std::string& answer) {
    const auto& sent = platform.launches.sent;
    const auto popup = std::find_if(sent.begin(), sent.end(), [](const auto& launch) { return launch.wantsReply(); });
    if (popup != sent.end()) {
        platform.launches.answer(static_cast<std::size_t>(popup - sent.begin()), answer);
    }
}

void setLock(FakePlatform& platform) {
    platform.settings.setKeyAsDevice("db/setting/lock_type", 2);
}

void finishEncryption(FakePlatform& platform) {
    platform.settings.setKeyAsDevice("db/ode/crypto_state", "encrypted");
    platform.settings.setKeyAsDevice(encryptionApplied, 1);
}

void askForBothChecks(FakePlatform& platform) {
    platform.ports.deliver("chk_password_policy", "");
    platform.settings.setKeyAsDevice(passwordApplied, 1);
    platform.ports.deliver("chk_device_encryption_policy", "");
}

void waitUntilIdle(FakePlatform& platform) {
    platform.settings.setKeyAsDevice(passwordApplied, 1);
    platform.settings.setKeyAsDevice(encryptionApplied, 1);
    platform.deliverPending();
    platform.service.launch();
    platform.system.passSeconds(10);
}

void testPolicy(FakePlatform& /*platform*/) {
    const std::unique_ptr<std::string> text(TestDbus::__getPolicyDataJson(bank(testAccountId)));
    if (text) {
        TeskConsumerIpcMgr::getInstance()->policyTest(update, text->c_str());
    }
}

void testRemoval(FakePlatform& /*platform*/) {
    TeskConsumerIpcMgr::getInstance()->policyTest(deletion, std::to_string(testAccountId).c_str());
}

void oldStyleQuality(FakePlatform& platform) {
    platform.devicePolicy.settings["quality"] = 16;
    platform.devicePolicy.settings["minimum_length"] = 5;
}

/// The service starts, and ends when its main loop would begin.
Story start(const std::string& name, int leastRuns, const std::vector<TeskPolicyData>& accounts) {
    Story story;
    story.name = name;
    story.leastRuns = leastRuns;
    story.accounts = accounts;
    story.withStart = true;
    story.withEnd = true;
    return story;
}

/// Something happens to the service that runs.
Story happening(const std::string& name, int leastRuns, const std::vector<TeskPolicyData>& accounts,
                const std::function<void(FakePlatform&)>& act) {
    Story story;
    story.name = name;
    story.leastRuns = leastRuns;
    story.accounts = accounts;
    story.act = act;
    return story;
}

// Which allocation makes which manager.
constexpr int application = 1;
constexpr int idleTerminator = 2;
constexpr int policyManager = 6;

/// The story with the allocations without which the process ends.
Story ending(Story story, const std::vector<int>& allocations) {
    for (const int nth : allocations) {
        story.ends.push_back(Fault{"operator new", nth, -1}.text());
    }
    return story;
}

Story startWithAnOldStyleQuality() {
    Story story = start("StartWithAnOldStyleQuality", 1300, {office(1)});
    story.device = oldStyleQuality;
    return story;
}

Story idleEnd() {
    Story story = happening("IdleEnd", 60, {office(1)}, waitUntilIdle);
    story.withEnd = true;
    return story;
}

std::vector<Story> makeStories() {
    const auto list =
        "[" + listed(2, samples::hardened) + "," + mentioned(1) + "," + listed(3, samples::limitsWithoutPassword) + "]";
    const std::string accountInfo = R"({"msgId":"email-account-info","seqId":1,"accountId":)" + list + "}";
    const std::string initResponse = R"({"msgId":"email-init-res","param":{"accountId":)" + list + "}}";
    const std::string wipe = R"({"msgId":"eas-remote-wipe"})";
    const auto popupSays = [](const std::string& answer) {
        return [answer](FakePlatform& platform) { answerPopup(platform, answer); };
    };
    return {
        ending(start("FirstStart", 700, {}), {application}),
        ending(start("StartWithAccounts", 1300, {office(1), bank(2)}), {application, idleTerminator, policyManager}),
        ending(startWithAnOldStyleQuality(), {application, idleTerminator, policyManager}),
        happening("FirstAccount", 1300, {}, request(update, samples::indication(1, samples::hardened))),
        happening("StrongerSecondAccount", 1200, {office(1)},
                  request(update, samples::indication(2, samples::strictest))),
        happening("UpdateOfOneOfThree", 1200, {office(1), bank(2), agency(3)},
                  request(update, samples::indication(2, samples::builtIn))),
        happening("AccountList", 1200, {office(1)}, request(update, accountInfo)),
        happening("InitResponse", 1200, {office(1)}, request(update, initResponse)),
        happening("WearerSetsTheLock", 200, {bank(1)}, setLock),
        happening("EncryptionDone", 14, {bank(1)}, finishEncryption),
        happening("PopupSaysOk", 67, {office(1)}, popupSays("ok")),
        happening("PopupTurnsMailOff", 49, {office(1)}, popupSays("sync_off_ok")),
        happening("Checks", 290, {bank(1)}, askForBothChecks),
        happening("Deletion", 1200, {office(1), bank(2)}, request(deletion, "2")),
        happening("LastDeletion", 1000, {bank(1)}, request(deletion, "1")),
        happening("RemoteWipe", 30, {office(1)}, request(update, wipe)),
        happening("TestPolicy", 1300, {office(1)}, testPolicy),
        happening("TestRemoval", 1300, {office(1), bank(testAccountId)}, testRemoval),
        idleEnd(),
    };
}

} // namespace

const std::vector<Story>& stories() {
    static const std::vector<Story> all = makeStories();
    return all;
}

void prepareWatch(FakePlatform& platform, const Story& story) {
    platform.settings.setKeyAsDevice("db/ode/crypto_state", "unencrypted");
    platform.settings.setKeyAsDevice("db/rgn/country_iso", "GB");
    platform.settings.setKeyAsDevice("db/setting/lock_type", 0);
    platform.settings.deliverChanges();
    platform.ports.remotePorts.emplace("com.velmor.quillon.consumer", "eas-itpolicy-port");
    if (!story.accounts.empty()) {
        platform.devicePolicy.registerService();
        platform.preferences["pref/tesk-agent/pwd_enforce_account_id"] = story.accounts.front().accountId;
    }
    if (story.device) {
        story.device(platform);
    }
}

void PrintTo(const Story& story, std::ostream* out) {
    *out << story.name;
}
