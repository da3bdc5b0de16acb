#ifndef DESKWATCH_MESSAGE_TABLE_H
#define DESKWATCH_MESSAGE_TABLE_H

#include <array>
#include <cstdint>
#include <string_view>

namespace deskwatch {

/// A kind of message and where it keeps its accounts.
struct MessageKind {
    std::string_view id;
    /// The member of the message whose object holds the accounts; empty when the message itself does.
    std::string_view holder;
    /// The array of the accounts; empty when the kind has none.
    std::string_view accounts;
    /// The member of an account that holds its number.
    std::string_view accountId;
    bool hasDisplayName = false;
};

inline constexpr std::string_view remoteWipeKind = "eas-remote-wipe";

inline constexpr std::array<MessageKind, 4> messageKinds{{
    {"email-itpolicy-ind", "", "param", "accountId", false},
    {"email-account-info", "", "accountId", "id", true},
    {"email-init-res", "param", "accountId", "id", true},
    {remoteWipeKind, "", "", "", false},
}};

} // namespace deskwatch

#endif
