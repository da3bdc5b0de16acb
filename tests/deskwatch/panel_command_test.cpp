#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <memory>
#include <sstream>

#include "commands_fixture.h"
#include "device/file_descriptor.h"
#include "running_program.h"

namespace deskwatch {
namespace {

/// The panel of a watch, and what a client says to it byte by byte.
class PanelCommand : public Commands {
protected:
    /// As its user ends it: a panel that is killed leaves its folder.
    void TearDown() override {
        if (panel_ != nullptr) {
            panel_->signal(SIGTERM);
            panel_->waitForEnd();
        }
    }

    void start(const std::vector<std::string>& options = {}) {
        std::vector<std::string> arguments{"panel", device().layout().folder().string(), "--no-browser"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        panel_ = std::make_unique<RunningProgram>(arguments);
        const auto address = panel_->nextLine();
        const auto slash = address.find('/', 7);
        host_ = address.substr(7, slash - 7);
        entrance_ = address.substr(slash);
        const auto answer = say("GET " + entrance_ + " HTTP/1.1\r\nHost: " + host_ + "\r\n\r\n");
        folder_ = header(answer, "Location");
        const auto cookie = header(answer, "Set-Cookie");
        cookie_ = cookie.substr(0, cookie.find(';'));
    }

    /// Says something and reads all that is answered until the connection is closed.
    std::string say(const std::string& text) const {
        const FileDescriptor connection = connect();
        EXPECT_EQ(::send(connection.get(), text.data(), text.size(), MSG_NOSIGNAL), static_cast<ssize_t>(text.size()));
        std::string answer;
        char buffer[4096];
        for (ssize_t got = 0; (got = read(connection.get(), buffer, sizeof buffer)) > 0;) {
            answer.append(buffer, static_cast<std::size_t>(got));
        }
        return answer;
    }

    FileDescriptor connect() const {
        FileDescriptor connection(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(port())));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(::connect(connection.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        return connection;
    }

    std::string head(const std::string& method, const std::string& name, const std::string& more = "") const {
        return method + " " + folder_ + name + " HTTP/1.1\r\nHost: " + host_ + "\r\nCookie: " + cookie_ + "\r\n" +
               more + "\r\n";
    }

    std::string get(const std::string& name, const std::string& more = "") const {
        return say(head("GET", name, more));
    }

    std::string act(const std::string& body) const {
        return say(head("POST", "act",
                        "Content-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) + "\r\n") +
                   body);
    }

    static int statusOf(const std::string& answer) { return answer.size() > 12 ? std::stoi(answer.substr(9, 3)) : 0; }

    static std::string bodyOf(const std::string& answer) { return answer.substr(answer.find("\r\n\r\n") + 4); }

    static std::string header(const std::string& answer, const std::string& name) {
        const auto begin = answer.find("\r\n" + name + ": ");
        return begin == std::string::npos
                   ? ""
                   : answer.substr(begin + name.size() + 4, answer.find("\r\n", begin + 2) - begin - name.size() - 4);
    }

    std::string port() const { return host_.substr(host_.find(':') + 1); }

    std::unique_ptr<RunningProgram> panel_;
    std::string host_;
    std::string entrance_;
    std::string folder_;
    std::string cookie_;
};

TEST_F(PanelCommand, EveryAnswerCarriesTheHeadersThatKeepOthersOut) {
    start();
    const std::vector<std::pair<int, std::string>> answers{
        {303, say("GET " + entrance_ + " HTTP/1.1\r\nHost: " + host_ + "\r\n\r\n")},
        {200, get("")},
        {200, get("app.js")},
        {404, get("nothing")},
        {403, say("GET / HTTP/1.1\r\nHost: " + host_ + "\r\n\r\n")},
        {403, say("GET / HTTP/1.1\r\nHost: evil.example\r\n\r\n")},
        {405, get("act")},
        {400, act("{")},
        {413, say(head("POST", "act",
                       "Content-Type: application/json\r\nExpect: 100-continue\r\nContent-Length: 9000000\r\n"))},
    };
    for (const auto& [status, answer] : answers) {
        EXPECT_EQ(statusOf(answer), status) << answer;
        EXPECT_EQ(header(answer, "Content-Security-Policy").find("default-src 'none'; script-src 'self'; "), 0U)
            << answer;
        EXPECT_NE(answer.find("frame-ancestors 'none'; require-trusted-types-for 'script'"), std::string::npos);
        EXPECT_EQ(header(answer, "X-Content-Type-Options"), "nosniff");
        EXPECT_EQ(header(answer, "Referrer-Policy"), "no-referrer");
        EXPECT_EQ(header(answer, "Cross-Origin-Resource-Policy"), "same-origin");
        EXPECT_EQ(header(answer, "Cross-Origin-Opener-Policy"), "same-origin");
        EXPECT_EQ(header(answer, "Connection"), "close");
        EXPECT_EQ(answer.find("Access-Control"), std::string::npos);
    }
}

TEST_F(PanelCommand, PathsWithoutACookieSayNothing) {
    start();
    for (const char* name :
         {"", "app.js", "icon.svg", "events", "act", "story.jsonl", "samples/hardened.json", "nothing"}) {
        const auto answer = say("GET " + folder_ + name + " HTTP/1.1\r\nHost: " + host_ + "\r\n\r\n");
        EXPECT_EQ(statusOf(answer), 403) << name;
        EXPECT_EQ(bodyOf(answer), "") << name;
    }
}

TEST_F(PanelCommand, HeadsThatTheLibraryLetsThroughAreRefused) {
    start();
    const std::string cookie = "Cookie: " + cookie_ + "\r\n\r\n";
    const std::string own = "Host: " + host_ + "\r\n";
    const std::vector<std::pair<int, std::string>> answers{
        {403, say("GET " + folder_ + " HTTP/1.1\r\n" + own + own + cookie)},
        {403, say("GET " + folder_ + " HTTP/1.0\r\n" + cookie)},
        {403, say("GET http://evil.example" + folder_ + " HTTP/1.1\r\n" + own + cookie)},
        {403, say("GET " + folder_ + " HTTP/1.1\r\n" + own + "Upgrade: websocket\r\nOrigin: http://evil.example\r\n" +
                  cookie)},
        {403, get("events", "Origin: http://evil.example\r\n")},
        {403, get("%2e%2e/")},
        {405, say("FOO " + folder_ + " HTTP/1.1\r\n" + own + cookie)},
        {411, say(head("POST", "act", "Content-Type: application/json\r\nTransfer-Encoding: chunked\r\n") +
                  "2\r\n{}\r\n0\r\n\r\n")},
        {415, say(head("POST", "act", "Content-Type: text/plain\r\nContent-Length: 2\r\n") + "{}")},
    };
    for (const auto& [status, answer] : answers) {
        EXPECT_EQ(statusOf(answer), status) << answer;
    }
    EXPECT_EQ(statusOf(get("app.js", "Range: bytes=0-1,2-3\r\n")), 200);
}

TEST_F(PanelCommand, ListensOnTheLoopbackInterfaceAlone) {
    start();
    std::ostringstream hexPort;
    hexPort << std::uppercase << std::hex << std::stoi(port());
    std::vector<std::string> places;
    for (const char* table : {"/proc/net/tcp", "/proc/net/tcp6"}) {
        std::ifstream stream(table);
        for (std::string line; std::getline(stream, line);) {
            std::istringstream words(line);
            std::string number;
            std::string local;
            std::string remote;
            std::string state;
            words >> number >> local >> remote >> state;
            if (state == "0A" && local.substr(local.find(':') + 1) == hexPort.str()) {
                places.push_back(local.substr(0, local.find(':')));
            }
        }
    }
    ASSERT_FALSE(places.empty());
    for (const auto& place : places) {
        EXPECT_TRUE(place == "0100007F" || place == "00000000000000000000000001000000") << place;
    }
}

TEST_F(PanelCommand, ActionIsDoneByTheCommandThatItNames) {
    start();
    const auto done = Json::parse(bodyOf(act(R"({"action":"lock","lock":"pin","length":6})")));
    EXPECT_EQ(done["status"], 0);
    EXPECT_EQ(done["output"], "the screen is locked with a PIN of 6 characters\n");
    EXPECT_EQ(done["command"], "deskwatch --device " + device().layout().folder().string() + " lock pin --length 6");
    EXPECT_EQ(status()["keys"]["db/setting/lock_type"], 1);

    const auto refused = Json::parse(bodyOf(act(R"({"action":"lock","lock":"pin","length":2})")));
    EXPECT_EQ(refused["status"], 3);
    EXPECT_EQ(refused["errors"], "deskwatch: lock: 2 characters are not enough: at least 4 are demanded\n");
    EXPECT_NE(bodyOf(act("[1,")).find("the body is not valid JSON: "), std::string::npos);
    EXPECT_EQ(bodyOf(act(R"({"action":"fly"})")), "fly is not an action");
}

TEST_F(PanelCommand, FifthStreamParksTheOldest) {
    start();
    std::vector<FileDescriptor> pages;
    const auto open = [&] {
        pages.push_back(connect());
        const auto text = head("GET", "events");
        EXPECT_EQ(::send(pages.back().get(), text.data(), text.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(text.size()));
        char byte = 0;
        EXPECT_EQ(read(pages.back().get(), &byte, 1), 1); // it is open
    };
    for (int page = 0; page < 5; ++page) {
        open();
    }
    std::string told;
    char buffer[4096];
    for (ssize_t got = 0; (got = read(pages.front().get(), buffer, sizeof buffer)) > 0;) {
        told.append(buffer, static_cast<std::size_t>(got));
    }
    EXPECT_NE(told.find("event: parked\n"), std::string::npos)
        << told.substr(told.size() - std::min<std::size_t>(told.size(), 300));
}

TEST_F(PanelCommand, SwitchesOffTheWatchThatItBootedAndNoOther) {
    start();
    EXPECT_TRUE(device().isBooted());
    panel_->signal(SIGINT);
    EXPECT_EQ(panel_->waitForEnd(), 0);
    EXPECT_FALSE(device().isBooted());

    boot();
    start();
    panel_->signal(SIGTERM);
    EXPECT_EQ(panel_->waitForEnd(), 0);
    EXPECT_TRUE(device().isBooted());
}

TEST_F(PanelCommand, PortInUseIsRefusedAndLeavesNoWatchBehind) {
    start();
    const TemporaryFolder other;
    const auto outcome =
        deskwatchProgram({"panel", (other.path() / "watch").string(), "--no-browser", "--port", port()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "deskwatch: panel: port " + port() + " is in use; leave out --port for any free one\n");
    EXPECT_FALSE(Device(other.path() / "watch").isBooted());
}

} // namespace
} // namespace deskwatch
