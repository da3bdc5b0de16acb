#include "device/end_request.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <cstdlib>

namespace deskwatch {
namespace {

using ::testing::ExitedWithCode;
using ::testing::KilledBySignal;

[[noreturn]] void exitWith(bool isAsExpected) {
    std::_Exit(isAsExpected ? 0 : 1);
}

using Handler = void (*)(int);

Handler handlerOf(int signal) {
    struct sigaction set {};
    sigaction(signal, nullptr, &set);
    return set.sa_handler;
}

// Each in a process of its own: what a signal does belongs to the whole process.

TEST(EndRequest, SignalIsNotedAndObeyedLater) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const auto noteAndObey = [signal] {
            const EndRequest request;
            std::raise(signal);
            request.isNoted() ? request.obey() : exitWith(false);
        };
        EXPECT_EXIT(noteAndObey(), KilledBySignal(signal), "");
    }
}

TEST(EndRequest, SignalsDoAgainWhatTheyDidBefore) {
    const auto endRequest = [] {
        std::signal(SIGTERM, SIG_IGN);
        {
            const EndRequest request;
            if (handlerOf(SIGTERM) != SIG_IGN || handlerOf(SIGINT) == SIG_DFL) {
                exitWith(false);
            }
        }
        exitWith(handlerOf(SIGTERM) == SIG_IGN && handlerOf(SIGINT) == SIG_DFL && handlerOf(SIGHUP) == SIG_DFL);
    };
    EXPECT_EXIT(endRequest(), ExitedWithCode(0), "");
}

TEST(EndRequest, WakesTheMainLoopOnceAlsoWhenTheSignalCameFirst) {
    const auto wait = [] {
        EndRequest request;
        std::raise(SIGINT);
        int calls = 0;
        request.whenNoted([&calls] { ++calls; });
        g_main_context_iteration(nullptr, TRUE);
        g_main_context_iteration(nullptr, FALSE);
        exitWith(calls == 1);
    };
    EXPECT_EXIT(wait(), ExitedWithCode(0), "");
}

TEST(EndRequest, CanBePolledFromTheSignalOn) {
    const auto poll = [] {
        const EndRequest request;
        pollfd descriptor{request.descriptor(), POLLIN, 0};
        const int before = ::poll(&descriptor, 1, 0);
        std::raise(SIGHUP);
        exitWith(before == 0 && ::poll(&descriptor, 1, 0) == 1);
    };
    EXPECT_EXIT(poll(), ExitedWithCode(0), "");
}

} // namespace
} // namespace deskwatch
