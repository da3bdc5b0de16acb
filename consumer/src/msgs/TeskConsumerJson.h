#ifndef TESK_CONSUMER_JSON_H
#define TESK_CONSUMER_JSON_H

#include <json-glib/json-glib.h>

#include <cstdint>
#include <functional>
#include <string>

/// Reads JSON that may be anything: a member that is missing or of another kind gives the library's fallback without
/// the critical warning that its own getters log for it. Everything handed out belongs to the parser.
namespace TeskConsumerJson {

/// Whether a text is nested deeper than the library's recursive parser may be given: more than 1,024 levels.
bool isNestedTooDeep(const std::string& text);

/// The object of a node, or null when it holds something else.
JsonObject* objectOf(JsonNode* node);

/// A number, cut to 32 bits; 0 when there is none.
std::int32_t intMember(JsonObject* object, const char* name);

/// Whether a value is true or a number other than 0; false when there is none.
bool boolMember(JsonObject* object, const char* name);

/// A text; empty when there is none.
std::string textMember(JsonObject* object, const char* name);

/// An object, or null.
JsonObject* objectMember(JsonObject* object, const char* name);

/// An array, or null.
JsonArray* arrayMember(JsonObject* object, const char* name);

/// Visits the objects in an array, in order; elements of another kind are passed over.
void forEachObject(JsonArray* array, const std::function<void(JsonObject*)>& visit);

} // namespace TeskConsumerJson

#endif
