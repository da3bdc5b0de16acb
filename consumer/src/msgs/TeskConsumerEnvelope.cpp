#include "msgs/TeskConsumerEnvelope.h"

#include <utility>

#include "msgs/TeskConsumerJson.h"

namespace {

struct ParserRelease {
    void operator()(gpointer object) const { g_object_unref(object); }
};

struct ParsedText {
    explicit ParsedText(std::string parsedText) : text(std::move(parsedText)), parser(json_parser_new()) {
        // a text with something after its object fails to load and leaves the object all the same, hence no look at
        // the result
        if (!TeskConsumerJson::isNestedTooDeep(text)) {
            json_parser_load_from_data(parser.get(), text.c_str(), -1, nullptr);
        }
    }

    const std::string text;
    const std::unique_ptr<JsonParser, ParserRelease> parser;
};

/// The parser of a text, shared with the envelope that was made last when that one lives and has the same text.
std::shared_ptr<JsonParser> parserOf(const std::string& text) {
    static std::weak_ptr<ParsedText> last;
    auto parsed = last.lock();
    if (!parsed || parsed->text != text) {
        parsed = std::make_shared<ParsedText>(text);
        last = parsed;
    }
    return {parsed, parsed->parser.get()};
}

} // namespace

TeskConsumerEnvelope::TeskConsumerEnvelope(const std::string& text) : parser(parserOf(text)) {}

JsonObject* TeskConsumerEnvelope::root(const TeskConsumerPlace& place) const {
    JsonNode* const node = json_parser_get_root(parser.get());
    if (node == nullptr) {
        TESK_ERROR_AT(place, "json_parser_get_root failed");
        return nullptr;
    }
    JsonObject* const object = TeskConsumerJson::objectOf(node);
    if (object == nullptr) {
        TESK_ERROR_AT(place, "json_node_get_object failed");
    }
    return object;
}

JsonObject* TeskConsumerEnvelope::rootOf(const char* kind, const TeskConsumerPlace& place) const {
    JsonObject* const object = root(place);
    if (object != nullptr && kindOf(object) != kind) {
        TESK_ERROR_AT(place, "msgId is diffrent");
        return nullptr;
    }
    return object;
}

std::string TeskConsumerEnvelope::kindOf(JsonObject* root) {
    return TeskConsumerJson::textMember(root, "msgId");
}
