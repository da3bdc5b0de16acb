#include "story_events.h"

#include <array>

#include "fuzzed_watch.h"
#include "random_policies.h"
#include "rules/TeskPolicyTable.h"
#include "sample_policies.h"
#include "story_faults.h"

namespace fuzz {

namespace {

using harness::Event;

constexpr std::array numberKeys{"db/eas/password_policy_applied", "db/eas/device_encryption_applied",
                                "db/eas/is_pwd_input_finished", "db/setting/lock_type",
                                "memory/private/com.velmor.hearth/tutorial_is_in_progress"};
constexpr std::array textKeys{"db/ode/crypto_state", "db/rgn/country_iso"};
constexpr std::array keyTexts{"unencrypted", "encrypted", "", "KR", "GB"};
constexpr std::array accountTexts{"1", "2", "3", "4", "5", "999", "0", "-1", "", "x", "99999999999999999999"};
constexpr std::array answers{"ok", "sync_off_ok", "cancel", ""};
constexpr std::array readRules{"quality", "minimum_length", "min_complex_chars"};
constexpr std::array qualities{0, 16, 17, 32, 33, 128, 129};
constexpr std::array policies{samples::builtIn, samples::hardened, samples::limitsWithoutPassword, samples::strictest};

Event policy(ByteReader& bytes) {
    constexpr int mostAccounts = 3;
    constexpr std::size_t accountIds = 6;
    if (bytes.flag()) {
        return harness::messageArrives(RandomPolicies(bytes.byte()).message(mostAccounts));
    }
    const int id = static_cast<int>(bytes.below(accountIds));
    return harness::policyArrives(id, bytes.oneOf(policies));
}

Event removal(ByteReader& bytes) {
    return harness::accountIsRemoved(bytes.oneOf(accountTexts));
}

Event check(ByteReader& bytes) {
    return bytes.flag() ? harness::passwordCheckIsAskedFor() : harness::encryptionCheckIsAskedFor();
}

Event unknownRequest(ByteReader& bytes) {
    const auto name = bytes.flag() ? std::optional(bytes.text()) : std::nullopt;
    return harness::requestArrives(name, bytes.flag() ? std::optional(bytes.text()) : std::nullopt);
}

Event answer(ByteReader& bytes) {
    const std::size_t popup = bytes.byte();
    return harness::wearerAnswers(bytes.flag() ? std::optional<std::string>(bytes.oneOf(answers)) : std::nullopt,
                                  popup);
}

Event key(ByteReader& bytes) {
    if (bytes.flag()) {
        const char* const name = bytes.oneOf(numberKeys);
        return harness::keyChanges(name, bytes.flag() ? bytes.number() : static_cast<int>(bytes.below(2)));
    }
    const char* const name = bytes.oneOf(textKeys);
    return harness::keyChanges(name, bytes.oneOf(keyTexts));
}

Event rule(ByteReader& bytes) {
    const char* const name = bytes.oneOf(readRules);
    return harness::deviceRuleChanges(name, bytes.flag() ? bytes.number() : bytes.oneOf(qualities));
}

Event time(ByteReader& bytes) {
    constexpr std::size_t longest = 12;
    return harness::timePasses(static_cast<unsigned>(bytes.below(longest)));
}

Event platform(ByteReader& bytes) {
    if (bytes.flag()) {
        return harness::serviceIsLaunched();
    }
    return harness::platformTells(static_cast<app_event_type_e>(bytes.below(APP_EVENT_DEVICE_ORIENTATION_CHANGED + 1)));
}

Event developer(ByteReader& bytes) {
    TeskPolicyData record;
    const auto& field = bytes.oneOf(TeskPolicyTable::numbers);
    record.*field.field = bytes.number();
    record.devicePasswordEnabled = bytes.flag() ? 1 : 0;
    return harness::developerSendsPolicy(record);
}

Event callsWork(ByteReader& /*bytes*/) {
    return endFaults;
}

Event end(ByteReader& /*bytes*/) {
    return harness::processEnds();
}

} // namespace

Event nextEvent(ByteReader& bytes) {
    static constexpr std::array readers{policy, policy, policy,   removal,  check,     unknownRequest, answer,    key,
                                        rule,   time,   platform, platform, developer, callFails,      callsWork, end};
    return bytes.oneOf(readers)(bytes);
}

} // namespace fuzz
