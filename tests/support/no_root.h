#ifndef NO_ROOT_H
#define NO_ROOT_H

#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

/// Gives up root, for whom permissions do not count, for as long as the object lives.
class NoRoot {
public:
    NoRoot() {
        if (isRoot_ && seteuid(nobody) != 0) {
            throw std::runtime_error("root cannot be given up");
        }
    }
    ~NoRoot() {
        if (isRoot_ && seteuid(0) != 0) {
            std::abort();
        }
    }
    NoRoot(const NoRoot&) = delete;
    NoRoot& operator=(const NoRoot&) = delete;

private:
    static constexpr uid_t nobody = 65534;
    const bool isRoot_ = geteuid() == 0;
};

#endif
