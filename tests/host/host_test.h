#ifndef HOST_TEST_H
#define HOST_TEST_H

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "main_loop.h"
#include "private_device.h"
#include "test_process.h"

/// A test with a device of its own. The test's process is the application deskId; appId and keeperId can be started
/// by the bus daemon, or by hand; brokenId is one that fails to start.
///
/// A test that ends the bus must not have used the platform itself: its own process would end too.
class HostTest : public testing::Test {
protected:
    static constexpr char deskId[] = "com.example.desk";
    static constexpr char appId[] = "com.example.app";
    static constexpr char keeperId[] = "com.example.keeper";
    static constexpr char brokenId[] = "com.example.broken";

    HostTest();

    PrivateDevice& device() { return device_; }

    /// Starts the test application as appId, by hand.
    static std::unique_ptr<TestProcess> start(const std::vector<std::string>& arguments);

    /// Runs the test application as deskId to its end.
    static std::unique_ptr<TestProcess> run(const std::vector<std::string>& arguments);

    /// Waits for a text in what the applications wrote that the bus daemon started.
    [[nodiscard]] bool logged(const std::string& text) const;

private:
    PrivateDevice device_{deskId};
};

/// How often a text occurs in another.
std::size_t occurrences(const std::string& text, const std::string& part);

/// Sends a signal to all on the bus, as any process of the device can. Consumes floating arguments.
void emitSignal(const char* path, const char* interface, const char* signal, GVariant* arguments);

/// Writes a setting, or removes what is below a folder, as any process of the device can. Consumes a floating value.
void writeSetting(const std::string& path, GVariant* value);

#endif
