#include "exchange_server/http_server.h"

#include <libsoup/soup.h>

#include <algorithm>
#include <stdexcept>

#include "c_owners.h"
#include "device/plain_text.h"

namespace deskwatch {
namespace {

constexpr goffset largestRequest = 1'000'000;

void addHeader(const char* name, const char* value, gpointer headers) {
    const c::MemoryOwner<char> lower(g_ascii_strdown(name, -1));
    (*static_cast<std::map<std::string, std::string>*>(headers))[lower.get()] = value;
}

ServerRequest requestOf(SoupServerMessage* message) {
    ServerRequest request;
    request.method = soup_server_message_get_method(message);
    const char* const query = g_uri_get_query(soup_server_message_get_uri(message));
    request.query = query != nullptr ? query : "";
    soup_message_headers_foreach(soup_server_message_get_request_headers(message), addHeader, &request.headers);
    const auto* const body = soup_server_message_get_request_body(message);
    if (body->data != nullptr) {
        request.body.assign(body->data, static_cast<std::size_t>(body->length));
    }
    return request;
}

void closeConnection(SoupServerMessage* message) {
    auto* const socket = soup_server_message_get_socket(message);
    if (socket != nullptr) {
        g_socket_close(socket, nullptr);
    }
}

/// Called as the body grows.
void onChunk(SoupServerMessage* message, GBytes* /*chunk*/, gpointer /*unused*/) {
    if (soup_server_message_get_request_body(message)->length > largestRequest) {
        closeConnection(message);
    }
}

void onStarted(SoupServer* /*server*/, SoupServerMessage* message, gpointer /*unused*/) {
    g_signal_connect(message, "got-chunk", G_CALLBACK(onChunk), nullptr);
}

/// Sends half of an answer that promises all of it.
void sendHalf(SoupServerMessage* message, const ServerAnswer& answer) {
    const std::string text = "HTTP/1.1 " + std::to_string(answer.status) +
                             " OK\r\nContent-Type: application/vnd.ms-sync.wbxml\r\nContent-Length: " +
                             std::to_string(answer.body.size() + 1) + "\r\n\r\n" +
                             answer.body.substr(0, answer.body.size() / 2);
    const c::ObjectOwner<GIOStream> connection(soup_server_message_steal_connection(message));
    g_output_stream_write_all(g_io_stream_get_output_stream(connection.get()), text.data(), text.size(), nullptr,
                              nullptr, nullptr);
    g_io_stream_close(connection.get(), nullptr, nullptr);
}

gboolean onDelayOver(gpointer message) {
    soup_server_message_unpause(SOUP_SERVER_MESSAGE(message));
    return G_SOURCE_REMOVE;
}

void send(SoupServerMessage* message, const ServerAnswer& answer) {
    if (answer.isCut) {
        sendHalf(message, answer);
        return;
    }
    soup_server_message_set_status(message, static_cast<guint>(answer.status), nullptr);
    auto* const headers = soup_server_message_get_response_headers(message);
    for (const auto& [name, value] : answer.headers) {
        soup_message_headers_replace(headers, name.c_str(), value.c_str());
    }
    soup_message_body_append(soup_server_message_get_response_body(message), SOUP_MEMORY_COPY, answer.body.data(),
                             answer.body.size());
    if (answer.delay > 0) {
        soup_server_message_pause(message);
        g_timeout_add_seconds_full(G_PRIORITY_DEFAULT, static_cast<guint>(answer.delay), onDelayOver,
                                   g_object_ref(message), g_object_unref);
    }
}

/// A web page can send no header of its own to another origin, and cannot pretend to be on this machine either.
bool mayOrder(const ServerRequest& request) {
    const auto host = request.header("host");
    return request.headers.count("x-deskwatch-order") > 0 &&
           (startsWith(host, "127.0.0.1:") || startsWith(host, "localhost:"));
}

std::string parameter(GHashTable* query, const char* name) {
    const auto* const value = query != nullptr ? static_cast<const char*>(g_hash_table_lookup(query, name)) : nullptr;
    return value != nullptr ? value : "";
}

} // namespace

struct HttpServer::Parts {
    DeskServer& server;
    std::function<void(const std::string&)> log;
    c::ObjectOwner<SoupServer> http{soup_server_new(nullptr, nullptr)};

    static void onRequest(SoupServer* /*http*/, SoupServerMessage* message, const char* /*path*/, GHashTable* /*query*/,
                          gpointer self) {
        auto& parts = *static_cast<Parts*>(self);
        const auto answer = parts.server.answer(requestOf(message));
        parts.log(answer.remark);
        send(message, answer);
    }

    static void onOrder(SoupServer* /*http*/, SoupServerMessage* message, const char* /*path*/, GHashTable* query,
                        gpointer self) {
        auto& parts = *static_cast<Parts*>(self);
        ServerAnswer answer;
        answer.headers.emplace_back("Content-Type", "text/plain; charset=utf-8");
        const auto request = requestOf(message);
        if (!mayOrder(request)) {
            answer.status = 403;
        } else if (request.method == "GET") {
            answer.body = parts.server.report();
        } else {
            parts.take({parameter(query, "user"), parameter(query, "order"), parameter(query, "value")}, answer);
        }
        send(message, answer);
    }

    void take(const ServerOrder& order, ServerAnswer& answer) {
        try {
            answer.body = server.order(order);
            log(order.user + ": order " + order.text());
        } catch (const std::runtime_error& error) {
            answer.status = 400;
            answer.body = error.what();
        }
    }
};

HttpServer::HttpServer(DeskServer& server, unsigned int port, const std::string& certificate,
                       std::function<void(const std::string&)> log)
    : parts_(new Parts{server, std::move(log)}) {
    auto* const http = parts_->http.get();
    g_signal_connect(http, "request-started", G_CALLBACK(onStarted), nullptr);
    soup_server_add_handler(http, "/Microsoft-Server-ActiveSync", Parts::onRequest, parts_.get(), nullptr);
    soup_server_add_handler(http, ordersPath, Parts::onOrder, parts_.get(), nullptr);
    int options = SOUP_SERVER_LISTEN_IPV4_ONLY;
    GError* error = nullptr;
    if (!certificate.empty()) {
        const c::ObjectOwner<GTlsCertificate> tls(g_tls_certificate_new_from_file(certificate.c_str(), &error));
        if (tls == nullptr) {
            throw std::runtime_error("cannot read a certificate and its key from " + certificate + ": " +
                                     c::takeMessage(error));
        }
        soup_server_set_tls_certificate(http, tls.get());
        options |= SOUP_SERVER_LISTEN_HTTPS;
    }
    if (soup_server_listen_local(http, port, static_cast<SoupServerListenOptions>(options), &error) == FALSE) {
        throw std::runtime_error("cannot listen on port " + std::to_string(port) + ": " + c::takeMessage(error));
    }
}

HttpServer::~HttpServer() {
    soup_server_disconnect(parts_->http.get());
}

std::string HttpServer::url() const {
    GSList* const uris = soup_server_get_uris(parts_->http.get());
    const int port = uris != nullptr ? g_uri_get_port(static_cast<GUri*>(uris->data)) : 0;
    g_slist_free_full(uris, reinterpret_cast<GDestroyNotify>(g_uri_unref));
    return (soup_server_is_https(parts_->http.get()) != FALSE ? "https" : "http") + std::string("://127.0.0.1:") +
           std::to_string(port);
}

} // namespace deskwatch
