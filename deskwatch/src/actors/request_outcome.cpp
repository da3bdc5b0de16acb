#include "actors/request_outcome.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

#include "actors/request_log.h"
#include "device/plain_text.h"
#include "messages/message.h"
#include "text/suggestion.h"
#include "text/text_table.h"

namespace deskwatch {
namespace {

constexpr std::string_view wipeFailed = "Failed to wipe internal storage. : ";

/// What the platform refused, as the service logs it; the rest of the line has the code. A registration that fails is
/// left out: either the service is registered already, or the platform refuses every setting after it.
constexpr std::array<std::string_view, 8> refusedByPlatform{refusedSetting,
                                                            "vconf_set_int(",
                                                            "Failed to set enforce account id.",
                                                            "app_control_create() failed: ",
                                                            "app_control_set_app_id() failed: ",
                                                            "app_control_add_extra_data() failed: ",
                                                            "app_control_send_launch_request() failed: ",
                                                            "consumer launching fail: "};

std::vector<std::string> refusalsIn(const std::vector<ServiceLine>& log, bool isAdministered) {
    std::vector<std::string> refusals;
    for (const auto& line : log) {
        if (!isAdministered && startsWith(line.text, refusedSetting)) {
            if (refusals.empty() || refusals.front() != takesNoSetting) {
                refusals.insert(refusals.begin(), takesNoSetting);
            }
            continue;
        }
        if (std::any_of(refusedByPlatform.begin(), refusedByPlatform.end(),
                        [&](std::string_view start) { return startsWith(line.text, start); })) {
            refusals.push_back("refused by the platform: " + printable(line.text));
        }
    }
    return refusals;
}

/// What SQLite also says of a store that is not open.
constexpr char ofAClosedStore[] = "out of memory";

/// A failure to write the store; empty when there was none.
std::string storeFailure(const std::vector<ServiceLine>& log) {
    std::string cause;
    for (const auto& line : log) {
        constexpr std::string_view failure = "db failure: ";
        if (startsWith(line.text, failure)) {
            cause = line.text.substr(failure.size());
        }
        for (const auto* text :
             {"_db_insert_policy_data failed", "_db_update_rule_data failed", "deletePolicyByAccountId failed"}) {
            if (startsWith(line.text, text) && !cause.empty()) {
                return "the store cannot be written: " + cause + (cause == ofAClosedStore ? ", or it is not open" : "");
            }
        }
    }
    return "";
}

const StoredAccount* rowOf(const std::optional<std::vector<StoredAccount>>& accounts, int id) {
    if (accounts) {
        for (const auto& account : *accounts) {
            if (!account.empty() && account.front().value == Value(id)) {
                return &account;
            }
        }
    }
    return nullptr;
}

/// Whether the store holds what a message says of an account.
bool holds(const StoredAccount& stored, const MessageAccount& account) {
    const Value name(
        account.name.substr(0, account.name.find('\0'))); // a text ends for the service at a null character
    const bool isCalledSo = std::all_of(stored.begin(), stored.end(), [&name](const NamedValue& column) {
        return column.name != "account_name" || column.value == name;
    });
    return isCalledSo && holdsPolicy(stored, account);
}

const char* const tooLittleLogged =
    "the log of this watch does not show what the service does (DLOG_LEVEL, a full disk)";

const char* const othersToo = "the service handled other requests at the same time";

/// What there is to conclude from.
struct Evidence {
    const RequestTraces& traces;
    RequestLog log;

    /// A failure of this request to write the store; empty when there was none, or it may be another's.
    std::string storeFailure(const std::vector<ServiceLine>* part = nullptr) const {
        return log.isOwn ? deskwatch::storeFailure(part != nullptr ? *part : log.lines) : "";
    }

