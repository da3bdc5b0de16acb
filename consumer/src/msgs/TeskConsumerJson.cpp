#include "msgs/TeskConsumerJson.h"

namespace {

constexpr int maxDepth = 1024;

/// Follows the nesting of a JSON text. The library also takes comments and single-quoted strings, which are no JSON and
/// whose ends are not worth following: behind the first of them every bracket counts as one level more.
class NestingMeter {
public:
    /// Takes the next character and returns the depth there.
    int next(char character) {
        if (inString) {
            followString(character);
        } else {
            followStructure(character);
        }
        return depth;
    }

private:
    void followString(char character) {
        if (escaped) {
            escaped = false;
        } else if (character == '\\') {
            escaped = true;
        } else if (character == '"') {
            inString = false;
        }
    }

    void followStructure(char character) {
        switch (character) {
        case '[':
        case '{':
            ++depth;
            break;
        case ']':
        case '}':
            depth -= onlyJson ? 1 : 0;
            break;
        case '"':
            inString = onlyJson;
            break;
        case '/':
        case '\'':
            onlyJson = false;
            break;
        default:
            break;
        }
    }

    int depth = 0;
    bool inString = false;
    bool escaped = false;
    bool onlyJson = true;
};

JsonNode* valueMember(JsonObject* object, const char* name) {
    JsonNode* const node = json_object_get_member(object, name);
    return node != nullptr && JSON_NODE_HOLDS_VALUE(node) ? node : nullptr;
}

} // namespace

bool TeskConsumerJson::isNestedTooDeep(const std::string& text) {
    NestingMeter meter;
    for (const char character : text) {
        if (meter.next(character) > maxDepth) {
            return true;
        }
    }
    return false;
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
