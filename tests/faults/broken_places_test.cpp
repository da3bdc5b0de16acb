#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>

#include "no_root.h"
#include "process_limit.h"
#include "story_run.h"

namespace {

namespace fs = std::filesystem;

const FaultStory& storyNamed(const std::string& name) {
    return *std::find_if(faultStories().begin(), faultStories().end(),
                         [&](const FaultStory& story) { return story.story.name == name; });
}

std::string databaseOf(const FaultStory& story) {
    return harness::databaseWith(story.story.accounts);
}

/// A story on a watch whose data folder is not as it should be; no call is made to fail.
class BrokenPlace : public ::testing::Test {
protected:
    explicit BrokenPlace(const std::string& storyName = "FirstStart")
        : story(storyNamed(storyName)), run(story, databaseOf(story)) {
        std::signal(SIGXFSZ, SIG_IGN);
    }

    void makeFolder() const { fs::create_directory(folder); }

    /// Plays the story; it ends by itself, gives everything back and says what is wrong.
    void play(const std::string& warning) {
        run.play({});
        EXPECT_TRUE(run.end().isFinished()) << run.end().how();
        EXPECT_EQ(run.outcome().leaks, Outcome::Lines{});
        const auto& warnings = run.outcome().warnings;
        EXPECT_TRUE(std::any_of(warnings.begin(), warnings.end(), [&](const std::string& line) {
            return line.find(warning) != std::string::npos;
        })) << ::testing::PrintToString(warnings);
    }

    /// The place was repaired.
    void expectNextStartServes() { EXPECT_EQ(run.requestAfterRestart(), ""); }

    const FaultStory& story;
    StoryRun run;
    const fs::path database = run.databasePath();
    const fs::path folder = database.parent_path();
    const fs::path dataPath = folder.parent_path();
};

TEST_F(BrokenPlace, FileInPlaceOfTheFolder) {
    std::ofstream(folder) << "a file";
    play("sqlite3_open failed: [14]");
    fs::remove(folder);
    expectNextStartServes();
}

TEST_F(BrokenPlace, DanglingLinkInPlaceOfTheFolder) {
    fs::create_symlink("nowhere", folder);
    play("g_mkdir() failed!");
    fs::remove(folder);
    expectNextStartServes();
}

TEST_F(BrokenPlace, LinkToItselfInPlaceOfTheFolder) {
    fs::create_symlink(folder.filename(), folder);
    play("g_mkdir() failed!");
    fs::remove(folder);
    expectNextStartServes();
}

TEST_F(BrokenPlace, NoDataFolder) {
    fs::remove(dataPath);
    play("g_mkdir() failed!");
    fs::create_directory(dataPath);
    expectNextStartServes();
}

TEST_F(BrokenPlace, NoPermissionInTheDataFolder) {
    fs::permissions(dataPath, fs::perms(0555));
    {
        const NoRoot user;
        play("g_mkdir() failed!");
    }
    fs::permissions(dataPath, fs::perms(0755));
    expectNextStartServes();
}

TEST_F(BrokenPlace, FullDisk) {
    {
        const ProcessLimit disk(RLIMIT_FSIZE, 0);
        play("db create fail");
    }
    EXPECT_FALSE(fs::exists(database)) << "a database without a table would never be repaired";
    expectNextStartServes();
}

TEST_F(BrokenPlace, DiskThatFillsUpHalfway) {
    {
        const ProcessLimit disk(RLIMIT_FSIZE, 5000);
        play("db create fail");
    }
    EXPECT_FALSE(fs::exists(database));
    expectNextStartServes();
}

/// The same, where an account is stored and another one comes.
class BrokenPlaceWithRows : public BrokenPlace {
protected:
    BrokenPlaceWithRows() : BrokenPlace("StrongerSecondAccount") {}

    const harness::StoredRows rowsBefore = run.rows();
};

TEST_F(BrokenPlaceWithRows, FullDiskLosesNoRow) {
    {
        const ProcessLimit disk(RLIMIT_FSIZE, 0);
        play("db failure: disk I/O error");
    }
    EXPECT_EQ(run.rows(), rowsBefore);
    expectNextStartServes();
}

TEST_F(BrokenPlaceWithRows, DiskThatFillsUpHalfwayLosesNoRow) {
    {
        const ProcessLimit disk(RLIMIT_FSIZE, 5000);
        play("db failure: disk I/O error");
    }
    EXPECT_EQ(run.rows(), rowsBefore);
    expectNextStartServes();
}

TEST_F(BrokenPlaceWithRows, ReadOnlyDatabaseIsStillEnforced) {
    fs::permissions(dataPath.parent_path(), fs::perms(0755));
    fs::permissions(database, fs::perms(0444));
    fs::permissions(folder, fs::perms(0555));
    {
        const NoRoot user;
        play("db failure: attempt to write a readonly database");
    }
    EXPECT_EQ(run.outcome().settings().at("dpm_password_set_minimum_length"), "dpm_password_set_minimum_length 4");
    EXPECT_EQ(run.rows(), rowsBefore);
    fs::permissions(folder, fs::perms(0755));
    fs::permissions(database, fs::perms(0644));
    expectNextStartServes();
}

/// Where no file can be opened any more while the service runs.
TEST(BrokenPlaceWhileRunning, NoFileIsLeftToOpen) {
    if (FAULTS_RUN_EACH != 1) {
        GTEST_SKIP() << "a sanitizer opens files for checks of its own";
    }
    FaultStory story = storyNamed("StrongerSecondAccount");
    auto& event = story.story.events.front();
    event = [act = event](harness::Watch& watch) {
        const ProcessLimit files(RLIMIT_NOFILE, 3);
        act(watch);
    };
    StoryRun run(story, databaseOf(story));
    const auto rowsBefore = run.rows();
    run.play({});

    EXPECT_TRUE(run.end().isFinished()) << run.end().how();
    EXPECT_EQ(run.outcome().nextRequest, "");
    EXPECT_EQ(run.rows(), rowsBefore);
}

} // namespace
