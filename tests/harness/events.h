#ifndef HARNESS_EVENTS_H
#define HARNESS_EVENTS_H

#include <functional>
#include <optional>
#include <string>

#include "rules/TeskPolicyData.h"
#include "watch.h"

namespace harness {

/// Something that happens to a watch whose service runs. What follows from it has happened too when it returns.
using Event = std::function<void(Watch&)>;

// What the mail application sends.
Event requestArrives(const std::optional<std::string>& name, const std::optional<std::string>& argument);
Event messageArrives(const std::string& text);
Event policyArrives(int accountId, const std::string& policySet);
Event accountIsRemoved(const std::string& accountId);
Event passwordCheckIsAskedFor();
Event encryptionCheckIsAskedFor();
Event wipeIsOrdered();

/// The wearer answers one of the popups that want an answer, with a result or with none.
Event wearerAnswers(const std::optional<std::string>& answer, std::size_t popup = 0);

// What other parts of the device do.
Event keyChanges(const std::string& key, const fake::SettingsStore::Value& value);
Event lockIsSet();
Event deviceRuleChanges(const std::string& name, int value);
Event serviceIsLaunched();
Event platformTells(app_event_type_e event);
Event timePasses(unsigned seconds);
Event processEnds();

// What a developer does through the diagnostic interface.
Event developerSendsPolicy(const TeskPolicyData& policy);
Event developerRemovesAccount(int accountId);

} // namespace harness

#endif
