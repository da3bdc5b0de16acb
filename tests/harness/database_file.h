#ifndef HARNESS_DATABASE_FILE_H
#define HARNESS_DATABASE_FILE_H

#include <map>
#include <string>

namespace harness {

/// The whole row of each stored account, as text.
using StoredRows = std::map<int, std::string>;

/// Reads the service's database as another program would; empty when there is none. Throws when the file is not sound.
StoredRows storedRows(const std::string& path);

/// Has another program carry out statements on a database. Throws when it cannot.
void changeDatabase(const std::string& path, const std::string& statements);

/// The bytes of a file; empty when there is none.
std::string contentOf(const std::string& path);

/// Writes a database, and its folder, as the service leaves them: nobody else may read it.
void writeDatabase(const std::string& path, const std::string& content);

} // namespace harness

#endif
