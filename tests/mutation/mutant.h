#ifndef TESK_MUTANT_H
#define TESK_MUTANT_H

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

// A watch hands variables of the beginning "LC_" to its applications, so that the changes are in force there too.

/// The changes that a process has come by, one byte each, in the file that the environment names; null without one.
inline char* teskReachedMutants() {
    const char* const path = std::getenv("LC_TESK_MUTATION_TRACE");
    const int file = path != nullptr ? open(path, O_RDWR) : -1;
    if (file < 0) {
        return nullptr;
    }
    const off_t size = lseek(file, 0, SEEK_END);
    void* const memory = mmap(nullptr, static_cast<std::size_t>(size), PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    return memory != MAP_FAILED ? static_cast<char*>(memory) : nullptr;
}

/// Whether the small wrong change of this number is in force: one per process, or none. Allocates nothing, since the
/// tests count allocations.
inline bool teskMutant(int number) {
    static const char* const chosen = std::getenv("LC_TESK_MUTANT");
    static const int chosenNumber = chosen != nullptr ? std::atoi(chosen) : 0;
    static char* const reached = teskReachedMutants();
    if (reached != nullptr) {
        reached[number] = 1;
    }
    return number == chosenNumber;
}

#endif
