#include "check/findings.h"

#include <algorithm>

#include "check/demands.h"
#include "explain/explanation.h"
#include "rules/TeskPasswordDecision.h"
#include "rules/TeskPolicyMerge.h"

namespace deskwatch {
namespace {

using Kind = Finding::Kind;

std::string accountText(int account) {
    return "account " + std::to_string(account);
}

/// The findings so far. A demand joins the finding with the same cause.
class Findings {
public:
    void add(Kind kind, const std::string& text, const std::string& detail = "") {
        const auto same = std::find_if(all_.begin(), all_.end(), [&](const Finding& finding) {
            return finding.kind == kind && finding.text == text;
        });
        auto& finding = same != all_.end() ? *same : all_.emplace_back(Finding{kind, text, {}});
        if (!detail.empty()) {
            finding.details.push_back(detail);
        }
    }

    std::vector<Finding> take() { return std::move(all_); }

private:
    std::vector<Finding> all_;
};

/// Values that no server may send: the service reads what is not a number as 0, and a negative one wins merges.
void findOddValues(const Evidence& evidence, Findings& findings) {
    for (const auto& account : evidence.accounts) {
        const int id = policyRecords({account}).front()->accountId;
        for (const auto& [column, value] : account) {
            const bool isNumber = std::any_of(TeskPolicyTable::numbers.begin(), TeskPolicyTable::numbers.end(),
                                              [name = column](const auto& number) { return number.column == name; });
            const int* const number = std::get_if<int>(&value);
            if (isNumber && number == nullptr) {
                findings.add(Kind::OddValue, accountText(id) + ": " + column + " is not a number, which counts as 0");
            } else if (isNumber && *number < 0) {
                findings.add(Kind::OddValue, accountText(id) + ": " + column + " is negative");
            }
        }
    }
}

/// The field of a setting that an account's value won in, and which account that is.
const FieldExplanation* decidingField(const Explanation& explanation, std::size_t setting) {
    const auto found =
        std::find_if(explanation.fields.begin(), explanation.fields.end(), [setting](const FieldExplanation& field) {
            return field.setting == setting && field.winner.has_value();
        });
    return found != explanation.fields.end() ? &*found : nullptr;
}

/// The merge itself lets go of the demand.
void findInMerge(const Explanation& explanation, const Demand& demand, const std::string& detail, Findings& findings) {
    const auto* const field = decidingField(explanation, demand.setting);
    if (field == nullptr) {
        findings.add(Kind::Merge, "the merged policy is weaker", detail);
    } else if (field->merged < 0) {
        findings.add(Kind::OddValue, accountText(*field->winner) + ": " + field->field + " is negative", detail);
    } else {
        findings.add(Kind::Merge,
                     std::string(field->field) + " of " + accountText(*field->winner) + " wins: " + field->rule,
                     detail);
    }
}

/// The merged policy keeps the demand, and the device does not.
void findOnDevice(const Evidence& evidence, const Demand& demand, const std::string& detail, Findings& findings) {
    const std::string name = deviceSettings.at(demand.setting).name;
    if (evidence.isAdministered == false) {
        findings.add(Kind::Administrator, "the service does not administer the device", detail);
    } else if (evidence.refused.count(demand.setting) != 0) {
        findings.add(Kind::Refused, "the device refused " + name, detail);
    } else {
        findings.add(Kind::Changed, "something else changed " + name + ", or the service has not enforced it yet",
                     detail);
    }
}

void findUnmetDemands(const Evidence& evidence, const DeviceFacts& facts, Findings& findings) {
    const auto explanation = explain(facts);
    for (const auto& demand : demandsOf(facts)) {
        if (!isWeaker(demand, evidence.held.at(demand.setting))) {
            continue;
        }
        const auto detail = demandText(demand, evidence.held.at(demand.setting));
        const auto& merged = explanation.written.at(demand.setting);
        if (merged && isWeaker(demand, merged)) {
            findInMerge(explanation, demand, detail, findings);
        } else {
            findOnDevice(evidence, demand, detail, findings);
        }
    }
}

void findMissingLock(const Evidence& evidence, const DeviceFacts& facts, Findings& findings) {
    const int quality = TeskPasswordDecision::requiredQuality(TeskPolicyMerge::strongest(facts.accounts));
    const auto verdict = TeskPasswordDecision::compareLock(quality, evidence.lockType.value_or(0));
    if (quality != 0 && verdict != TeskPasswordVerdict::Satisfied) {
        findings.add(Kind::Lock, evidence.wasLockApplied ? "the lock that the accounts demand was removed or weakened"
                                                         : "the wearer has not set the lock that the accounts demand");
    } else if (quality != 0 && !evidence.wasLockApplied) {
        findings.add(Kind::Lock,
                     "the wearer is asked for a lock; nobody knows whether the present one is strong enough");
    }
}

void findExpiredPassword(const Evidence& evidence, Findings& findings) {
    const auto limits = lockLimits(evidence.held);
    if (isExpired(evidence.lockScreen, limits)) {
        findings.add(Kind::Lock, passwordAgeText(evidence.lockScreen, limits));
    }
}

void findMissingEncryption(const DeviceFacts& facts, Findings& findings) {
    if (TeskPolicyMerge::strongest(facts.accounts).requireDeviceEncryption != 0 && !facts.isEncrypted()) {
        findings.add(Kind::Encryption, "the internal storage is not encrypted");
    }
}

void findMissingAccounts(const Evidence& evidence, const DeviceFacts& facts, Findings& findings) {
    for (const int id : evidence.connected) {
        const bool isStored = std::any_of(facts.accounts.begin(), facts.accounts.end(),
                                          [id](const auto& account) { return account->accountId == id; });
        if (!isStored) {
            findings.add(Kind::MissingAccount,
                         accountText(id) + " has a policy of its server that never arrived, or was lost");
        }
    }
}

} // namespace

std::vector<Finding> findingsOf(const Evidence& evidence) {
    Findings findings;
    if (!evidence.storeProblem.empty()) {
        findings.add(Kind::Store, "the stored accounts cannot be read: " + evidence.storeProblem);
        return findings.take();
    }
    if (!evidence.hasStore && evidence.isAdministered == true) {
        findings.add(Kind::Store, "the service administers the device, but its store is missing");
    }
    DeviceFacts facts{policyRecords(evidence.accounts), evidence.held, evidence.country, evidence.cryptoState};
    if (!facts.accounts.empty()) {
        if (evidence.isAdministered == false) {
            findings.add(Kind::Administrator, "the service does not administer the device");
        }
        findOddValues(evidence, findings);
        findUnmetDemands(evidence, facts, findings);
        findMissingLock(evidence, facts, findings);
        findExpiredPassword(evidence, findings);
        findMissingEncryption(facts, findings);
    }
    findMissingAccounts(evidence, facts, findings);
    return findings.take();
}

} // namespace deskwatch
