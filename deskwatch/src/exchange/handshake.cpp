#include "exchange/handshake.h"

#include <stdexcept>

#include "exchange/protocol_version.h"
#include "exchange/status_words.h"

namespace deskwatch {
namespace {

constexpr char noKey[] = "0";
constexpr int mostRounds = 2;
constexpr int descriptionMissing = 165;
constexpr std::size_t longestKey = 64;

WbxmlElement folderSync() {
    return {"FolderHierarchy:", "FolderSync", "", {{"FolderHierarchy:", "SyncKey", "0", {}}}};
}

/// The Status of a reply, wherever it stands; 0 for none, which no server sends.
int statusIn(const CommandReply& reply) {
    return reply.document ? statusOf(*reply.document).value_or(0) : 0;
}

void requireUsable(const CommandReply& reply) {
    if (reply.httpStatus != 200) {
        throw std::runtime_error(httpWords(reply.httpStatus));
    }
    if (!reply.document) {
        throw std::runtime_error("the server answers without a document: report it with --trace FILE");
    }
}

ServerDemand policyOf(const ProvisionReply& reply) {
    if (reply.policyStatus == 2) {
        return {ServerDemand::Kind::NoPolicy, "", {}};
    }
    if (reply.policyStatus && *reply.policyStatus != 1) {
        throw std::runtime_error(policyStatusWords(*reply.policyStatus));
    }
    if (!reply.hasDocument || reply.policyKey.empty() || reply.policyKey.size() > longestKey) {
        throw std::runtime_error("the server's answer has no policy that can be accepted: report it with --trace FILE");
    }
    return {ServerDemand::Kind::Policy, reply.policyKey, reply.elements};
}

ServerDemand demandOf(const ProvisionReply& reply) {
    // the order to wipe counts, whatever stands beside it
    if (reply.wipe != WipeOrder::None) {
        return {
            reply.wipe == WipeOrder::Device ? ServerDemand::Kind::WipeDevice : ServerDemand::Kind::WipeAccount, "", {}};
    }
    // some servers have no Status at this level
    if (reply.status && *reply.status != 1) {
        throw std::runtime_error(statusWords(*reply.status));
    }
    return policyOf(reply);
}

} // namespace

ServerDemand Handshake::connect(const std::optional<int>& version) {
    const auto offered = conversation_.offeredVersions();
    const auto highest = version ? version : highestCommonVersion(offered);
    if (!highest) {
        throw std::runtime_error("the server speaks the versions " + offered +
                                 " of ActiveSync, and deskwatch speaks 2.5 to 16.1");
    }
    account_.version = *highest;
    return askForPolicy();
}

ServerDemand Handshake::refresh() {
    const auto reply = conversation_.command("FolderSync", folderSync(), account_.policyKey);
    const int status = statusIn(reply);
    // up to 12.1 an order to wipe may hide in 403
    if (asksForHandshake(reply.httpStatus, status) ||
        (reply.httpStatus == 403 && account_.version <= protocol::v12_1)) {
        return askForPolicy();
    }
    requireUsable(reply);
    if (status > 100) {
        throw std::runtime_error(statusWords(status));
    }
    return {};
}

ServerDemand Handshake::askForPolicy() {
    bool describesDevice = account_.version >= protocol::v14_1;
    for (int round = 0; round < mostRounds; ++round) {
        const auto reply = conversation_.command("Provision", policyRequest(account_.version, describesDevice), noKey);
        const int status = statusIn(reply);
        const bool wantsDescription = status == descriptionMissing && !describesDevice;
        const auto provision =
            reply.document ? readProvisionReply(*reply.document, account_.version) : ProvisionReply();
        if (!wantsDescription && (provision.wipe != WipeOrder::None || !asksForHandshake(reply.httpStatus, status))) {
            requireUsable(reply);
            return demandOf(provision);
        }
        if (round + 1 == mostRounds) {
            throw std::runtime_error(status != 0 ? statusWords(status) : httpWords(reply.httpStatus));
        }
        describesDevice = describesDevice || wantsDescription;
    }
    throw std::logic_error("unreachable"); // the last round returns or throws
}

Acknowledged Handshake::acknowledge(const std::string& temporaryKey, Compliance compliance) {
    const auto reply =
        conversation_.command("Provision", acknowledgement(account_.version, temporaryKey, compliance), temporaryKey);
    const int status = statusIn(reply);
    if (asksForHandshake(reply.httpStatus, status)) {
        return {false, status != 0 ? statusWords(status) : httpWords(reply.httpStatus), true};
    }
    requireUsable(reply);
    if (status > 1) {
        return {false, statusWords(status), status == 5};
    }
    const auto provision = readProvisionReply(*reply.document, account_.version);
    const bool isTaken = provision.policyStatus.value_or(1) == 1;
    if (isTaken && !provision.policyKey.empty() && provision.policyKey.size() <= longestKey) {
        account_.policyKey = provision.policyKey;
        return {true, "", false};
    }
    if (compliance != Compliance::Applied) {
        return {true, "", false}; // nobody gets a key for less
    }
    return {false,
            isTaken ? "the server gives no key for the accepted policy" : policyStatusWords(*provision.policyStatus),
            provision.policyStatus == 5};
}

void Handshake::describeDevice() {
    if (account_.version >= protocol::v12_0 && account_.version < protocol::v14_1) {
        tell("Settings", deviceDescription(), account_.policyKey);
    }
}

void Handshake::reportWipe(WipeOrder order) {
    tell("Provision", wipeReport(order), noKey);
}

void Handshake::tell(const std::string& command, const WbxmlElement& body, const std::string& policyKey) {
    try {
        conversation_.command(command, body, policyKey);
    } catch (const std::runtime_error&) { // NOLINT(bugprone-empty-catch): what follows does not depend on the answer
    }
}

} // namespace deskwatch
