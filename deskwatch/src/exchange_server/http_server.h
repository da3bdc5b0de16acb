#ifndef DESKWATCH_HTTP_SERVER_H
#define DESKWATCH_HTTP_SERVER_H

#include <functional>
#include <memory>
#include <string>

#include "exchange_server/desk_server.h"

namespace deskwatch {

/// The header without which nobody gives orders: no web page can send it to a server of another origin.
inline constexpr char orderHeader[] = "X-Deskwatch-Order";
inline constexpr char ordersPath[] = "/orders";

/// A desk server on the loopback interface. A main loop has to run.
class HttpServer {
public:
    /// With port 0, any that is free; with a file of a certificate and its key, over TLS. `log` gets a line for each
    /// request. Throws std::runtime_error when it cannot listen or the file cannot be read.
    HttpServer(DeskServer& server, unsigned int port, const std::string& certificate,
               std::function<void(const std::string&)> log);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// The address for a client.
    std::string url() const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace deskwatch

#endif
