#include "text/output_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <functional>

#include "temporary_folder.h"
#include "text/input_file.h"

namespace deskwatch {
namespace {

namespace fs = std::filesystem;

std::string failureOf(const std::function<void()>& action) {
    try {
        action();
        return "";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

TEST(OutputFile, ReplacesTheTextAndLeavesTheRest) {
    const TemporaryFolder folder;
    const auto file = folder.path() / "file";
    writeOutput(file, "old");
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(file, folder.path() / "link");
    fs::create_symlink(folder.path() / "new", folder.path() / "dangling");
    writeOutput(folder.path() / "link", "through a link");
    const auto mask = umask(022);
    writeOutput(folder.path() / "dangling", "new");
    umask(mask);

    EXPECT_TRUE(fs::is_symlink(folder.path() / "link"));
    EXPECT_EQ(readInput(file), "through a link");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(readInput(folder.path() / "new"), "new");
    EXPECT_EQ(static_cast<unsigned>(fs::status(folder.path() / "new").permissions()), 0644U);
}

TEST(OutputFile, PipeIsWrittenToAndWhatCannotBeWrittenStays) {
    const TemporaryFolder folder;
    const auto pipe = folder.path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const FileDescriptor reader(open(pipe.c_str(), O_RDONLY | O_NONBLOCK));
    writeOutput(pipe, "text");
    std::string read(4, ' ');
    EXPECT_EQ(::read(reader.get(), read.data(), read.size()), 4);
    EXPECT_EQ(read, "text");
    EXPECT_EQ(failureOf([&] { writeOutput(folder.path(), "text"); }),
              "cannot write " + folder.path().string() + ": Is a directory");
    EXPECT_EQ(failureOf([] { OutputFile("/dev/full").write("text"); }),
              "cannot write /dev/full: No space left on device");
}

} // namespace
} // namespace deskwatch
