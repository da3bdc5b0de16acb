#ifndef DESKWATCH_HTTP_CLIENT_H
#define DESKWATCH_HTTP_CLIENT_H

#include <memory>
#include <string>

#include "exchange/transport.h"

namespace deskwatch {

/// What bounds an exchange with a server.
struct HttpLimits {
    /// From the request to the last byte of the reply.
    int seconds = 60;
    std::size_t bytes = 1'000'000;
};

/// The way to a server over the network. A server's certificate must be valid and for its name.
class HttpClient : public Transport {
public:
    /// `authorities` is a file of certificates that are trusted instead of the machine's own; empty for those. Throws
    /// std::runtime_error when it cannot be read.
    explicit HttpClient(const std::string& authorities, HttpLimits limits = {});
    ~HttpClient() override;
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;

    HttpReply send(const HttpRequest& request) override;
    void pause(int seconds) override;

private:
    struct Session;
    std::unique_ptr<Session> session_;
    HttpLimits limits_;
};

} // namespace deskwatch

#endif