    const char* whyUnknown() const {
        return !traces.before || !traces.after ? "the store cannot be read"
               : log.hasOthers                 ? othersToo
                                               : tooLittleLogged;
    }
};

/// What became of a request that is about no account, or about none that is known.
Effect withoutAccount(Became became, const std::string& reason = "") {
    return {became, std::nullopt, "", reason};
}

Effect effectOnStore(const Evidence& evidence, const MessageAccount& account, const std::vector<ServiceLine>* log) {
    const auto& traces = evidence.traces;
    Effect effect{Became::Unknown, account.id, account.name, ""};
    const auto* const before = rowOf(traces.before, account.id);
    const auto* const after = rowOf(traces.after, account.id);
    if (!account.hasPolicySet) {
        effect.became = Became::Unchanged;
        effect.reason = "it comes without a \"policySet\"";
    } else if (account.id < 1) {
        effect.became = Became::PassedOver;
        effect.reason = "an account's number is 1 or more";
    } else if (const auto failure = evidence.storeFailure(log); !failure.empty()) {
        effect.became = Became::Refused;
        effect.reason = failure;
    } else if (after != nullptr && (before == nullptr || *before != *after)) {
        effect.became = before == nullptr ? Became::Stored : Became::Updated;
    } else if (after != nullptr && ((log != nullptr && isHandled(evidence.log.lines)) || holds(*after, account))) {
        effect.became = Became::Unchanged;
    } else if (log != nullptr && traces.after && after == nullptr && evidence.log.hasOthers) {
        effect.became = Became::Stored;
        effect.reason = std::string("gone again, since ") + othersToo;
    } else if (traces.after && !evidence.log.hasOthers) {
        effect.became = Became::Refused;
        effect.reason = std::string("it is not stored, and ") + tooLittleLogged;
    } else {
        effect.reason = evidence.whyUnknown();
    }
    return effect;
}

std::vector<Effect> effectsOfMessage(const Message& message, const Evidence& evidence) {
    std::vector<Effect> effects;
    const auto parts =
        evidence.log.isOwn ? splitByAccount(evidence.log.lines) : std::vector<std::vector<ServiceLine>>();
    std::size_t taken = 0;
    for (const auto& account : message.accounts) {
        const bool isLogged = account.hasPolicySet && taken < parts.size();
        effects.push_back(effectOnStore(evidence, account, isLogged ? &parts[taken] : nullptr));
        taken += account.hasPolicySet ? 1 : 0;
    }
    if (effects.empty()) {
        effects.push_back(withoutAccount(Became::PassedOver,
                                         message.hasAccounts
                                             ? "it names no account"
                                             : "its \"" + std::string(message.kind->accounts) + "\" is not an array"));
    }
    return effects;
}

Effect effectOfWipe(const std::vector<ServiceLine>& log) {
    for (const auto& line : log) {
        if (startsWith(line.text, wipeFailed)) {
            return withoutAccount(Became::Refused, "the platform does not wipe the internal storage: " +
                                                       line.text.substr(wipeFailed.size()));
        }
    }
    if (!contains(log, "factoryReset", "Enter")) {
        return withoutAccount(Became::Unknown, tooLittleLogged);
    }
    return withoutAccount(Became::Wiped);
}

Effect effectOfDeletion(const std::string& argument, const Evidence& evidence) {
    const auto& traces = evidence.traces;
    constexpr int decimal = 10;
    const int id = static_cast<int>(std::strtol(argument.c_str(), nullptr, decimal)); // as the service reads it
    if (id < 1) {
        return withoutAccount(Became::PassedOver, "\"" + argument + "\" is not an account's number, 1 or more");
    }
    const auto* const before = rowOf(traces.before, id);
    Effect effect{Became::Deleted, id, "", ""};
    if (const auto failure = evidence.storeFailure(); !failure.empty()) {
        effect.became = Became::Refused;
        effect.reason = failure;
    } else if (!traces.before || !traces.after) {
        effect.became = Became::Unknown;
        effect.reason = evidence.whyUnknown();
    } else if (before == nullptr && !evidence.log.hasOthers) {
        effect.became = Became::PassedOver;
        effect.reason = "no such account is stored";
    } else if (rowOf(traces.after, id) != nullptr && evidence.log.hasOthers) {
        effect.became = evidence.log.isOwn ? Became::Deleted : Became::Unknown;
        effect.reason = std::string(evidence.log.isOwn ? "stored again, since " : "") + othersToo;
    } else if (rowOf(traces.after, id) != nullptr) {
        effect.became = Became::Refused;
        effect.reason = "it is still stored";
    }
    return effect;
}

std::vector<Effect> effectsOfUpdate(const Request& request, const Evidence& evidence) {
    const Message message = readMessage(request.argument);
    if (message.kind == nullptr) {
        return {withoutAccount(Became::Unknown, "it cannot be told what the service makes of this text")};
    }
    if (message.kind->id == remoteWipeKind) {
        return {effectOfWipe(evidence.log.lines)};
    }
    return effectsOfMessage(message, evidence);
}

Effect effectOfCheck(const Request& request, const std::vector<ServiceLine>& log) {
    if (warningsOf(log).isTutorialShown) {
        return withoutAccount(Became::PassedOver, "no screen opens while the tutorial is shown");
    }
    if (!isHandled(log)) {
        return withoutAccount(Became::Unknown, tooLittleLogged);
    }
    if (request.name == requests::checkEncryption && !contains(log, "launchOdePopup", "Enter")) {
        return withoutAccount(Became::PassedOver, "a lock comes first: db/eas/password_policy_applied is 0 or not set");
    }
    return withoutAccount(Became::Handled);
}

std::vector<Effect> effectsOf(const Request& request, const Evidence& evidence) {
    const auto reason = evidence.log.isOwn ? reasonToPassOver(evidence.log.lines) : "";
    if (!reason.empty()) {
        const bool isKnown = std::find(requests::all.begin(), requests::all.end(), request.name) != requests::all.end();
        const auto meant = isKnown ? "" : didYouMean(request.name, {requests::all.begin(), requests::all.end()});
        return {withoutAccount(Became::PassedOver, reason + meant)};
    }
    if (request.name == requests::updatePolicy) {
        return effectsOfUpdate(request, evidence);
    }
    if (request.name == requests::deleteAccount) {
        return {effectOfDeletion(request.argument, evidence)};
    }
    return {effectOfCheck(request, evidence.log.lines)};
}

bool isDone(const Effect& effect) {
    return effect.became != Became::PassedOver && effect.became != Became::Refused && effect.became != Became::Unknown;
}

const char* wordsOf(Became became) {
    constexpr std::array<const char*, 9> words{"stored",      "updated", "unchanged",
                                               "deleted",     "wiped",   "handled",
                                               "passed over", "refused", "sent, and what became of it is unknown"};
    return words.at(static_cast<std::size_t>(became));
}

std::string lineOf(const Effect& effect) {
    std::string line;
    if (effect.account) {
        line = "account " + std::to_string(*effect.account) +
               (effect.accountName.empty() ? "" : " (" + effect.accountName + ")") + ": ";
    } else if (effect.became == Became::Wiped) {
        line = "the internal storage: ";
    }
    return printable(line + wordsOf(effect.became) + (effect.reason.empty() ? "" : ": " + effect.reason));
}

} // namespace

bool RequestOutcome::isDone() const {
    return refusals.empty() &&
           std::all_of(effects.begin(), effects.end(), [](const Effect& effect) { return deskwatch::isDone(effect); });
}

std::vector<std::string> RequestOutcome::done() const {
    std::vector<std::string> lines;
    for (const auto& effect : effects) {
        if (deskwatch::isDone(effect)) {
            lines.push_back(lineOf(effect));
        }
    }
    if (repetitions > 0) {
        lines.emplace_back(
            "the service ended before it had handled this; it was launched again and the request sent again");
    }
    return lines;
}

std::vector<std::string> RequestOutcome::notDone() const {
    std::vector<std::string> lines;
    for (const auto& effect : effects) {
        if (!deskwatch::isDone(effect)) {
            lines.push_back(lineOf(effect));
        }
    }
    lines.insert(lines.end(), refusals.begin(), refusals.end());
    return lines;
}

bool isWipe(const Request& request) {
    const auto message = readMessage(request.argument);
    return request.name == requests::updatePolicy && message.kind != nullptr && message.kind->id == remoteWipeKind;
}

RequestOutcome outcomeOf(const Request& request, const RequestTraces& traces) {
    RequestOutcome outcome;
    const Evidence evidence{traces, logOf(request, traces.log)};
    outcome.effects = effectsOf(request, evidence);
    const bool isAdministered = !traces.before || !traces.after || !traces.before->empty() || !traces.after->empty();
    outcome.refusals = refusalsIn(evidence.log.lines, isAdministered);
    return outcome;
}

} // namespace deskwatch
