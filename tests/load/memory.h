#ifndef LOAD_MEMORY_H
#define LOAD_MEMORY_H

#include <sys/types.h>

namespace load_test {

/// What a process holds, in KiB.
struct Memory {
    long resident = 0;
    long privateDirty = 0;
};

/// Throws std::runtime_error when it cannot be read.
Memory memoryOf(pid_t process);

} // namespace load_test

#endif
