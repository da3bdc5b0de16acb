#include "panel/http_listening.h"

#include <sys/resource.h>

#include <stdexcept>
#include <string>

namespace deskwatch {
namespace {

constexpr int mostTries = 20;

/// A listener that once cannot accept for lack of descriptors never accepts again.
void raiseDescriptorLimit() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

unsigned listeningPort(SoupServer* server) {
    GSList* uris = soup_server_get_uris(server);
    const auto port = uris != nullptr ? g_uri_get_port(static_cast<GUri*>(uris->data)) : 0;
    g_slist_free_full(uris, [](gpointer uri) { g_uri_unref(static_cast<GUri*>(uri)); });
    return static_cast<unsigned>(port);
}

/// False when the port is in use.
bool listenOn(SoupServer* server, unsigned port, SoupServerListenOptions family) {
    GError* error = nullptr;
    if (soup_server_listen_local(server, port, family, &error) != FALSE) {
        return true;
    }
    const bool isInUse = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_ADDRESS_IN_USE) != FALSE;
    const auto reason = c::takeMessage(error);
    if (!isInUse && family == SOUP_SERVER_LISTEN_IPV4_ONLY) {
        throw std::runtime_error("cannot listen on port " + std::to_string(port) + ": " + reason);
    }
    return !isInUse; // without IPv6 there is nobody to be heard there
}

} // namespace

c::ObjectOwner<SoupServer> listenOnLoopback(unsigned& port) {
    raiseDescriptorLimit();
    for (int tries = 0; tries < mostTries; ++tries) {
        c::ObjectOwner<SoupServer> server(soup_server_new(nullptr, nullptr));
        if (listenOn(server.get(), port, SOUP_SERVER_LISTEN_IPV4_ONLY)) {
            const auto found = listeningPort(server.get());
            if (listenOn(server.get(), found, SOUP_SERVER_LISTEN_IPV6_ONLY)) {
                port = found;
                return server;
            }
        }
        if (port != 0) {
            throw std::runtime_error("port " + std::to_string(port) + " is in use; leave out --port for any free one");
        }
    }
    throw std::runtime_error("cannot find a free port");
}

} // namespace deskwatch
