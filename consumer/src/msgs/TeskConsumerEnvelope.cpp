#include "msgs/TeskConsumerEnvelope.h"

#include "TeskConsumerLog.h"
#include "msgs/TeskConsumerJson.h"

TeskConsumerEnvelope::TeskConsumerEnvelope(const std::string& text) : parser(json_parser_new()) {
    // a text with something behind its object fails to load and leaves the object all the same, hence no look at the
    // result
    if (!TeskConsumerJson::isNestedTooDeep(text)) {
        json_parser_load_from_data(parser.get(), text.c_str(), -1, nullptr);
    }
}

JsonObject* TeskConsumerEnvelope::root() const {
    JsonNode* const node = json_parser_get_root(parser.get());
    if (node == nullptr) {
        TESK_ERROR("json_parser_get_root failed");
        return nullptr;
    }
    JsonObject* const object = TeskConsumerJson::objectOf(node);
    if (object == nullptr) {
        TESK_ERROR("json_node_get_object failed");
    }
    return object;
}

JsonObject* TeskConsumerEnvelope::rootOf(const char* kind) const {
    JsonObject* const object = root();
    if (object != nullptr && kindOf(object) != kind) {
        TESK_ERROR("msgId is diffrent");
        return nullptr;
    }
    return object;
}

std::string TeskConsumerEnvelope::kindOf(JsonObject* root) {
    return TeskConsumerJson::textMember(root, "msgId");
}
