// What a server may answer to the mail application: HTTP and WBXML. The first byte chooses whether the bytes are
// replies that came whole, or the raw bytes of a connection.

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "byte_reader.h"
#include "exchange/handshake.h"
#include "exchange/http_client.h"
#include "exchange/status_words.h"
#include "fuzz_target.h"
#include "provisioning/provisioning_import.h"
#include "provisioning/provisioning_tolerance.h"

namespace {

using fuzz::ByteReader;
using fuzz::require;
using namespace deskwatch;

constexpr std::array statuses{200, 200, 200, 449, 403, 401, 451, 503, 500};

/// Answers with what the input has, and after its end with nothing that helps.
class FuzzedServer : public Transport {
public:
    explicit FuzzedServer(ByteReader& bytes) : bytes_(bytes) {}

    HttpReply send(const HttpRequest& /*request*/) override {
        require(++requests_ < 40, "a server that is never content is given up");
        HttpReply reply;
        reply.status = bytes_.oneOf(statuses);
        for (const auto* const name : {"ms-asprotocolversions", "retry-after", "x-ms-location"}) {
            if (bytes_.flag()) {
                reply.headers[name] = bytes_.text();
            }
        }
        reply.cookies[bytes_.text()] = bytes_.text();
        reply.body = bytes_.flag() ? std::string("\x03\x01\x6A\x00\x00\x0E", 6) + bytes_.text() : bytes_.text();
        return reply;
    }

    void pause(int seconds) override { require(seconds > 0 && seconds <= 30, "no server makes anybody wait long"); }

private:
    ByteReader& bytes_;
    int requests_ = 0;
};

ServerAccount account(const std::string& url) {
    ServerAccount account;
    account.url = url;
    account.user = "bob";
    account.deviceId = "desk0001";
    return account;
}

void take(const ServerDemand& demand) {
    require((demand.kind == ServerDemand::Kind::Policy) == !demand.temporaryKey.empty(), "a policy comes with a key");
    importProvisioning("server", tolerated(demand.elements).elements, {1, "bob", false}); // takes every policy
}

void converse(Transport& transport, ServerAccount& bob, const std::optional<int>& version) {
    try {
        Handshake handshake(transport, bob, "secret");
        const auto demand = handshake.connect(version);
        take(demand);
        if (demand.kind == ServerDemand::Kind::Policy) {
            handshake.acknowledge(demand.temporaryKey, Compliance::Applied);
        }
        take(handshake.refresh());
        handshake.describeDevice();
        handshake.reportWipe(WipeOrder::Device);
    } catch (const std::runtime_error& error) {
        require(error.what()[0] != '\0', "a refusal has words");
    }
    require(bob.policyKey.size() <= 64 && bob.url.rfind("https://", 0) == 0, "the account stays usable");
}

void replies(ByteReader& bytes) {
    static constexpr std::array versions{25, 120, 121, 140, 141, 160, 161};
    FuzzedServer server(bytes);
    auto bob = account("https://mail.example.com/");
    converse(server, bob, bytes.oneOf(versions));
}

/// A listener that answers each connection with the same bytes and closes it.
class RawServer {
public:
    RawServer() : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        auto* const general = reinterpret_cast<sockaddr*>(&address);
        require(bind(socket_, general, size) == 0 && listen(socket_, 16) == 0 &&
                    getsockname(socket_, general, &size) == 0,
                "the listener is there");
        url_ = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/eas";
        std::thread([this] { run(); }).detach(); // for as long as the process lives
    }

    const std::string& url() const { return url_; }

    void setAnswer(const std::string& answer) {
        const std::lock_guard<std::mutex> lock(mutex_);
        answer_ = answer;
    }

private:
    void run() {
        for (;;) {
            const int connection = accept(socket_, nullptr, nullptr);
            std::array<char, 4096> request{};
            if (connection < 0 || recv(connection, request.data(), request.size(), 0) < 0) {
                continue;
            }
            std::string answer;
            {
                const std::lock_guard<std::mutex> lock(mutex_);
                answer = answer_;
            }
            send(connection, answer.data(), answer.size(), MSG_NOSIGNAL);
            shutdown(connection, SHUT_WR);
            while (recv(connection, request.data(), request.size(), 0) > 0) { // what is unread would reset the answer
            }
            close(connection);
        }
    }

    int socket_;
    std::string url_;
    std::mutex mutex_;
    std::string answer_;
};

void rawBytes(ByteReader& bytes) {
    static auto* const server = new RawServer; // its thread never ends
    server->setAnswer(bytes.rest());
    HttpClient client("", {2, 10'000});
    try {
        const auto reply = client.send({"POST", server->url(), {{"Content-Type", "application/vnd.ms-sync"}}, "body"});
        require(reply.body.size() <= 10'000, "no reply is larger than it may be");
        httpWords(reply.status);
    } catch (const std::runtime_error& error) {
        require(error.what()[0] != '\0', "a failure has words");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ByteReader bytes(data, size);
    if (bytes.below(8) == 0) {
        rawBytes(bytes);
    } else {
        replies(bytes);
    }
    return 0;
}
