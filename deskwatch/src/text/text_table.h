#ifndef DESKWATCH_TEXT_TABLE_H
#define DESKWATCH_TEXT_TABLE_H

#include <string>
#include <vector>

namespace deskwatch {

/// A text with control characters and invalid bytes made visible.
std::string printable(const std::string& text);

/// Rows of cells as text in columns. Control characters in cells become visible, because texts from servers are shown
/// here and must not control the reader's terminal.
std::string textTable(const std::vector<std::vector<std::string>>& rows);

} // namespace deskwatch

#endif
