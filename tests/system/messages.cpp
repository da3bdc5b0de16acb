#include "messages.h"

#include <message_port.h>

#include "device/application_ids.h"
#include "platform_owners.h"

namespace system_test {

namespace {

/// The accounts' entries, under the name that the message has for the id. Names go in as they are.
std::string entries(const std::vector<PolicyAccount>& accounts, const std::string& idMember) {
    std::string list;
    for (const auto& account : accounts) {
        list += std::string(list.empty() ? "" : ",") + R"({")" + idMember + R"(":)" + std::to_string(account.id) +
                R"(,"accountName":")" + account.name + R"(","displayName":"The account of )" + account.name + "\"" +
                (account.policySet.empty() ? "" : R"(,"policySet":)" + account.policySet) + "}";
    }
    return "[" + list + "]";
}

} // namespace

PolicyAccount alice(const char* policySet) {
    return {1, "alice@contoso.example", policySet};
}

PolicyAccount bob(const char* policySet) {
    return {2, "bob@fabrikam.example", policySet};
}

PolicyAccount carol(const char* policySet) {
    return {3, "carol@mail.example", policySet};
}

std::string policyUpdate(const std::vector<PolicyAccount>& accounts) {
    return R"({"msgId":"email-itpolicy-ind","seqId":1,"param":)" + entries(accounts, "accountId") + "}";
}

std::string initResponse(const std::vector<PolicyAccount>& accounts) {
    return R"({"msgId":"email-init-res","seqId":3,"param":{"accountId":)" + entries(accounts, "id") + "}}";
}

int sendMessage(const std::vector<std::pair<std::string, std::string>>& entries) {
    return message_port_send_message(deskwatch::ids::service, deskwatch::ids::policyPort, bundleOf(entries).get());
}

} // namespace system_test
