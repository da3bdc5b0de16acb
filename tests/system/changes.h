#ifndef TESTS_SYSTEM_CHANGES_H
#define TESTS_SYSTEM_CHANGES_H

#include <chrono>
#include <functional>

#include "device/device_layout.h"
#include "device/file_descriptor.h"

namespace system_test {

/// Notices when something happens on a watch: its log grows or its settings change. Needs no main loop, so that a test
/// may wait while the bus goes away.
class Changes {
public:
    using Condition = std::function<bool()>;

    explicit Changes(const deskwatch::DeviceLayout& layout);

    /// Waits until the condition holds, looking at it now and again at every change. False when it does not hold in
    /// time.
    bool waitUntil(const Condition& condition, std::chrono::milliseconds atMost) const;

private:
    void device(const std::filesystem::path& path, std::uint32_t events) const;
    bool waitForChange(std::chrono::steady_clock::time_point deadline) const;

    deskwatch::FileDescriptor events_;
};

} // namespace system_test

#endif
