#include "story.h"

#include <array>

#include "TeskConsumerDbMgr.h"
#include "TeskConsumerIpcMgr.h"
#include "TestDbus.h"
#include "enforcement.h"
#include "fuzz_target.h"
#include "random_policies.h"
#include "rules/TeskPolicyTable.h"
#include "sample_policies.h"
#include "story_faults.h"

namespace fuzz {

namespace {

constexpr std::array numberKeys{"db/eas/password_policy_applied", "db/eas/device_encryption_applied",
                                "db/eas/is_pwd_input_finished", "db/setting/lock_type",
                                "memory/private/com.velmor.hearth/tutorial_is_in_progress"};
constexpr std::array textKeys{"db/ode/crypto_state", "db/rgn/country_iso"};
constexpr std::array keyTexts{"unencrypted", "encrypted", "", "KR", "GB"};
constexpr std::array accountTexts{"1", "2", "3", "4", "5", "999", "0", "-1", "", "x", "99999999999999999999"};
constexpr std::array answers{"ok", "sync_off_ok", "cancel", ""};
constexpr std::array readSettings{"quality", "minimum_length", "min_complex_chars"};

TeskPolicyDataList storedAccounts() {
    TeskPolicyDataList accounts;
    TeskConsumerDbMgr::getInstance()->getPolicyDataList(accounts);
    return accounts;
}

/// An account that is not stored yet.
int newAccountId() {
    int id = 1;
    TeskPolicyData ignored;
    while (TeskConsumerDbMgr::getInstance()->getPolicyDataByAccountId(id, ignored) == 0) {
        ++id;
    }
    return id;
}

} // namespace

void Story::play() {
    while (!bytes_.isEmpty()) {
        processHasEnded_ = false;
        service_.run([this] { playProcess(); });
        service_.requireNothingLeaked();
        bytes_.byte(); // a service that refuses to start must not stop the story
    }
}

void Story::playProcess() {
    static constexpr std::array<Event, 16> events{
        &Story::policyArrives,        &Story::policyArrives,   &Story::policyArrives,
        &Story::accountIsRemoved,     &Story::checkIsAskedFor, &Story::unknownRequestArrives,
        &Story::wearerAnswers,        &Story::keyChanges,      &Story::deviceIsChanged,
        &Story::timePasses,           &Story::platformTells,   &Story::platformTells,
        &Story::developerSendsPolicy, &Story::callsFail,       &Story::callsWork,
        &Story::processEnds};
    while (!bytes_.isEmpty() && isRunning()) {
        (this->*bytes_.oneOf(events))();
        service_.platform.deliverPending();
        service_.requireNothingLeaked();
    }
}

void Story::policyArrives() {
    service_.request("req_update_policy", policyMessage());
}

std::string Story::policyMessage() {
    constexpr int mostAccounts = 3;
    constexpr std::size_t accountIds = 6;
    static const std::array policies{samples::builtIn, samples::hardened, samples::limitsWithoutPassword,
                                     samples::strictest};
    if (bytes_.flag()) {
        return RandomPolicies(bytes_.byte()).message(mostAccounts);
    }
    const int id = static_cast<int>(bytes_.below(accountIds));
    return samples::indication(id, bytes_.oneOf(policies));
}

void Story::accountIsRemoved() {
    service_.request("req_delete_account", bytes_.oneOf(accountTexts));
}

void Story::checkIsAskedFor() {
    service_.request(bytes_.flag() ? "chk_password_policy" : "chk_device_encryption_policy", "");
}

void Story::unknownRequestArrives() {
    const auto name = bytes_.flag() ? std::optional(bytes_.text()) : std::nullopt;
    service_.request(name, bytes_.flag() ? std::optional(bytes_.text()) : std::nullopt);
}

void Story::wearerAnswers() {
    const auto& sent = service_.platform.launches.sent;
    const std::size_t index = sent.empty() ? 0 : bytes_.below(256) % sent.size();
    const auto answer = bytes_.flag() ? std::optional<std::string>(bytes_.oneOf(answers)) : std::nullopt;
    if (!sent.empty() && sent[index].wantsReply()) {
        service_.platform.launches.answer(index, answer);
    }
}

void Story::keyChanges() {
    auto& keys = service_.platform.settings;
    if (bytes_.flag()) {
        const char* const key = bytes_.oneOf(numberKeys);
        keys.setKeyAsDevice(key, bytes_.flag() ? bytes_.number() : static_cast<int>(bytes_.below(2)));
    } else {
        const char* const key = bytes_.oneOf(textKeys);
        keys.setKeyAsDevice(key, std::string(bytes_.oneOf(keyTexts)));
    }
}

void Story::deviceIsChanged() {
    constexpr std::array qualities{0, 16, 17, 32, 33, 128, 129};
    const char* const setting = bytes_.oneOf(readSettings);
    service_.platform.devicePolicy.settings[setting] = bytes_.flag() ? bytes_.number() : bytes_.oneOf(qualities);
}

void Story::timePasses() {
    constexpr std::size_t longest = 12;
    service_.platform.system.passSeconds(static_cast<guint>(bytes_.below(longest)));
}

void Story::platformTells() {
    if (bytes_.flag()) {
        service_.platform.service.launch();
        return;
    }
    service_.platform.service.fire(
        static_cast<app_event_type_e>(bytes_.below(APP_EVENT_DEVICE_ORIENTATION_CHANGED + 1)));
}

void Story::developerSendsPolicy() {
    TeskPolicyData record;
    const auto& field = bytes_.oneOf(TeskPolicyTable::numbers);
    record.*field.field = bytes_.number();
    record.devicePasswordEnabled = bytes_.flag() ? 1 : 0;
    const std::unique_ptr<std::string> text(TestDbus::__getPolicyDataJson(record));
    TeskConsumerIpcMgr::getInstance()->policyTest("req_update_policy", text->c_str());
}

void Story::callsFail() {
    chooseFault(bytes_, service_.platform.faults);
}

void Story::callsWork() {
    service_.endFaults();
}

void Story::processEnds() {
    processHasEnded_ = true;
}

void Story::requireRecovery() {
    callsWork();
    service_.requireSoundDatabase();
    const bool cameUp = service_.run([this] {
        requireAdministration();
        const int id = newAccountId();
        service_.request("req_update_policy", samples::indication(id, samples::hardened));

        TeskPolicyData stored;
        TeskConsumerDbMgr::getInstance()->getPolicyDataByAccountId(id, stored);
        require(stored.accountId == id && stored.maxInactivityTimeDeviceLock == 900, "a new policy is stored");
        requireStoredPoliciesEnforced(service_.platform);
        service_.requireNothingLeaked();
    });
    require(cameUp, "the service starts");
    service_.requireSoundDatabase();
}

/// An administrator that could not be registered with the first account stays unregistered until no account is left:
/// that is when the service registers again. Where it is registered, the start has enforced the stored policies.
void Story::requireAdministration() {
    if (!service_.platform.devicePolicy.clients.empty()) {
        if (!storedAccounts().empty()) {
            requireStoredPoliciesEnforced(service_.platform);
        }
        return;
    }
    for (const auto& account : storedAccounts()) {
        service_.request("req_delete_account", std::to_string(account->accountId));
    }
    require(storedAccounts().empty(), "every account can be removed");
}

} // namespace fuzz
