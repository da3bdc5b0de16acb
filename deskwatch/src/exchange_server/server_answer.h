#ifndef DESKWATCH_SERVER_ANSWER_H
#define DESKWATCH_SERVER_ANSWER_H

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace deskwatch {

/// A request as it arrived.
struct ServerRequest {
    std::string method;
    /// What follows the question mark, still encoded.
    std::string query;
    /// By their names in lower case.
    std::map<std::string, std::string> headers;
    std::string body;

    std::string header(const std::string& name) const {
        const auto found = headers.find(name);
        return found != headers.end() ? found->second : "";
    }
};

/// What the server sends.
struct ServerAnswer {
    int status = 200;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
    /// Seconds before it goes out.
    int delay = 0;
    /// Whether the connection ends in the middle of the body.
    bool isCut = false;
    /// Whether it answers a Provision command.
    bool isAboutPolicy = false;
    /// A line for whoever runs the server.
    std::string remark;
};

} // namespace deskwatch

#endif
