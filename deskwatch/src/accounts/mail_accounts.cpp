#include "accounts/mail_accounts.h"

#include <glib.h>

#include <algorithm>
#include <stdexcept>

#include "accounts/watch_answer.h"
#include "actors/mail_application.h"
#include "actors/refusal.h"
#include "actors/synchronisation_stops.h"
#include "device/application_ids.h"
#include "exchange/protocol_version.h"
#include "messages/message.h"
#include "provisioning/provisioning_import.h"
#include "provisioning/provisioning_tolerance.h"
#include "records/policy_database.h"
#include "text/text_table.h"
#include "text/value_text.h"

namespace deskwatch {
namespace {

using Kind = ServerDemand::Kind;

/// Unique, of one case, and of letters and digits alone, because servers treat the rest differently.
std::string newDeviceId() {
    std::string id = "desk";
    constexpr char digits[] = "0123456789abcdef";
    while (id.size() < 24) {
        id += digits[g_random_int_range(0, 16)];
    }
    return id;
}

const char* words(Compliance compliance) {
    switch (compliance) {
    case Compliance::Applied:
        return "the policy is applied";
    case Compliance::Partly:
        return "the policy is applied in part";
    case Compliance::Refused:
        return "the policy is refused";
    case Compliance::ManagedElsewhere:
        break;
    }
    return "something else manages the watch";
}

std::string messageFor(const MailAccount& account) {
    return importProvisioning(account.server.url, account.elements, {account.id, account.name, false}).message;
}

bool isOf(const StoredAccount& stored, int id) {
    return std::find(stored.begin(), stored.end(), NamedValue{"account_id", id}) != stored.end();
}

/// A user who repeats a connection means the account that there is.
void refuseRepeated(const AccountStore& store, const MailAccount& wanted) {
    for (const int id : store.ids()) {
        const auto known = store.read(id);
        const auto& server = known.server;
        if (server.url == wanted.server.url && server.user == wanted.server.user && known.name == wanted.name) {
            throw std::runtime_error(printable(server.user) + " is connected to " + server.url + " as account " +
                                     std::to_string(id) + ": mail refresh " + std::to_string(id) +
                                     " goes on; --account N adds another");
        }
    }
}

} // namespace

MailAccounts::MailAccounts(const DeviceSession& session, Surroundings surroundings)
    : session_(session), surroundings_(std::move(surroundings)), store_(session.device().layout()) {}

void MailAccounts::connect(const NewAccount& wanted) {
    auto account = newAccount(wanted);
    if (!wanted.id) {
        refuseRepeated(store_, account);
    }
    const auto lock = store_.lock(account.id);
    const auto ids = store_.ids();
    if (std::find(ids.begin(), ids.end(), account.id) != ids.end()) {
        throw std::runtime_error("account " + std::to_string(account.id) + " is connected to " +
                                 store_.read(account.id).server.url + "; mail disconnect removes it");
    }
    Handshake handshake(surroundings_.transport, account.server, surroundings_.password(account));
    const auto demand = handshake.connect(wanted.version);
    say(account, "connected to " + account.server.url + " with version " + versionText(account.server.version));
    obey(account, handshake, demand);
}

void MailAccounts::refresh(int id) {
    const auto lock = store_.lock(id);
    auto account = store_.read(id);
    Handshake handshake(surroundings_.transport, account.server, surroundings_.password(account));
    if (account.pending) {
        say(account, "the server still waits for the report on its last policy");
        finish(account, handshake, true);
        return;
    }
    const auto demand = handshake.refresh();
    store_.write(account); // the server may have moved
    obey(account, handshake, demand);
}

void MailAccounts::disconnect(int id) {
    const auto lock = store_.lock(id);
    const auto account = store_.read(id);
    sendToService(account, requests::deleteAccount, std::to_string(id));
    store_.remove(id);
}

void MailAccounts::obey(MailAccount& account, Handshake& handshake, const ServerDemand& demand) {
    switch (demand.kind) {
    case Kind::Nothing:
        say(account, "nothing has changed");
        restore(account);
        return;
    case Kind::NoPolicy:
        takeNoPolicy(account);
        return;
    case Kind::Policy:
        takePolicy(account, demand);
        finish(account, handshake, true);
        return;
    case Kind::WipeDevice:
        wipe(account, handshake, WipeOrder::Device);
        return;
    case Kind::WipeAccount:
        wipe(account, handshake, WipeOrder::Account);
        return;
    }
}

void MailAccounts::takePolicy(MailAccount& account, const ServerDemand& demand) {
    const auto taken = tolerated(demand.elements);
    for (const auto& remark : taken.remarks) {
        say(account, "the server's " + remark);
    }
    const auto known = account.message;
    account.elements = taken.elements;
    account.message = messageFor(account);
    account.pending = PendingPolicy{demand.temporaryKey, std::nullopt, false};
    const bool isInForce = account.acknowledged && *account.acknowledged <= static_cast<int>(Compliance::Partly);
    if (isInForce && account.message == known && isOnWatch(account)) {
        say(account, "the server sends the policy that the watch has");
        account.pending->stopsBefore = stopsNow();
        account.pending->wasApplied = true;
    }
    store_.write(account);
}

void MailAccounts::takeNoPolicy(MailAccount& account) {
    if (!account.message.empty()) {
        sendToService(account, requests::deleteAccount, std::to_string(account.id));
    }
    account.elements.clear();
    account.message.clear();
    account.pending.reset();
    account.server.policyKey = "0";
    store_.write(account);
    say(account, "the server has no policy for this user, so there is nothing to apply");
}

void MailAccounts::finish(MailAccount& account, Handshake& handshake, bool mayStartOver) {
    if (!account.pending->stopsBefore) {
        account.pending->stopsBefore = stopsNow();
        sendToService(account, requests::updatePolicy, account.message);
        store_.write(account);
    } else if (restore(account)) {
        account.pending->wasApplied = false;
        store_.write(account);
    } else if (!session_.daemon().isOwned(ids::service)) {
        // the watch was off meanwhile, and nobody has looked at the lock since
        sendToService(account, requests::checkPassword, "");
    }
    if (!isOnWatch(account)) {
        throw Refusal("the watch does not have the policy, so the server is told nothing; mail refresh " +
                      std::to_string(account.id) + " tries again");
    }
    const auto verdict = answerOfWatch(account);
    if (!verdict && surroundings_.patience == 0) {
        say(account, "the wearer is asked; mail refresh " + std::to_string(account.id) + " tells the server later");
        return;
    }
    if (!verdict) {
        throw Refusal("the wearer has not answered in " + std::to_string(surroundings_.patience) +
                      " seconds; mail refresh " + std::to_string(account.id) + " goes on");
    }
    const auto answer = handshake.acknowledge(account.pending->temporaryKey, verdict->compliance);
    if (answer.isOutdated && mayStartOver) {
        const auto demand = handshake.askForPolicy();
        if (demand.kind == Kind::Policy) {
            say(account, "the server has another policy by now");
            takePolicy(account, demand);
            finish(account, handshake, false);
        } else {
            account.pending.reset();
            obey(account, handshake, demand);
        }
        return;
    }
    account.pending.reset();
    account.acknowledged = static_cast<int>(verdict->compliance);
    store_.write(account);
    const auto told = "acknowledged with " + std::to_string(*account.acknowledged) + ", " + words(verdict->compliance) +
                      (verdict->reasons.empty() ? "" : ": " + joined(verdict->reasons, ", "));
    if (!answer.isAccepted) {
        throw std::runtime_error(told + "; " + answer.words);
    }
    if (verdict->compliance == Compliance::Refused || verdict->compliance == Compliance::ManagedElsewhere) {
        throw Refusal(told);
    }
    say(account, told);
    handshake.describeDevice();
}

bool MailAccounts::isOnWatch(const MailAccount& account) const {
    const auto message = readMessage(account.message);
    const auto stored = readStoredAccounts(policyDatabase(session_.device().layout()));
    return !message.accounts.empty() && std::any_of(stored.begin(), stored.end(), [&](const StoredAccount& row) {
        return isOf(row, account.id) && holdsPolicy(row, message.accounts.front());
    });
}

bool MailAccounts::restore(const MailAccount& account) {
    if (account.message.empty() || isOnWatch(account)) {
        return false;
    }
    say(account, "the watch does not have the policy any more, and gets it again");
    sendToService(account, requests::updatePolicy, account.message);
    return true;
}

std::optional<Verdict> MailAccounts::answerOfWatch(const MailAccount& account) const {
    try {
        return awaitVerdict(session_, account, surroundings_.patience);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error("the watch went off before it answered (" + std::string(error.what()) +
                                 "); when it is on again, mail refresh " + std::to_string(account.id) + " goes on");
    }
}

void MailAccounts::wipe(MailAccount& account, Handshake& handshake, WipeOrder order) {
    handshake.reportWipe(order);
    if (order == WipeOrder::Account) {
        say(account, "the server orders to remove this account from the watch");
        sendToService(account, requests::deleteAccount, std::to_string(account.id));
        store_.remove(account.id);
        return;
    }
    say(account, "the server orders to wipe the watch");
    const auto wipeRequest = requests::remoteWipe();
    if (!sendToService(account, wipeRequest.name, wipeRequest.argument)) {
        throw Refusal("the watch is not wiped, and the server was told that it is");
    }
    for (const int id : store_.ids()) {
        store_.remove(id);
    }
}

bool MailAccounts::sendToService(const MailAccount& account, const std::string& request, const std::string& argument) {
    bool isDone = true;
    sendAsMailApplication(session_, {{request, argument}}, [&](const RequestOutcome& outcome) {
        for (const auto& line : outcome.done()) {
            say(account, line);
        }
        for (const auto& line : outcome.notDone()) {
            say(account, line);
            isDone = false;
        }
    });
    return isDone;
}

void MailAccounts::say(const MailAccount& account, const std::string& text) const {
    surroundings_.tell(printable(account.name + ": " + text));
}

MailAccount MailAccounts::newAccount(const NewAccount& wanted) const {
    MailAccount account;
    account.id = wanted.id.value_or(0) > 0 ? *wanted.id : freeId();
    account.server.url = serverAddress(wanted.url, wanted.allowsPlain);
    account.server.user = wanted.user;
    account.server.deviceId = newDeviceId();
    account.server.form = wanted.form;
    account.server.allowsPlain = wanted.allowsPlain;
    const auto start = account.server.url.find("://") + 3;
    const auto host = account.server.url.substr(start, account.server.url.find_first_of(":/", start) - start);
    const bool isAddress = wanted.user.find('@') != std::string::npos;
    account.name = !wanted.name.empty() ? wanted.name : isAddress ? wanted.user : wanted.user + "@" + host;
    return account;
}

int MailAccounts::stopsNow() const {
    return synchronisationStops(session_.device().layout().applicationData(ids::mail));
}

int MailAccounts::freeId() const {
    const auto connected = store_.ids();
    const auto stored = readStoredAccounts(policyDatabase(session_.device().layout()));
    int id = 1;
    const auto isStored = [&] {
        return std::any_of(stored.begin(), stored.end(), [&id](const StoredAccount& row) { return isOf(row, id); });
    };
    while (isStored() || std::find(connected.begin(), connected.end(), id) != connected.end()) {
        ++id;
    }
    return id;
}

} // namespace deskwatch
