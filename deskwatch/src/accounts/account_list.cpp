#include "accounts/account_list.h"

#include "exchange/protocol_version.h"
#include "text/text_table.h"
#include "text/value_output.h"

namespace deskwatch {
namespace {

std::string policyWords(const MailAccount& account) {
    if (account.pending) {
        return "not acknowledged yet";
    }
    if (account.message.empty()) {
        return "no policy set";
    }
    return account.acknowledged ? "acknowledged with " + std::to_string(*account.acknowledged) : "not asked for yet";
}

} // namespace

std::string connectedTable(const std::vector<MailAccount>& accounts) {
    if (accounts.empty()) {
        return "no account is connected to a server\n";
    }
    std::vector<std::vector<std::string>> rows;
    rows.reserve(accounts.size());
    for (const auto& account : accounts) {
        rows.push_back({std::to_string(account.id), account.name, account.server.user, account.server.url,
                        "version " + versionText(account.server.version), policyWords(account)});
    }
    return textTable(rows);
}

nlohmann::ordered_json connectedJson(const std::vector<MailAccount>& accounts) {
    auto list = nlohmann::ordered_json::array();
    for (const auto& account : accounts) {
        list.push_back({{"account", account.id},
                        {"name", account.name},
                        {"user", account.server.user},
                        {"server", account.server.url},
                        {"version", versionText(account.server.version)},
                        {"policy", policyWords(account)},
                        {"acknowledged", numberJson(account.acknowledged)}});
    }
    return list;
}

} // namespace deskwatch
