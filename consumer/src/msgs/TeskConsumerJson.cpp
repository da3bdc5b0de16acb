#include "msgs/TeskConsumerJson.h"

#include <algorithm>

namespace {

constexpr std::ptrdiff_t maxDepth = 1024;

/// What the library takes for a comment, which depends on its version.
enum class Comments {
    BetweenSlashes, ///< from a slash to the next one
    AsInC           ///< from two slashes to the end of the line, and from slash and asterisk to asterisk and slash
};

/// Measures how deep a text is nested, where brackets in strings and in comments do not count. Like the library it
/// takes text in single quotes, in which nothing is escaped, for a string.
class NestingMeter {
public:
    NestingMeter(const std::string& measuredText, Comments knownComments)
        : text(measuredText), comments(knownComments) {}

    std::ptrdiff_t deepest() {
        std::ptrdiff_t depth = 0;
        std::ptrdiff_t deepest = 0;
        while (at < text.size()) {
            const char character = text[at++];
            if (character == '[' || character == '{') {
                deepest = std::max(deepest, ++depth);
            } else if (character == ']' || character == '}') {
                --depth;
            } else {
                skipFrom(character);
            }
        }
        return deepest;
    }

private:
    /// Skips a string or a comment that this character begins.
    void skipFrom(char character) {
        if (character == '"') {
            skipString();
        } else if (character == '\'') {
            skipPast("'");
        } else if (character == '/' && comments == Comments::BetweenSlashes) {
            skipPast("/");
        } else if (character == '/' && at < text.size() && text[at] == '/') {
            skipPast("\n");
        } else if (character == '/' && at < text.size() && text[at] == '*') {
            ++at;
            skipPast("*/");
        }
    }

    void skipString() {
        while (at < text.size() && text[at] != '"') {
            at += text[at] == '\\' ? 2 : 1;
        }
        ++at;
    }

    void skipPast(const char* end) {
        const auto found = text.find(end, at);
        at = found == std::string::npos ? text.size() : found + std::char_traits<char>::length(end);
    }

    const std::string& text;
    const Comments comments;
    std::size_t at = 0;
};

JsonNode* valueMember(JsonObject* object, const char* name) {
    JsonNode* const node = json_object_get_member(object, name);
    return node != nullptr && JSON_NODE_HOLDS_VALUE(node) ? node : nullptr;
}

} // namespace

bool TeskConsumerJson::isNestedTooDeep(const std::string& text) {
    const auto isOpening = [](char character) { return character == '[' || character == '{'; };
    if (std::count_if(text.begin(), text.end(), isOpening) <= maxDepth) {
        return false;
    }
    const auto isTooDeepWith = [&text](Comments comments) { return NestingMeter(text, comments).deepest() > maxDepth; };
    return isTooDeepWith(Comments::BetweenSlashes) || isTooDeepWith(Comments::AsInC);
}

JsonObject* TeskConsumerJson::objectOf(JsonNode* node) {
    return node != nullptr && JSON_NODE_HOLDS_OBJECT(node) ? json_node_get_object(node) : nullptr;
}

std::int32_t TeskConsumerJson::intMember(JsonObject* object, const char* name) {
    JsonNode* const node = valueMember(object, name);
    return node != nullptr ? static_cast<std::int32_t>(json_node_get_int(node)) : 0;
}

bool TeskConsumerJson::boolMember(JsonObject* object, const char* name) {
    JsonNode* const node = valueMember(object, name);
    return node != nullptr && json_node_get_boolean(node) != FALSE;
}

std::string TeskConsumerJson::textMember(JsonObject* object, const char* name) {
    JsonNode* const node = valueMember(object, name);
    const char* const text = node != nullptr ? json_node_get_string(node) : nullptr;
    return text != nullptr ? text : "";
}

JsonObject* TeskConsumerJson::objectMember(JsonObject* object, const char* name) {
    return objectOf(json_object_get_member(object, name));
}

JsonArray* TeskConsumerJson::arrayMember(JsonObject* object, const char* name) {
    JsonNode* const node = json_object_get_member(object, name);
    return node != nullptr && JSON_NODE_HOLDS_ARRAY(node) ? json_node_get_array(node) : nullptr;
}

void TeskConsumerJson::forEachObject(JsonArray* array, const std::function<void(JsonObject*)>& visit) {
    const guint length = json_array_get_length(array);
    for (guint index = 0; index < length; ++index) {
        JsonObject* const object = objectOf(json_array_get_element(array, index));
        if (object != nullptr) {
            visit(object);
        }
    }
}
