#ifndef DESKWATCH_COUNTRY_H
#define DESKWATCH_COUNTRY_H

#include <string>
#include <string_view>
#include <vector>

namespace deskwatch {

/// Whether a text is the code of a country, ISO 3166-1 alpha-2, in capital letters.
bool isCountry(std::string_view code);

/// All of them, in the order of the alphabet.
std::vector<std::string> countryCodes();

} // namespace deskwatch

#endif
