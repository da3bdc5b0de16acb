#ifndef TESTS_C_TEXT_H
#define TESTS_C_TEXT_H

#include <cstdlib>
#include <memory>
#include <string>

struct CTextFree {
    void operator()(char* text) const { std::free(text); }
};

/// The content of a text that an API function handed over, which is released; "(null)" for none.
inline std::string taken(char* text) {
    const std::unique_ptr<char, CTextFree> owner(text);
    return text != nullptr ? text : "(null)";
}

#endif
