#ifndef DESKWATCH_FILE_DESCRIPTOR_H
#define DESKWATCH_FILE_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace deskwatch {

/// Owns a file descriptor and closes it.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : number_(number) {}
    ~FileDescriptor() {
        if (number_ >= 0) {
            close(number_);
        }
    }
    FileDescriptor(FileDescriptor&& other) noexcept : number_(other.release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int get() const { return number_; }
    bool isOpen() const { return number_ >= 0; }

    /// Gives the descriptor away: the caller closes it.
    int release() { return std::exchange(number_, -1); }

private:
    int number_ = -1;
};

} // namespace deskwatch

#endif
