#ifndef DESKWATCH_MESSAGE_SCHEMA_H
#define DESKWATCH_MESSAGE_SCHEMA_H

#include <string>
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

/// The members of the policy set and their names elsewhere, as a table in Markdown.
std::string memberTable();

} // namespace deskwatch

#endif
