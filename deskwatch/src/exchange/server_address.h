#ifndef DESKWATCH_SERVER_ADDRESS_H
#define DESKWATCH_SERVER_ADDRESS_H

#include <cstdint>
#include <optional>
#include <string>

namespace deskwatch {

/// The address where a server answers ActiveSync, made of what a person or a server gives: the path may be missing.
/// Throws std::runtime_error when it is not a URL that can be used, or when passwords would travel readable:
/// plain HTTP to another machine, unless `allowsPlain`.
std::string serverAddress(const std::string& given, bool allowsPlain);

/// How a request says what it is about. A server takes the same device in the other form for another device.
enum class QueryForm { Plain, Base64 };

/// What the query of a request says.
struct CommandQuery {
    std::string command;
    std::string user;
    std::string deviceId;
    int version = 0;
    /// Of the form Base64 alone: the other one has it in a header.
    std::string policyKey;
};

inline constexpr char deviceType[] = "DeskWatch";

/// The query, without its question mark. Throws std::runtime_error for a command that the form Base64 cannot name.
std::string queryText(const CommandQuery& query, QueryForm form);

/// Reads a query of either form; none when it is neither.
std::optional<CommandQuery> readQuery(const std::string& text);

} // namespace deskwatch

#endif
