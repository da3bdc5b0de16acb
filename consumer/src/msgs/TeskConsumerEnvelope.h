#ifndef TESK_CONSUMER_ENVELOPE_H
#define TESK_CONSUMER_ENVELOPE_H

#include <json-glib/json-glib.h>

#include <memory>
#include <string>

#include "TeskConsumerLog.h"

/// The envelope that every message comes in: a JSON object whose "msgId" names the message's kind.
///
/// The factory and the message that it makes read the same text, each with an envelope of its own. Parsing is half the
/// cost of a policy update, so envelopes of one text that live at the same time share what was parsed.
class TeskConsumerEnvelope {
public:
    /// Parses a text; what is wrong with it shows in root().
    explicit TeskConsumerEnvelope(const std::string& text);

    /// The envelope's object, or null, and logged in the caller's name, when the text is not valid JSON or not an
    /// object. The envelope keeps it.
    JsonObject* root(const TeskConsumerPlace& place = TeskConsumerPlace::here()) const;

    /// The same, and null, and logged, also when the message is of another kind.
    JsonObject* rootOf(const char* kind, const TeskConsumerPlace& place = TeskConsumerPlace::here()) const;

    /// The kind that an envelope's object names, empty when it names none.
    static std::string kindOf(JsonObject* root);

private:
    std::shared_ptr<JsonParser> parser;
};

#endif
