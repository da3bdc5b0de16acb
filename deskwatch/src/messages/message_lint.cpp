#include "messages/message_lint.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string_view>

#include "messages/located_json.h"
#include "messages/message_table.h"
#include "text/suggestion.h"
#include "text/text_table.h"

namespace deskwatch {
namespace {

using Kind = LocatedJson::Kind;
using Names = std::vector<std::string_view>;

std::string inQuotes(std::string_view name) {
    return "\"" + std::string(name) + "\"";
}

bool isRight(const PolicyMember& member, const LocatedJson& value) {
    switch (member.type) {
    case MemberType::Flag:
        return value.kind == Kind::Flag;
    case MemberType::Number:
        return value.kind == Kind::Integer &&
               (value.integer == 0 || (value.integer >= member.least && value.integer <= member.most));
    case MemberType::Mode:
        break;
    }
    return value.kind == Kind::Integer &&
           std::find(passwordModes.begin(), passwordModes.end(), value.integer) != passwordModes.end();
}

std::string rightValues(const PolicyMember& member) {
    if (member.type == MemberType::Flag) {
        return "true or false";
    }
    if (member.type == MemberType::Mode) {
        return "0, 32, 64 or 96";
    }
    const bool isZeroApart = member.least > 1;
    return (isZeroApart ? "0 or " : "") + std::to_string(isZeroApart ? member.least : 0) + " to " +
           std::to_string(member.most);
}

/// Collects what is odd in a message.
class Linter {
public:
    std::vector<MessageRemark> check(const LocatedJson& root) {
        if (root.kind != Kind::Object) {
            remark(root.line, "a message is an object, not " + root.shown());
        } else if (const auto* const kind = kindOf(root)) {
            checkMessage(root, *kind);
        }
        std::stable_sort(remarks_.begin(), remarks_.end(),
                         [](const MessageRemark& one, const MessageRemark& other) { return one.line < other.line; });
        return std::move(remarks_);
    }

private:
    void remark(std::size_t line, const std::string& text) { remarks_.push_back({line, text}); }

    const MessageKind* kindOf(const LocatedJson& root) {
        Names ids;
        for (const auto& kind : messageKinds) {
            ids.push_back(kind.id);
        }
        const auto* const id = root.find("msgId");
        if (id == nullptr) {
            remark(root.line, "\"msgId\" is missing; it names the kind of the message");
            return nullptr;
        }
        const auto* const kind = std::find_if(messageKinds.begin(), messageKinds.end(), [&](const MessageKind& row) {
            return id->kind == Kind::Text && row.id == id->text;
        });
        if (kind == messageKinds.end()) {
            remark(id->line,
                   "\"msgId\" is " + id->shown() + ", which is not a kind of message" + didYouMean(id->text, ids));
            return nullptr;
        }
        return kind;
    }

    /// Remarks on members that are given twice or that nobody reads.
    void checkNames(const LocatedJson& object, const Names& known) {
        std::map<std::string, std::size_t> seen;
        for (const auto& [name, value] : object.members) {
            if (const auto [first, isFirst] = seen.emplace(name, value.line); !isFirst) {
                remark(value.line, inQuotes(name) + " is given in line " + std::to_string(first->second) +
                                       " already; the later one counts");
            } else if (std::find(known.begin(), known.end(), name) == known.end()) {
                remark(value.line, inQuotes(name) + " is not a member" + didYouMean(name, known));
            }
        }
    }

    void checkMessage(const LocatedJson& root, const MessageKind& kind) {
        const std::string_view outer = kind.holder.empty() ? kind.accounts : kind.holder;
        checkNames(root, outer.empty() ? Names{"msgId", "seqId", "param"} : Names{"msgId", "seqId", outer});
        if (const auto* const sequence = root.find("seqId"); sequence != nullptr && sequence->kind != Kind::Integer) {
            remark(sequence->line, "\"seqId\" is " + sequence->shown() + "; it is a number");
        }
        const LocatedJson* holder = &root;
        if (!kind.holder.empty()) {
            holder = expect(root, kind.holder, Kind::Object, "an object");
            if (holder != nullptr) {
                checkNames(*holder, {kind.accounts});
            }
        }
        if (holder != nullptr && !kind.accounts.empty()) {
            if (const auto* const accounts = expect(*holder, kind.accounts, Kind::Array, "an array of accounts")) {
                checkAccounts(*accounts, kind);
            }
        }
    }

