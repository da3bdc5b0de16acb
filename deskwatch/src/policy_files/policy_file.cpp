#include "policy_files/policy_file.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include "exchange/status_words.h"
#include "provisioning/exchange_trace_format.h"
#include "provisioning/provisioning_import.h"
#include "provisioning/provisioning_tolerance.h"
#include "text/text_table.h"
#include "text/value_text.h"

namespace deskwatch {
namespace {

PolicyFile fromDocument(ProvisioningDocument document) {
    PolicyFile content;
    content.notices = std::move(document.notices);
    if (document.hasPolicy) {
        content.policies.push_back({"", std::move(document.elements)});
    }
    return content;
}

/// The last policy of a trace, taken as the client took it.
PolicyFile readTrace(const std::string& file, const std::string& trace) {
    const auto xml = exchange_trace::lastPolicy(trace);
    if (xml.empty()) {
        throw std::runtime_error(file + ": no server sent a policy in this trace");
    }
    auto document = readProvisioningDocument(file, xml);
    auto taken = tolerated(document.elements);
    document.elements = std::move(taken.elements);
    auto content = fromDocument(std::move(document));
    content.remarks = std::move(taken.remarks);
    return content;
}

std::string statusText(const ServerNotice& notice) {
    const bool isPolicy = notice.kind == ServerNotice::Kind::PolicyStatus;
    int status = 0;
    const auto* const end = notice.status.data() + notice.status.size();
    const auto [stop, error] = std::from_chars(notice.status.data(), end, status);
    if (error != std::errc() || stop != end) {
        return "the Status is \"" + printable(notice.status) + "\", which is not a number";
    }
    return "the server answers with " + (isPolicy ? policyStatusMeaning(status) : statusMeaning(status));
}

std::string namesOf(const PolicyFile& content) {
    std::vector<std::string> names;
    for (const auto& policy : content.policies) {
        names.push_back("\"" + printable(policy.name) + "\"");
    }
    return joined(names, ", ");
}

} // namespace

PolicyFile readPolicyFile(const std::string& file, const std::string& bytes) {
    return exchange_trace::isTrace(bytes) ? readTrace(file, bytes)
                                          : fromDocument(readProvisioningDocument(file, bytes));
}

const FilePolicy& chosenPolicy(const std::string& file, const PolicyFile& content, const std::string& name) {
    const auto isChosen = [&name](const FilePolicy& policy) { return name.empty() || policy.name == name; };
    const auto& policies = content.policies;
    const auto count = std::count_if(policies.begin(), policies.end(), isChosen);
    if (policies.empty()) {
        throw std::runtime_error(file + " brings no policy");
    }
    if (count == 0) {
        throw std::runtime_error(file + " has no policy \"" + printable(name) + "\"; it has " + namesOf(content));
    }
    if (count > 1) {
        throw std::runtime_error(file + " has " + std::to_string(policies.size()) +
                                 " policies; choose one with --policy: " + namesOf(content));
    }
    return *std::find_if(policies.begin(), policies.end(), isChosen);
}

std::string noticeText(const std::string& file, const ServerNotice& notice) {
    const auto place = placeIn(file, notice.line) + ": ";
    switch (notice.kind) {
    case ServerNotice::Kind::Wipe:
        return place + "the server orders to wipe the watch (RemoteWipe), whatever policy it sends";
    case ServerNotice::Kind::AccountWipe:
        return place + "the server orders to remove the account (AccountOnlyRemoteWipe), whatever policy it sends";
    case ServerNotice::Kind::Status:
    case ServerNotice::Kind::PolicyStatus:
        break;
    }
    return place + statusText(notice);
}

} // namespace deskwatch
