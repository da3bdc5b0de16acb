#include "panel/gate.h"

#include <gtest/gtest.h>

#include <functional>

namespace deskwatch {
namespace {

/// A change of a request that would pass, and what becomes of it.
struct GateRow {
    const char* name;
    std::function<void(RequestHead& head, const PanelSecrets& secrets)> change;
    unsigned status;
    const char* reason;
};

std::ostream& operator<<(std::ostream& stream, const GateRow& row) {
    return stream << row.name;
}

constexpr char ownHosts[] = "the Host must be 127.0.0.1:8000, [::1]:8000 or localhost:8000, and be there once";

class GateTable : public testing::TestWithParam<GateRow> {
protected:
    RequestHead action() const {
        RequestHead head;
        head.method = "POST";
        head.path = "/" + secrets_.folder + "/act";
        head.authority = "127.0.0.1:8000";
        head.host = "127.0.0.1:8000";
        head.origin = "http://127.0.0.1:8000";
        head.fetchSite = "same-origin";
        head.cookies = "other=1; deskwatch=" + secrets_.cookie;
        head.contentType = "application/json; charset=utf-8";
        head.length = 2;
        return head;
    }

    PanelSecrets secrets_;
    Gate gate_{8000, secrets_};
};

TEST_P(GateTable, LetsNobodyElseIn) {
    auto head = action();
    GetParam().change(head, secrets_);
    const auto verdict = gate_.judge(head);
    EXPECT_EQ(verdict.status, GetParam().status) << verdict.reason;
    EXPECT_EQ(verdict.reason, GetParam().reason);
}

void readPage(RequestHead& head) {
    head.method = "GET";
    head.path.erase(head.path.size() - 3);
    head.length.reset();
    head.contentType.reset();
    head.origin.reset();
}

void enter(RequestHead& head, const std::string& token) {
    readPage(head);
    head.path = "/";
    head.cookies.reset();
    head.token = token;
}

INSTANTIATE_TEST_SUITE_P(
    Passed, GateTable,
    testing::Values(GateRow{"an action", [](auto&, auto&) {}, 0, ""},
                    GateRow{"an empty body", [](auto& head, auto&) { head.length = 0; }, 0, ""},
                    GateRow{"the largest body", [](auto& head, auto&) { head.length = 1 << 20; }, 0, ""},
                    GateRow{"by IPv6",
                            [](auto& head, auto&) {
                                head.host = head.authority = "[::1]:8000";
                                head.origin = "http://[::1]:8000";
                            },
                            0, ""},
                    GateRow{"of a terminal",
                            [](auto& head, auto&) {
                                head.origin.reset();
                                head.fetchSite.reset();
                            },
                            0, ""},
                    GateRow{"the page", [](auto& head, auto&) { readPage(head); }, 0, ""},
                    GateRow{"the page from a link elsewhere",
                            [](auto& head, auto&) {
                                readPage(head);
                                head.fetchSite = "cross-site";
                            },
                            0, ""},
                    GateRow{"the token", [](auto& head, const auto& secrets) { enter(head, secrets.token); }, 0, ""}));

INSTANTIATE_TEST_SUITE_P(
    Foreign, GateTable,
    testing::Values(
        GateRow{"no host", [](auto& head, auto&) { head.host.reset(); }, 403, ownHosts},
        GateRow{"two hosts", [](auto& head, auto&) { head.host = "127.0.0.1:8000, 127.0.0.1:8000"; }, 403, ownHosts},
        GateRow{"a name that resolves here", [](auto& head, auto&) { head.host = "evil.example:8000"; }, 403, ownHosts},
        GateRow{"a name that begins so", [](auto& head, auto&) { head.host = "localhost.evil:8000"; }, 403, ownHosts},
        GateRow{"another port", [](auto& head, auto&) { head.host = "127.0.0.1:8001"; }, 403, ownHosts},
        GateRow{"another server in the request line", [](auto& head, auto&) { head.authority = "evil.example:80"; },
                403, ownHosts},
        GateRow{"another origin", [](auto& head, auto&) { head.origin = "http://evil.example"; }, 403,
                "the Origin must be http://127.0.0.1:8000"},
        GateRow{"another port's page", [](auto& head, auto&) { head.origin = "http://127.0.0.1:8001"; }, 403,
                "the Origin must be http://127.0.0.1:8000"},
        GateRow{"no origin to tell", [](auto& head, auto&) { head.origin = "null"; }, 403,
                "the Origin must be http://127.0.0.1:8000"},
        GateRow{"another site", [](auto& head, auto&) { head.fetchSite = "cross-site"; }, 403,
                "Sec-Fetch-Site must be same-origin"},
        GateRow{"another port of this site", [](auto& head, auto&) { head.fetchSite = "same-site"; }, 403,
                "Sec-Fetch-Site must be same-origin"}));

INSTANTIATE_TEST_SUITE_P(
    WithoutASecret, GateTable,
    testing::Values(GateRow{"no cookie", [](auto& head, auto&) { head.cookies.reset(); }, 403, ""},
                    GateRow{"a wrong cookie",
                            [](auto& head, auto&) { head.cookies = "deskwatch=" + std::string(64, 'a'); }, 403, ""},
                    GateRow{"half a cookie", [](auto& head, auto&) { head.cookies->pop_back(); }, 403, ""},
                    GateRow{"a wrong token", [](auto& head, auto&) { enter(head, std::string(64, 'a')); }, 403, ""},
                    GateRow{"an empty token", [](auto& head, auto&) { enter(head, ""); }, 403, ""},
                    GateRow{"the cookie for another folder", [](auto& head, auto&) { head.path = "/favicon.ico"; }, 403,
                            ""}));

INSTANTIATE_TEST_SUITE_P(
    Malformed, GateTable,
    testing::Values(
        GateRow{"an action by GET",
                [](auto& head, auto&) {
                    head.method = "GET";
                    head.length.reset();
                },
                405, "this path takes POST"},
        GateRow{"the page by POST", [](auto& head, auto&) { head.path.erase(head.path.size() - 3); }, 405,
                "this path takes GET"},
        GateRow{"the token by POST",
                [](auto& head, const auto& secrets) {
                    enter(head, secrets.token);
                    head.method = "POST";
                },
                405, "this path takes GET"},
        GateRow{"a form", [](auto& head, auto&) { head.contentType = "application/x-www-form-urlencoded"; }, 415,
                "the Content-Type must be application/json"},
        GateRow{"plain text", [](auto& head, auto&) { head.contentType = "text/plain; application/json"; }, 415,
                "the Content-Type must be application/json"},
        GateRow{"no type", [](auto& head, auto&) { head.contentType.reset(); }, 415,
                "the Content-Type must be application/json"},
        GateRow{"no length", [](auto& head, auto&) { head.length.reset(); }, 411, "a body needs a Content-Length"},
        GateRow{"a negative length", [](auto& head, auto&) { head.length = -1; }, 411, "a body needs a Content-Length"},
        GateRow{"a body too long", [](auto& head, auto&) { head.length = (1 << 20) + 1; }, 413,
                "a body has at most 1048576 bytes"},
        GateRow{"a page with a body",
                [](auto& head, auto&) {
                    readPage(head);
                    head.length = 1;
                },
                400, "GET has no body here"}));

TEST(PanelSecrets, AreLongAndNeverTheSame) {
    const PanelSecrets one;
    const PanelSecrets other;
    EXPECT_EQ(one.token.size(), 64U);
    EXPECT_NE(one.token, other.token);
    EXPECT_NE(one.token, one.cookie);
    EXPECT_NE(one.folder, other.folder);
}

} // namespace
} // namespace deskwatch
