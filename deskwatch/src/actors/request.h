#ifndef DESKWATCH_REQUEST_H
#define DESKWATCH_REQUEST_H

#include <array>
#include <string>
#include <string_view>

namespace deskwatch {

/// A request of the mail application: its name and its argument.
struct Request {
    std::string name;
    std::string argument;
};

namespace requests {

inline constexpr char updatePolicy[] = "req_update_policy";
inline constexpr char deleteAccount[] = "req_delete_account";
inline constexpr char checkPassword[] = "chk_password_policy";
inline constexpr char checkEncryption[] = "chk_device_encryption_policy";

inline constexpr std::array<std::string_view, 4> all{updatePolicy, deleteAccount, checkPassword, checkEncryption};

/// A message with policy sets.
inline Request policyUpdate(std::string message) {
    return {updatePolicy, std::move(message)};
}

inline Request accountDeletion(int account) {
    return {deleteAccount, std::to_string(account)};
}

/// The order of a server to wipe the watch.
inline Request remoteWipe() {
    return {updatePolicy, R"({"msgId":"eas-remote-wipe","seqId":1,"param":{}})"};
}

} // namespace requests
} // namespace deskwatch

#endif
