#include "device/deadline.h"

namespace deskwatch {

Deadline::Deadline(std::chrono::milliseconds atMost)
    : cancellable_(g_cancellable_new()), clock_([this, atMost] {
          std::unique_lock<std::mutex> lock(mutex_);
          if (!ended_.wait_for(lock, atMost, [this] { return isEnded_; })) {
              g_cancellable_cancel(cancellable_.get());
          }
      }) {}

Deadline::~Deadline() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        isEnded_ = true;
    }
    ended_.notify_one();
    clock_.join();
}

} // namespace deskwatch
