#include "fuzz_target.h"

#include <cstdlib>
#include <iostream>

void fuzz::require(bool holds, const std::string& what) {
    if (!holds) {
        std::cerr << "does not hold: " << what << '\n';
        std::abort();
    }
}
