#ifndef HEXADECIMAL_H
#define HEXADECIMAL_H

#include <ios>
#include <sstream>
#include <string>

/// Bytes written as hexadecimal numbers with blanks between them.
inline std::string bytesOf(const std::string& hexadecimal) {
    std::istringstream stream(hexadecimal);
    std::string bytes;
    for (unsigned int byte = 0; stream >> std::hex >> byte;) {
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

/// MS-EAS-Provisioning-WBXML as a PolicyType.
inline const std::string wbxmlTypeBytes =
    "48 03 4D 53 2D 45 41 53 2D 50 72 6F 76 69 73 69 6F 6E 69 6E 67 2D 57 42 58 4D 4C 00 01 ";

#endif
