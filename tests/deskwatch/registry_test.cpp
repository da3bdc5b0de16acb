#include "device/registry.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <future>

#include "temporary_folder.h"

namespace deskwatch {
namespace {

TEST(Registry, KnowsNoWatchAtFirst) {
    EXPECT_FALSE(Registry("/nowhere").newest());
}

TEST(Registry, WatchThatWasAddedLastIsTheNewest) {
    const TemporaryFolder folder;
    const Registry registry(folder.path() / "deskwatch");
    registry.add("/tmp/first");
    registry.add("/tmp/second");
    EXPECT_EQ(registry.newest(), "/tmp/second");
}

TEST(Registry, WatchThatIsBootedAgainBecomesTheNewest) {
    const TemporaryFolder folder;
    const Registry registry(folder.path());
    registry.add("/tmp/first");
    registry.add("/tmp/second");
    registry.add("/tmp/first");
    EXPECT_EQ(registry.newest(), "/tmp/first");
    registry.remove("/tmp/first");
    EXPECT_EQ(registry.newest(), "/tmp/second");
}

TEST(Registry, WatchBeforeARemovedOneIsTheNewest) {
    const TemporaryFolder folder;
    const Registry registry(folder.path());
    registry.add("/tmp/first");
    registry.add("/tmp/second");
    registry.remove("/tmp/second");
    EXPECT_EQ(registry.newest(), "/tmp/first");
    registry.remove("/tmp/first");
    EXPECT_FALSE(registry.newest());
}

TEST(Registry, WatchesThatAreAddedAtTheSameTimeAllStay) {
    constexpr std::size_t threads = 4;
    constexpr std::size_t each = 25;
    const TemporaryFolder folder;
    const Registry registry(folder.path());
    std::vector<std::future<void>> adding;
    adding.reserve(threads);
    for (std::size_t thread = 0; thread < threads; ++thread) {
        adding.push_back(std::async(std::launch::async, [&registry, thread] {
            for (std::size_t watch = 0; watch < each; ++watch) {
                registry.add("/tmp/" + std::to_string(thread * each + watch));
            }
        }));
    }
    adding.clear(); // waits
    EXPECT_EQ(registry.folders().size(), threads * each);
}

TEST(Registry, OfTheUserIsInTheStateFolder) {
    const TemporaryFolder folder;
    setenv("XDG_STATE_HOME", folder.path().c_str(), 1);
    EXPECT_EQ(Registry::ofUser().defaultDevice(), folder.path() / "deskwatch" / "watch");
}

TEST(Registry, OfAUserWithoutStateFolderIsInTheHomeFolder) {
    unsetenv("XDG_STATE_HOME");
    setenv("HOME", "/home/someone", 1);
    EXPECT_EQ(Registry::ofUser().defaultDevice(), "/home/someone/.local/state/deskwatch/watch");
}

} // namespace
} // namespace deskwatch
