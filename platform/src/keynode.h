#ifndef PLATFORM_KEYNODE_H
#define PLATFORM_KEYNODE_H

#include <optional>
#include <string>

/// What a keynode handle points at: a key and the value that it has now.
struct _keynode_t {
    std::string name;
    std::optional<int> number;
    std::optional<std::string> text;
};

#endif
