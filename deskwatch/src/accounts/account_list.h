#ifndef DESKWATCH_ACCOUNT_LIST_H
#define DESKWATCH_ACCOUNT_LIST_H

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

#include "accounts/mail_account.h"

namespace deskwatch {

/// Accounts for a reader: where each is connected, and what became of the server's policy.
std::string connectedTable(const std::vector<MailAccount>& accounts);

/// The same for a program: an array with an object for each account.
nlohmann::ordered_json connectedJson(const std::vector<MailAccount>& accounts);

} // namespace deskwatch

#endif
