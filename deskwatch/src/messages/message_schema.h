#ifndef DESKWATCH_MESSAGE_SCHEMA_H
#define DESKWATCH_MESSAGE_SCHEMA_H

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "messages/message_table.h"

namespace deskwatch {

/// What a schema says: what a sender should send, or what the service takes.
enum class Strictness { Strict, Lax };

/// A file with a schema.
struct SchemaFile {
    std::string name;
    std::string text;
};

/// The JSON schemas of all kinds of messages and of the policy set alone. Each stands for itself.
std::vector<SchemaFile> schemaFiles();

/// What an element of the protocol is called in another place.
using NameElsewhere = std::function<std::string(std::string_view element)>;

/// The members of the policy set and their names elsewhere, as a table in Markdown. `parameterOf` names the parameter
/// by which an administrator sets an element.
std::string memberTable(const NameElsewhere& parameterOf);

} // namespace deskwatch

#endif
