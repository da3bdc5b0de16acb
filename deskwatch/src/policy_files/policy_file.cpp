#include "policy_files/policy_file.h"

#include <algorithm>
#include <stdexcept>

#include "device/plain_text.h"
#include "exchange/status_words.h"
#include "policy_files/policy_readers.h"
#include "policy_files/setting_text.h"
#include "provisioning/exchange_trace_format.h"
#include "provisioning/provisioning_import.h"
#include "provisioning/provisioning_tolerance.h"
#include "text/suggestion.h"
#include "text/text_table.h"
#include "text/value_text.h"

namespace deskwatch {
namespace {

constexpr char unknownFormat[] =
    "not a policy in a known format. Known are: a provisioning document (XML) or its WBXML (bytes, hexadecimal, "
    "a dump of xxd or hexdump -C, base64); Get-MobileDeviceMailboxPolicy | Format-List, ConvertTo-Json or Export-Csv; "
    "policies.ini of Z-Push; a policy of grommunio (JSON); a message for the watch; a trace of mail connect. "
    "samples/README.md names one of each";

std::string decoded(const std::string& file, const std::string& bytes) {
    try {
        return decodedText(bytes);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(file + ": " + error.what());
    }
}

PolicyFile fromDocument(ProvisioningDocument document) {
    PolicyFile content;
    content.notices = std::move(document.notices);
    if (document.hasPolicy) {
        content.policies.push_back({"", std::move(document.elements), false});
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
    const auto status = wholeNumber(notice.status);
    if (!status) {
        return "the Status is \"" + printable(notice.status) + "\", which is not a number";
    }
    return "the server answers with " + (isPolicy ? policyStatusMeaning(*status) : statusMeaning(*status));
}

std::string namesOf(const PolicyFile& content) {
    std::vector<std::string> names;
    for (const auto& policy : content.policies) {
        names.push_back("\"" + printable(policy.name) + "\"");
    }
    return joined(names, ", ");
}

std::vector<std::string_view> namesAsWords(const PolicyFile& content) {
    std::vector<std::string_view> names;
    std::transform(content.policies.begin(), content.policies.end(), std::back_inserter(names),
                   [](const FilePolicy& policy) { return std::string_view(policy.name); });
    return names;
}

} // namespace

PolicyFile readPolicyFile(const std::string& file, const std::string& bytes) {
    if (auto captured = readWbxmlCapture(file, bytes)) {
        return std::move(*captured);
    }
    const auto text = decoded(file, bytes);
    if (exchange_trace::isTrace(text)) {
        return readTrace(file, text);
    }
    if (const auto start = text.find_first_not_of(" \t\r\n"); start != std::string::npos && text[start] == '<') {
        return fromDocument(readProvisioningDocument(file, bytes)); // XML says itself how it is written
    }
    for (const auto read : {readWbxmlCapture, readJsonPolicies, readCsvPolicies, readIniPolicies, readListedPolicies}) {
        if (auto content = read(file, text)) {
            return std::move(*content);
        }
    }
    throw std::runtime_error(file + ": " + (trimmedText(text).empty() ? "the file is empty" : unknownFormat));
}

const FilePolicy& chosenPolicy(const std::string& file, const PolicyFile& content, const std::string& name) {
    const auto isChosen = [&name](const FilePolicy& policy) { return name.empty() || policy.name == name; };
    const auto& policies = content.policies;
    const auto count = std::count_if(policies.begin(), policies.end(), isChosen);
    if (policies.empty()) {
        throw std::runtime_error(file + " brings no policy");
    }
    if (count == 0) {
        throw std::runtime_error(file + " has no policy \"" + printable(name) + "\"; it has " + namesOf(content) +
                                 didYouMean(name, namesAsWords(content)));
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

std::vector<std::string> noticeLines(const std::string& file, const PolicyFile& content) {
    std::vector<std::string> lines;
    for (const auto& notice : content.notices) {
        lines.push_back(noticeText(file, notice));
    }
    for (const auto& remark : content.remarks) {
        lines.push_back(std::string(file).append(": ").append(remark));
    }
    return lines;
}

} // namespace deskwatch
