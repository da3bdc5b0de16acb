#ifndef DESKWATCH_MESSAGE_H
#define DESKWATCH_MESSAGE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "messages/message_table.h"
#include "session/value.h"

namespace deskwatch {

/// A column of the stored account and the number that a message puts there.
struct DemandedColumn {
    std::string_view name;
    std::int32_t value = 0;
};

/// An account that a message names.
struct MessageAccount {
    std::int32_t id = 0;
    std::string name;
    bool hasPolicySet = false;
    /// What its policy set says, members of the wrong type left out.
    std::vector<DemandedColumn> columns;
};

/// What a message's text says about itself, as far as it can be read.
struct Message {
    /// Null when the text is not JSON or its kind is unknown.
    const MessageKind* kind = nullptr;
    /// Whether the accounts are where that kind keeps them.
    bool hasAccounts = false;
    /// Those that are objects, in the order in which the service takes them.
    std::vector<MessageAccount> accounts;
};

/// Reads a message as tolerantly as the service: text after the object is ignored, a member of the wrong type counts as
/// missing.
Message readMessage(const std::string& text);

/// Whether a stored account has all the numbers that a message's account puts there.
bool holdsPolicy(const StoredAccount& stored, const MessageAccount& account);

} // namespace deskwatch

#endif
