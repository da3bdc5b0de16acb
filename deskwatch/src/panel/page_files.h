#ifndef DESKWATCH_PAGE_FILES_H
#define DESKWATCH_PAGE_FILES_H

#include <libsoup/soup.h>

#include <string>
#include <vector>

namespace deskwatch {

/// Answers with a file of the page, which is in the program; the empty name is the page itself. False when there is
/// none of that name.
bool sendPageFile(SoupServerMessage* message, const std::string& name);

/// The names of the files in a folder of the page, in order.
std::vector<std::string> pageFiles(const std::string& folder);

} // namespace deskwatch

#endif
