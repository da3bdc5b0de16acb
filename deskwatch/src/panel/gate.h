#ifndef DESKWATCH_GATE_H
#define DESKWATCH_GATE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "panel/panel_secrets.h"

namespace deskwatch {

/// What the head of an HTTP request says. Several header lines of a name are joined by commas.
struct RequestHead {
    std::string method;
    /// The decoded path.
    std::string path;
    /// The authority that the request line names; that of the Host header when it names none.
    std::string authority;
    std::optional<std::string> host;
    std::optional<std::string> origin;
    std::optional<std::string> fetchSite;
    std::optional<std::string> cookies;
    std::optional<std::string> contentType;
    /// The token in the query.
    std::optional<std::string> token;
    /// None when the body has no stated length.
    std::optional<std::int64_t> length;
};

/// What becomes of a request: it passes, or it is answered with a status and a reason, which may be empty.
struct GateVerdict {
    unsigned status = 0;
    std::string reason;

    bool isPassed() const { return status == 0; }
};

/// Decides which requests are let through. A page of somebody else in the same browser must neither read nor act, from
/// another site, from another port of this machine or by a name that resolves to this machine.
class Gate {
public:
    Gate(unsigned port, const PanelSecrets& secrets) : port_(port), secrets_(secrets) {}

    /// The most bytes that a body may have.
    static constexpr std::int64_t largestBody = 1 << 20;

    /// The way in, by the token.
    static constexpr char entrance[] = "/";

    /// Where pages and actions are, with a slash at both ends.
    std::string folder() const { return "/" + secrets_.folder + "/"; }

    /// The value of Set-Cookie that lets a browser in.
    std::string cookie() const;

    GateVerdict judge(const RequestHead& head) const;

private:
    bool isOwnAuthority(std::string_view authority) const;
    GateVerdict judgeOrigin(const RequestHead& head) const;
    GateVerdict judgeSecret(const RequestHead& head) const;
    static GateVerdict judgeBody(const RequestHead& head);

    unsigned port_;
    const PanelSecrets& secrets_;
};

/// What a path below the folder serves; an action is sent by POST, everything else is read by GET.
bool isActionPath(std::string_view name);

} // namespace deskwatch

#endif
