#ifndef DESKWATCH_TEXT_TABLE_H
#define DESKWATCH_TEXT_TABLE_H

#include <string>
#include <vector>

namespace deskwatch {

/// A text whose control characters and wrong bytes have become visible.
std::string printable(const std::string& text);

/// Rows of cells as text in columns. Control characters in cells become visible, because texts of a server end up here
/// and the terminal of whoever looks must not obey them.
std::string textTable(const std::vector<std::vector<std::string>>& rows);

} // namespace deskwatch

#endif
