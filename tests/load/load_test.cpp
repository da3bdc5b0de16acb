#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "device/process_handle.h"
#include "memory.h"
#include "traffic.h"

namespace load_test {
namespace {

using Clock = std::chrono::steady_clock;

/// What an allocator may scatter and its caches may gather after the warm-up.
constexpr long allowedGrowth = 1024; // KiB

/// Whether a checker holds memory of its own beside the service's and keeps what was freed for a while.
bool isChecked() {
#ifdef TESK_SANITIZED
    return true;
#else
    return std::getenv("TESK_TEST_SERVICE") != nullptr;
#endif
}

/// How many requests are sent in one go. They must be handled before the service takes itself for idle.
int requestsAtOnce() {
    return isChecked() ? 20 : 100;
}

/// A number of the environment, for the runs by hand.
int wanted(const char* variable, int otherwise) {
    const char* text = std::getenv(variable);
    return text != nullptr ? std::atoi(text) : otherwise;
}

/// A folder in memory where there is one, so that no disk is worn out.
std::string scratch() {
    return access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
}

double secondsSince(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

void expectFlat(const Memory& before, const Memory& after) {
    std::printf("memory after the warm-up: %ld KiB resident, %ld KiB private dirty\n", before.resident,
                before.privateDirty);
    std::printf("memory at the end:        %ld KiB resident, %ld KiB private dirty\n", after.resident,
                after.privateDirty);
    if (!isChecked()) {
        EXPECT_LE(after.privateDirty - before.privateDirty, allowedGrowth);
        EXPECT_LE(after.resident - before.resident, allowedGrowth);
    }
}

/// Sends so many requests and checks them in portions. Nobody launches the service meanwhile: the keys that it writes
/// for the updates among them start its ten seconds anew.
void sendInPortions(Traffic& traffic, int requests) {
    while (requests > 0 && !testing::Test::HasFailure()) {
        const int portion = std::min(requests, requestsAtOnce());
        traffic.send(portion);
        traffic.settleAndCheck();
        requests -= portion;
    }
}

TEST(Load, NothingIsLostReorderedOrKept) {
    const int requests = wanted("TESK_LOAD_REQUESTS", 5000);
    const system_test::TestDevice device({}, scratch());
    device.launchService();
    device.waitForLog("__onNameAcquired");
    const pid_t service = device.servicePid();
    Traffic traffic(device);
    const auto begin = Clock::now();

    sendInPortions(traffic, requests / 5);
    const Memory before = memoryOf(service);
    sendInPortions(traffic, requests - requests / 5);

    const Memory after = memoryOf(service);
    const double seconds = secondsSince(begin);
    std::printf("%d requests in %.0f s, %.0f in a second\n", traffic.sent(), seconds, traffic.sent() / seconds);
    expectFlat(before, after);
    EXPECT_EQ(device.servicePid(), service) << "it served all of them";
}

/// Ends the service in the middle of what was sent.
void endInTheMiddle(const system_test::TestDevice& device, int signal) {
    const auto process = deskwatch::ProcessHandle::open(device.servicePid());
    ASSERT_TRUE(process);
    process->signal(signal);
    ASSERT_TRUE(process->waitForEnd(std::chrono::seconds(30)));
    while (device.isServiceRunning()) {
        // the bus has yet to see that its connection is gone
    }
}

TEST(Soak, EveryStartFindsWhatWasStored) {
    const auto time = std::chrono::minutes(wanted("TESK_SOAK_MINUTES", 0));
    constexpr int fewestRounds = 10;
    const system_test::TestDevice device({}, scratch());
    device.launchService();
    device.waitForLog("__onNameAcquired");
    Traffic traffic(device);
    std::minstd_rand random(7);
    const auto begin = Clock::now();

    int rounds = 0;
    for (; (rounds < fewestRounds || Clock::now() - begin < time) && !testing::Test::HasFailure(); ++rounds) {
        sendInPortions(traffic, requestsAtOnce());
        traffic.send(static_cast<int>(random() % static_cast<unsigned>(requestsAtOnce())));
        endInTheMiddle(device, rounds % 2 == 0 ? SIGKILL : SIGTERM);
        device.launchService();
        device.waitForLog("__onNameAcquired");
        traffic.checkAfterRestart();
    }

    std::printf("%d ends and starts, %d requests in %.0f s\n", rounds, traffic.sent(), secondsSince(begin));
}

} // namespace
} // namespace load_test
