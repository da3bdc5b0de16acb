#ifndef DESKWATCH_MESSAGE_LINT_H
#define DESKWATCH_MESSAGE_LINT_H

#include <string>
#include <vector>

namespace deskwatch {

/// Something about a message that its sender probably did not mean. The service takes what it can all the same.
struct MessageRemark {
    std::size_t line = 1;
    std::string text;
};

/// Checks a message, which is valid JSON, against what a sender should send: known members of the right types and in
/// range, and all of them. In the order of the lines.
std::vector<MessageRemark> remarksOn(const std::string& text);

/// `FILE:LINE: TEXT` for each remark.
std::vector<std::string> remarkLines(const std::string& file, const std::string& text);

} // namespace deskwatch

#endif