    /// The member of an object that must be there and of that kind; null when it is not.
    const LocatedJson* expect(const LocatedJson& object, std::string_view name, Kind kind, const std::string& words) {
        const auto* const value = object.find(std::string(name));
        if (value == nullptr) {
            remark(object.line, inQuotes(name) + " is missing; it is " + words);
            return nullptr;
        }
        if (value->kind != kind) {
            remark(value->line, inQuotes(name) + " is " + value->shown() + "; it is " + words);
            return nullptr;
        }
        return value;
    }

    void checkAccounts(const LocatedJson& accounts, const MessageKind& kind) {
        if (accounts.elements.empty()) {
            remark(accounts.line, "the message names no account");
        }
        std::set<std::int64_t> ids;
        for (const auto& account : accounts.elements) {
            if (account.kind != Kind::Object) {
                remark(account.line, "an account is an object, not " + account.shown());
                continue;
            }
            const auto id = checkAccount(account, kind);
            if (id && !ids.insert(*id).second) {
                remark(account.line,
                       "account " + std::to_string(*id) + " is in the message twice; the later one counts");
            }
        }
    }

    void checkName(const LocatedJson& account, std::string_view member) {
        const auto* const name = expect(account, member, Kind::Text, "a text");
        if (name != nullptr && printable(name->text) != name->text) {
            remark(name->line, inQuotes(member) + " has control characters");
        }
    }

    /// Returns the account's number; none when it is wrong.
    std::optional<std::int64_t> checkAccount(const LocatedJson& account, const MessageKind& kind) {
        Names names{kind.accountId, "accountName", "policySet"};
        if (kind.hasDisplayName) {
            names.emplace_back("displayName");
        }
        checkNames(account, names);
        checkName(account, "accountName");
        if (kind.hasDisplayName) {
            checkName(account, "displayName");
        }
        if (kind.needsPolicySet || account.find("policySet") != nullptr) {
            if (const auto* const policySet = expect(account, "policySet", Kind::Object, "an object")) {
                checkPolicySet(*policySet);
            }
        }
        const std::string range = "a number from 1 to " + std::to_string(std::numeric_limits<std::int32_t>::max());
        const auto* const id = expect(account, kind.accountId, Kind::Integer, range);
        if (id == nullptr) {
            return std::nullopt;
        }
        if (id->integer < 1 || id->integer > std::numeric_limits<std::int32_t>::max()) {
            remark(id->line, inQuotes(kind.accountId) + " is " + id->shown() + "; it is " + range);
            return std::nullopt;
        }
        return id->integer;
    }

    void checkPolicySet(const LocatedJson& policySet) {
        Names names;
        for (const auto& member : policyMembers) {
            names.push_back(member.name);
        }
        checkNames(policySet, names);
        std::string missing;
        for (const auto& member : policyMembers) {
            const auto* const value = policySet.find(std::string(member.name));
            if (value == nullptr) {
                missing += (missing.empty() ? "" : ", ") + inQuotes(member.name);
            } else if (!isRight(member, *value)) {
                remark(value->line,
                       inQuotes(member.name) + " is " + value->shown() + "; it should be " + rightValues(member));
            }
        }
        if (!missing.empty()) {
            remark(policySet.line, "the policy set lacks " + missing + "; what is missing counts as false or 0");
        }
    }

    std::vector<MessageRemark> remarks_;
};

} // namespace

std::vector<MessageRemark> remarksOn(const std::string& text) {
    return Linter().check(locatedJson(text));
}

std::vector<std::string> remarkLines(const std::string& file, const std::string& text) {
    std::vector<std::string> lines;
    for (const auto& remark : remarksOn(text)) {
        lines.push_back(file + ":" + std::to_string(remark.line) + ": " + printable(remark.text));
    }
    return lines;
}

} // namespace deskwatch
