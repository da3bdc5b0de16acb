#ifndef DESKWATCH_TRANSPORT_H
#define DESKWATCH_TRANSPORT_H

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace deskwatch {

struct HttpRequest {
    std::string method;
    std::string url;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
};

struct HttpReply {
    int status = 0;
    /// By their names in lower case; of a header that comes twice, the last one.
    std::map<std::string, std::string> headers;
    /// What the server wants to get back, by name.
    std::map<std::string, std::string> cookies;
    std::string body;

    /// A header by its name in lower case; empty when there is none.
    std::string header(const std::string& name) const {
        const auto found = headers.find(name);
        return found != headers.end() ? found->second : "";
    }
};

/// The way to a server.
class Transport {
public:
    Transport() = default;
    virtual ~Transport() = default;
    Transport(const Transport&) = delete;
    Transport& operator=(const Transport&) = delete;

    /// Sends a request and returns the whole reply, whatever its status. Follows nothing and repeats nothing. Throws
    /// std::runtime_error when there is no reply.
    virtual HttpReply send(const HttpRequest& request) = 0;

    /// Lets time pass, as a server asked for.
    virtual void pause(int seconds) = 0;
};

} // namespace deskwatch

#endif
