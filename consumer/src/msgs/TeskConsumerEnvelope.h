#ifndef TESK_CONSUMER_ENVELOPE_H
#define TESK_CONSUMER_ENVELOPE_H

#include <json-glib/json-glib.h>

#include <memory>
#include <string>

/// The envelope that every message comes in: a JSON object whose "msgId" names the message's kind.
class TeskConsumerEnvelope {
public:
    /// Parses a text; what is wrong with it shows in root().
    explicit TeskConsumerEnvelope(const std::string& text);

    /// The envelope's object, or null, and logged, when the text is no JSON or no object. The envelope keeps it.
    JsonObject* root() const;

    /// The same, and null, and logged, also when the message is of another kind.
    JsonObject* rootOf(const char* kind) const;

    /// The kind that an envelope's object names, empty when it names none.
    static std::string kindOf(JsonObject* root);

private:
    struct Releaser {
        void operator()(gpointer object) const { g_object_unref(object); }
    };

    std::unique_ptr<JsonParser, Releaser> parser;
};

#endif
