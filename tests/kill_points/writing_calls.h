#ifndef KILL_POINTS_WRITING_CALLS_H
#define KILL_POINTS_WRITING_CALLS_H

#include <sys/types.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kill_points {

/// A system call that may change a file, and the argument that tells which.
struct WritingCall {
    enum class Names { File, Path };

    long number;
    const char* name;
    Names names;
    std::size_t argument;
    /// The argument with the flags of an open, which writes only with some of them.
    std::optional<std::size_t> flags = std::nullopt;
};

/// All that this architecture has.
const std::vector<WritingCall>& writingCalls();

/// A system call as a stopped thread is about to make it.
struct PendingCall {
    pid_t thread;
    std::uint64_t number;
    std::array<std::uint64_t, 6> arguments;
};

/// What the call does to a file below the folder ("unlink dbspace/.tesk.db-journal"); nothing when it leaves them
/// alone.
std::optional<std::string> stepBelow(const std::string& folder, const PendingCall& pending);

} // namespace kill_points

#endif
