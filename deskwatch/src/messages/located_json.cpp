#include "messages/located_json.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <limits>
#include <stdexcept>

#include "text/text_table.h"

namespace deskwatch {
namespace {

using Json = nlohmann::json;

/// What the service reads; a value is also released level by level.
constexpr std::size_t deepest = 1024;

/// Walks over a text and counts the lines that it has passed.
class CountingIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CountingIterator(const char* at, std::size_t* line) : at_(at), line_(line) {}

    reference operator*() const { return *at_; }
    CountingIterator& operator++() {
        *line_ += *at_ == '\n' ? 1 : 0;
        ++at_;
        return *this;
    }
    bool operator!=(const CountingIterator& other) const { return at_ != other.at_; }

private:
    const char* at_;
    std::size_t* line_;
};

/// Builds the value from what the parser meets. Its functions are named by the parser.
class Builder : public nlohmann::json_sax<Json> {
public:
    explicit Builder(const std::size_t& line) : line_(line) {}

    LocatedJson take() { return std::move(root_); }

    bool null() override { return add({}); }
    bool boolean(bool flag) override {
        LocatedJson value;
        value.kind = LocatedJson::Kind::Flag;
        value.flag = flag;
        return add(std::move(value));
    }
    bool number_integer(number_integer_t number) override { return addInteger(number, std::to_string(number)); }
    bool number_unsigned(number_unsigned_t number) override {
        constexpr auto most = static_cast<number_unsigned_t>(std::numeric_limits<std::int64_t>::max());
        return addInteger(static_cast<std::int64_t>(std::min(number, most)), std::to_string(number));
    }
    bool number_float(number_float_t /*number*/, const string_t& text) override {
        return addText(LocatedJson::Kind::Fraction, text);
    }
    bool string(string_t& text) override { return addText(LocatedJson::Kind::Text, text); }
    bool binary(binary_t& /*bytes*/) override { return false; }
    bool start_object(std::size_t /*count*/) override { return open(LocatedJson::Kind::Object); }
    bool key(string_t& name) override {
        open_.back()->members.push_back({name, {}});
        open_.back()->members.back().value.line = line_;
        return true;
    }
    bool end_object() override { return close(); }
    bool start_array(std::size_t /*count*/) override { return open(LocatedJson::Kind::Array); }
    bool end_array() override { return close(); }
    bool parse_error(std::size_t /*position*/, const std::string& /*token*/, const Json::exception& error) override {
        throw Json::parse_error(dynamic_cast<const Json::parse_error&>(error));
    }

private:
    bool addInteger(std::int64_t number, const std::string& text) {
        LocatedJson value;
        value.kind = LocatedJson::Kind::Integer;
        value.integer = number;
        value.text = text;
        return add(std::move(value));
    }

    bool addText(LocatedJson::Kind kind, const std::string& text) {
        LocatedJson value;
        value.kind = kind;
        value.text = text;
        return add(std::move(value));
    }

    bool add(LocatedJson value) {
        place(std::move(value));
        return true;
    }

    bool open(LocatedJson::Kind kind) {
        if (open_.size() >= deepest) {
            throw std::runtime_error("nested deeper than " + std::to_string(deepest) + " levels");
        }
        LocatedJson value;
        value.kind = kind;
        open_.push_back(place(std::move(value)));
        return true;
    }

    bool close() {
        open_.pop_back();
        return true;
    }

    /// Puts a value where it belongs. Its place is stable while it is open, since only the innermost open one grows.
    LocatedJson* place(LocatedJson value) {
        value.line = line_;
        if (open_.empty()) {
            root_ = std::move(value);
            return &root_;
        }
        auto& outer = *open_.back();
        if (outer.kind == LocatedJson::Kind::Array) {
            outer.elements.push_back(std::move(value));
            return &outer.elements.back();
        }
        value.line = outer.members.back().value.line;
        outer.members.back().value = std::move(value);
        return &outer.members.back().value;
    }

    const std::size_t& line_;
    LocatedJson root_;
    std::vector<LocatedJson*> open_;
};

} // namespace

const LocatedJson* LocatedJson::find(const std::string& name) const {
    const LocatedJson* found = nullptr;
    for (const auto& member : members) {
        found = member.name == name ? &member.value : found;
    }
    return found;
}

std::string LocatedJson::shown() const {
    constexpr std::size_t longest = 40;
    switch (kind) {
    case Kind::Null:
        return "null";
    case Kind::Flag:
        return flag ? "true" : "false";
    case Kind::Integer:
    case Kind::Fraction:
        return text.size() <= longest ? text : "a number of " + std::to_string(text.size()) + " digits";
    case Kind::Text:
        return text.size() <= longest ? "\"" + printable(text) + "\"" : "a long text";
    case Kind::Array:
        return "an array";
    case Kind::Object:
        break;
    }
    return "an object";
}

LocatedJson locatedJson(const std::string& text) {
    std::size_t line = 1;
    Builder builder(line);
    const char* const end = text.data() + text.size();
    Json::sax_parse(CountingIterator(text.data(), &line), CountingIterator(end, &line), &builder);
    return builder.take();
}

} // namespace deskwatch
