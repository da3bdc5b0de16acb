#ifndef DESKWATCH_DEADLINE_H
#define DESKWATCH_DEADLINE_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "c_owners.h"

namespace deskwatch {

/// Cancels what takes too long, for calls of GIO that block and have no time-out of their own.
class Deadline {
public:
    /// The time begins now.
    explicit Deadline(std::chrono::milliseconds atMost);
    ~Deadline();
    Deadline(const Deadline&) = delete;
    Deadline& operator=(const Deadline&) = delete;

    GCancellable* cancellable() const { return cancellable_.get(); }

private:
    c::ObjectOwner<GCancellable> cancellable_;
    std::mutex mutex_;
    std::condition_variable ended_;
    bool isEnded_ = false;
    std::thread clock_; // the last member: it uses the others
};

} // namespace deskwatch

#endif
