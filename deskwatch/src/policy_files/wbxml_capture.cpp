#include <glib.h>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <stdexcept>

#include "c_owners.h"
#include "exchange/protocol_version.h"
#include "exchange/provision_messages.h"
#include "policy_files/policy_readers.h"
#include "provisioning/provisioning_tolerance.h"
#include "wbxml/wbxml_codec.h"

namespace deskwatch {
namespace {

bool consistsOf(const std::string& text, std::string_view more, int (*isOne)(int)) {
    return std::all_of(text.begin(), text.end(), [&](char character) {
        return isOne(static_cast<unsigned char>(character)) != 0 || more.find(character) != std::string_view::npos;
    });
}

/// Bytes of hexadecimal digits, whatever stands between them; empty when it is something else.
std::string bytesOfHexadecimal(const std::string& text) {
    constexpr std::string_view between = " \t\r\n,:-\\x";
    if (!consistsOf(text, between, std::isxdigit)) {
        return "";
    }
    std::string bytes;
    int high = -1;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const int digit = g_ascii_xdigit_value(text[at]);
        const bool isPrefix = text[at] == '0' && at + 1 < text.size() && text[at + 1] == 'x';
        if (digit < 0 || isPrefix) {
            continue;
        }
        if (high >= 0) {
            bytes += static_cast<char>(high * 16 + digit);
        }
        high = high < 0 ? digit : -1;
    }
    return bytes;
}

/// The digits of a dump, in whose lines `OFFSET: DIGITS  TEXT` stands (xxd) or `OFFSET  DIGITS  |TEXT|` (hexdump -C,
/// which has two blanks among the digits, too); empty when it is something else.
std::string digitsOfDump(const std::string& text) {
    constexpr std::size_t shortestOffset = 7;
    std::string digits;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        const auto offset = line.find_first_not_of("0123456789abcdefABCDEF");
        if (offset == std::string::npos) {
            continue; // the last line of hexdump is the size
        }
        const auto start = line.find_first_not_of(' ', offset + 1);
        const auto end = line[offset] == ':' ? line.find("  ", start) : line.find('|');
        if (offset < shortestOffset || start == std::string::npos || end == std::string::npos) {
            return "";
        }
        digits += line.substr(start, end - start) + " ";
    }
    return digits;
}

std::string bytesOfBase64(const std::string& text) {
    if (!consistsOf(text, "+/= \t\r\n", std::isalnum)) {
        return "";
    }
    gsize size = 0;
    const c::MemoryOwner<guchar> bytes(g_base64_decode(text.c_str(), &size));
    return {reinterpret_cast<const char*>(bytes.get()), size};
}

ProvisionReply replyIn(const WbxmlElement& root) {
    auto reply = readProvisionReply(root, protocol::v14_1);
    return reply.hasDocument ? reply : readProvisionReply(root, protocol::v2_5);
}

void addStatus(PolicyFile& content, ServerNotice::Kind kind, const std::optional<int>& status) {
    if (status.value_or(1) != 1) {
        content.notices.push_back({kind, std::to_string(*status), 0});
    }
}

PolicyFile contentOf(const WbxmlElement& root) {
    const auto reply = replyIn(root);
    PolicyFile content;
    addStatus(content, ServerNotice::Kind::Status, reply.status);
    if (reply.wipe != WipeOrder::None) {
        const bool isDevice = reply.wipe == WipeOrder::Device;
        content.notices.push_back({isDevice ? ServerNotice::Kind::Wipe : ServerNotice::Kind::AccountWipe, "", 0});
    }
    addStatus(content, ServerNotice::Kind::PolicyStatus, reply.policyStatus);
    if (reply.hasDocument) {
        auto taken = tolerated(reply.elements);
        content.remarks = std::move(taken.remarks);
        content.policies.push_back({"", std::move(taken.elements), false});
    }
    return content;
}

} // namespace

std::optional<PolicyFile> readWbxmlCapture(const std::string& file, const std::string& bytes) {
    for (const auto& candidate :
         {bytes, bytesOfHexadecimal(bytes), bytesOfHexadecimal(digitsOfDump(bytes)), bytesOfBase64(bytes)}) {
        if (looksLikeWbxml(candidate)) {
            try {
                return contentOf(decodeWbxml(candidate));
            } catch (const std::runtime_error& error) {
                throw std::runtime_error(file + ": " + error.what());
            }
        }
    }
    return std::nullopt;
}

} // namespace deskwatch
