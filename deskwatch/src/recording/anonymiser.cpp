#include "recording/anonymiser.h"

#include <algorithm>
#include <vector>

namespace deskwatch {
namespace {

/// The text that a literal of JSON means; the literal itself when it is not one.
std::string meantBy(const std::string& literal) {
    const auto text = TraceEvent::parse("\"" + literal + "\"", nullptr, false);
    return text.is_string() ? text.get<std::string>() : literal;
}

/// The text as it stands in a literal.
std::string literalOf(const std::string& text) {
    const auto quoted = TraceEvent(text).dump(-1, ' ', false, TraceEvent::error_handler_t::replace);
    return quoted.substr(1, quoted.size() - 2);
}

struct Literal {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool isMemberName = false;
};

/// The literals of JSON in a text, which need not be JSON, without their quotes.
std::vector<Literal> literalsOf(const std::string& text) {
    std::vector<Literal> literals;
    for (auto quote = text.find('"'); quote != std::string::npos; quote = text.find('"', quote + 1)) {
        Literal literal{quote + 1, quote + 1};
        while (literal.end < text.size() && text[literal.end] != '"') {
            literal.end += text[literal.end] == '\\' ? 2 : 1;
        }
        if (literal.end >= text.size()) {
            return literals;
        }
        const auto next = text.find_first_not_of(" \t\r\n", literal.end + 1);
        literal.isMemberName = next != std::string::npos && text[next] == ':';
        literals.push_back(literal);
        quote = literal.end;
    }
    return literals;
}

} // namespace

TraceEvent Anonymiser::anonymised(TraceEvent line) {
    if (line.contains("store")) {
        learnStore(line["store"]);
    }
    if (line.contains("entries")) {
        for (const auto& text : line["entries"]) {
            learnMembers(text.get<std::string>());
        }
    }
    for (const char* part : {"store", "settings", "entries", "extraData", "value"}) {
        if (line.contains(part)) {
            replaceIn(line[part]);
        }
    }
    return line;
}

void Anonymiser::learnStore(const TraceEvent& store) {
    if (!store.is_object() || !store.contains("accounts")) {
        return;
    }
    for (const auto& account : store["accounts"]) {
        learn(account.value("account_name", ""));
    }
}

void Anonymiser::learnMembers(const std::string& text) {
    bool isName = false;
    for (const auto& literal : literalsOf(text)) {
        const auto meant = meantBy(text.substr(literal.begin, literal.end - literal.begin));
        if (isName && !literal.isMemberName) {
            learn(meant);
        }
        isName = literal.isMemberName && (meant == "accountName" || meant == "displayName");
    }
}

void Anonymiser::learn(const std::string& name) {
    const auto count = names_.size() + 1;
    const bool isOurs =
        std::any_of(names_.begin(), names_.end(), [&](const auto& known) { return known.second == name; });
    if (!name.empty() && !isOurs) {
        names_.emplace(name, "account" + std::to_string(count) + "@example.com");
    }
}

void Anonymiser::replaceIn(TraceEvent& value) const {
    if (value.is_string()) {
        value = replacedInLiterals(value.get<std::string>());
    } else if (value.is_structured()) {
        for (auto& inner : value) {
            replaceIn(inner);
        }
    }
}

std::string Anonymiser::replacedInLiterals(const std::string& text) const {
    std::string result;
    std::size_t done = 0;
    for (const auto& literal : literalsOf(text)) {
        result += replaced(text.substr(done, literal.begin - done));
        const auto written = text.substr(literal.begin, literal.end - literal.begin);
        const auto meant = meantBy(written);
        const auto other = literal.isMemberName ? meant : replaced(meant);
        result += other == meant ? written : literalOf(other);
        done = literal.end;
    }
    return result + replaced(text.substr(done));
}

std::string Anonymiser::replaced(const std::string& text) const {
    const auto whole = names_.find(text);
    if (whole != names_.end()) {
        return whole->second;
    }
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const auto* longest = nameAt(text, at);
        result += longest != nullptr ? longest->second : text.substr(at, 1);
        at += longest != nullptr ? longest->first.size() : 1;
    }
    return result;
}

const Anonymiser::Name* Anonymiser::nameAt(const std::string& text, std::size_t at) const {
    const Name* longest = nullptr;
    for (const auto& name : names_) {
        const bool isThere = name.first.size() >= shortestPart && text.compare(at, name.first.size(), name.first) == 0;
        longest = isThere && (longest == nullptr || longest->first.size() < name.first.size()) ? &name : longest;
    }
    return longest;
}

} // namespace deskwatch
