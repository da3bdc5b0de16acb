#include "exchange/http_client.h"

#include <libsoup/soup.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "c_owners.h"

namespace deskwatch {
namespace {

using Message = c::ObjectOwner<SoupMessage>;
using Stream = c::ObjectOwner<GInputStream>;

/// Cancels what takes longer than it may. The library's own time limit is for one read, and so a server that sends a
/// byte now and then would never meet it.
class Deadline {
public:
    explicit Deadline(int seconds)
        : watch_([this, seconds] {
              std::unique_lock<std::mutex> lock(mutex_);
              if (!over_.wait_for(lock, std::chrono::seconds(seconds), [this] { return isOver_; })) {
                  g_cancellable_cancel(cancellable_.get());
              }
          }) {}

    ~Deadline() {
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            isOver_ = true;
        }
        over_.notify_one();
        watch_.join();
    }
    Deadline(const Deadline&) = delete;
    Deadline& operator=(const Deadline&) = delete;

    GCancellable* get() const { return cancellable_.get(); }

private:
    c::ObjectOwner<GCancellable> cancellable_{g_cancellable_new()};
    std::mutex mutex_;
    std::condition_variable over_;
    bool isOver_ = false;
    std::thread watch_;
};

/// Why a certificate is not accepted, for a reader.
std::string certificateFault(GTlsCertificateFlags errors) {
    const std::pair<GTlsCertificateFlags, const char*> faults[] = {
        {G_TLS_CERTIFICATE_BAD_IDENTITY, "it is for another name"},
        {G_TLS_CERTIFICATE_EXPIRED, "it has expired"},
        {G_TLS_CERTIFICATE_NOT_ACTIVATED, "it is not valid yet"},
        {G_TLS_CERTIFICATE_INSECURE, "its signature is not safe"},
        {G_TLS_CERTIFICATE_UNKNOWN_CA, "nobody that is trusted signed it; --cacert FILE names a private authority"},
    };
    for (const auto& [flag, words] : faults) {
        if ((errors & flag) != 0) {
            return words;
        }
    }
    return "it is not valid";
}

/// What is known of a connection beside the library's words for its failure.
struct TlsNotes {
    /// Why the server's certificate is refused; empty when it is not.
    std::string certificateFault;
    /// Whether the server has not answered the start of TLS yet.
    bool isStarting = false;
};

/// The handler of a certificate that is not valid notes why and refuses it.
gboolean onCertificate(SoupMessage* /*message*/, GTlsCertificate* /*certificate*/, GTlsCertificateFlags errors,
                       gpointer notes) {
    static_cast<TlsNotes*>(notes)->certificateFault = certificateFault(errors);
    return FALSE;
}

void onNetworkEvent(SoupMessage* /*message*/, GSocketClientEvent event, GIOStream* /*connection*/, gpointer notes) {
    static_cast<TlsNotes*>(notes)->isStarting = event == G_SOCKET_CLIENT_TLS_HANDSHAKING;
}

Message makeMessage(const HttpRequest& request, TlsNotes& notes) {
    Message message(soup_message_new(request.method.c_str(), request.url.c_str()));
    if (message == nullptr) {
        throw std::runtime_error("not a URL: " + request.url);
    }
    // A redirected POST would go out without its body and its credentials, but with its policy key.
    soup_message_add_flags(message.get(), SOUP_MESSAGE_NO_REDIRECT);
    auto* const headers = soup_message_get_request_headers(message.get());
    for (const auto& [name, value] : request.headers) {
        soup_message_headers_replace(headers, name.c_str(), value.c_str());
    }
    if (!request.body.empty()) {
        const c::BytesOwner body(g_bytes_new(request.body.data(), request.body.size()));
        soup_message_set_request_body_from_bytes(message.get(), nullptr, body.get()); // the type is a header above
    }
    g_signal_connect(message.get(), "accept-certificate", G_CALLBACK(onCertificate), &notes);
    g_signal_connect(message.get(), "network-event", G_CALLBACK(onNetworkEvent), &notes);
    return message;
}

void addHeader(const char* name, const char* value, gpointer reply) {
    auto& taken = *static_cast<HttpReply*>(reply);
    const c::MemoryOwner<char> lower(g_ascii_strdown(name, -1));
    taken.headers[lower.get()] = value;
    if (std::string(lower.get()) == "set-cookie") {
        const std::string cookie = value;
        const auto equals = cookie.find('=');
        if (equals != std::string::npos && equals > 0) {
            taken.cookies[cookie.substr(0, equals)] = cookie.substr(equals + 1, cookie.find(';') - equals - 1);
        }
    }
}

[[noreturn]] void fail(const HttpRequest& request, const std::string& reason) {
    throw std::runtime_error("cannot get an answer from " + request.url.substr(0, request.url.find('?')) + ": " +
                             reason);
}

/// What went wrong, with the reason that is known better than the library's own words.
std::string reasonOf(GError* error, const TlsNotes& notes, int seconds) {
    const bool isTooLate = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED) != FALSE;
    std::string message = c::takeMessage(error);
    message.erase(message.find_last_not_of('.') + 1);
    if (!notes.certificateFault.empty()) {
        return "its certificate is refused: " + notes.certificateFault;
    }
    return (isTooLate ? "the answer is not complete after " + std::to_string(seconds) + " seconds" : message) +
           (notes.isStarting ? "; does the server speak TLS at this port?" : "");
}

} // namespace

struct HttpClient::Session {
    c::ObjectOwner<SoupSession> session{soup_session_new()};
};

HttpClient::HttpClient(const std::string& authorities, HttpLimits limits)
    : session_(std::make_unique<Session>()), limits_(limits) {
    soup_session_remove_feature_by_type(session_->session.get(), SOUP_TYPE_CONTENT_DECODER);
    if (authorities.empty()) {
        return;
    }
    GError* error = nullptr;
    const c::MemoryOwner<char> path(g_canonicalize_filename(authorities.c_str(), nullptr));
    const c::ObjectOwner<GTlsDatabase> database(g_tls_file_database_new(path.get(), &error));
    if (database == nullptr) {
        throw std::runtime_error("cannot read certificates from " + authorities + ": " + c::takeMessage(error));
    }
    soup_session_set_tls_database(session_->session.get(), database.get());
}

HttpClient::~HttpClient() = default;

HttpReply HttpClient::send(const HttpRequest& request) {
    TlsNotes tls;
    const Message message = makeMessage(request, tls);
    const Deadline deadline(limits_.seconds);
    GError* error = nullptr;
    const Stream stream(soup_session_send(session_->session.get(), message.get(), deadline.get(), &error));
    if (stream == nullptr) {
        fail(request, reasonOf(error, tls, limits_.seconds));
    }
    HttpReply reply;
    reply.status = static_cast<int>(soup_message_get_status(message.get()));
    soup_message_headers_foreach(soup_message_get_response_headers(message.get()), addHeader, &reply);
    std::array<char, 16384> buffer{};
    for (;;) {
        const gssize count = g_input_stream_read(stream.get(), buffer.data(), buffer.size(), deadline.get(), &error);
        if (count < 0) {
            fail(request, reasonOf(error, tls, limits_.seconds));
        }
        if (count == 0) {
            return reply;
        }
        reply.body.append(buffer.data(), static_cast<std::size_t>(count));
        if (reply.body.size() > limits_.bytes) {
            fail(request, "the answer has more than " + std::to_string(limits_.bytes) + " bytes");
        }
    }
}

void HttpClient::pause(int seconds) {
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
}

} // namespace deskwatch
