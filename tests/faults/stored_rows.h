#ifndef FAULTS_STORED_ROWS_H
#define FAULTS_STORED_ROWS_H

#include <map>
#include <string>

/// The whole row of each stored account, in words of this test's own.
using StoredRows = std::map<int, std::string>;

/// Reads a database as another program would; empty when there is none.
StoredRows storedRowsOf(const std::string& path);

#endif
