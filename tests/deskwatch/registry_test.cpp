#include "device/registry.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <future>
#include <iterator>

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

TEST(Registry, AnnouncedWatchIsListedAndIsNotTheNewest) {
    const TemporaryFolder folder;
    const Registry registry(folder.path());
    registry.add("/tmp/first");
    EXPECT_TRUE(registry.announce("/tmp/second"));
    EXPECT_FALSE(registry.announce("/tmp/second"));
    EXPECT_EQ(registry.folders(), (std::vector<std::filesystem::path>{"/tmp/second", "/tmp/first"}));
}

TEST(Registry, DamagedLinesGoWithTheNextChange) {
    const TemporaryFolder folder;
    std::ofstream(folder.path() / "watches") << "\n/tmp/first\nirst\n/tmp/\x01\n/tmp/\xff\n/tmp/./x\n";
    const Registry registry(folder.path());
    EXPECT_EQ(registry.folders(), std::vector<std::filesystem::path>{"/tmp/first"});
    registry.add("/tmp/second");
    std::ifstream list(folder.path() / "watches");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(list), {}), "/tmp/first\n/tmp/second\n");
}

TEST(Registry, ListThatCannotBeKeptIsToldWithItsPlace) {
    const Registry registry("/proc/nowhere");
    registry.remove("/tmp/unknown");
    try {
        registry.add("/tmp/first");
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find("/proc/nowhere: "), std::string::npos) << error.what();
        EXPECT_NE(std::string(error.what()).find("XDG_STATE_HOME"), std::string::npos) << error.what();
    }
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
