#include "writing_calls.h"

#include <fcntl.h>
#include <sys/syscall.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace kill_points {

namespace {

using Names = WritingCall::Names;

/// The architectures differ in which of the older calls they have.
std::vector<WritingCall> allCalls() {
    std::vector<WritingCall> calls{
        {SYS_openat, "open", Names::Path, 1, 2},    {SYS_write, "write", Names::File, 0},
        {SYS_pwrite64, "write", Names::File, 0},    {SYS_writev, "write", Names::File, 0},
        {SYS_pwritev, "write", Names::File, 0},     {SYS_fsync, "sync", Names::File, 0},
        {SYS_fdatasync, "sync", Names::File, 0},    {SYS_ftruncate, "truncate", Names::File, 0},
        {SYS_truncate, "truncate", Names::Path, 0}, {SYS_fallocate, "allocate", Names::File, 0},
        {SYS_renameat, "rename", Names::Path, 1},   {SYS_renameat2, "rename", Names::Path, 1},
        {SYS_unlinkat, "unlink", Names::Path, 1},   {SYS_mkdirat, "mkdir", Names::Path, 1},
        {SYS_fchmodat, "chmod", Names::Path, 1},    {SYS_fchmod, "chmod", Names::File, 0},
        {SYS_fchown, "chown", Names::File, 0},
    };
#ifdef SYS_open
    calls.insert(calls.end(), {{SYS_open, "open", Names::Path, 0, 1},
                               {SYS_rename, "rename", Names::Path, 0},
                               {SYS_unlink, "unlink", Names::Path, 0},
                               {SYS_mkdir, "mkdir", Names::Path, 0},
                               {SYS_rmdir, "rmdir", Names::Path, 0},
                               {SYS_chmod, "chmod", Names::Path, 0}});
#endif
#ifdef SYS_ftruncate64
    calls.insert(calls.end(), {{SYS_ftruncate64, "truncate", Names::File, 0},
                               {SYS_truncate64, "truncate", Names::Path, 0},
                               {SYS_fchown32, "chown", Names::File, 0}});
#endif
    return calls;
}

/// The text at an address of the stopped thread.
std::string textAt(pid_t thread, std::uint64_t address) {
    std::ifstream memory("/proc/" + std::to_string(thread) + "/mem", std::ios::binary);
    memory.seekg(static_cast<std::streamoff>(address));
    std::string text;
    std::getline(memory, text, '\0');
    return text;
}

std::string openFile(pid_t thread, std::uint64_t descriptor) {
    const auto link = "/proc/" + std::to_string(thread) + "/fd/" + std::to_string(static_cast<int>(descriptor));
    std::error_code unknown;
    return std::filesystem::read_symlink(link, unknown);
}

bool mayWrite(const WritingCall& call, const PendingCall& pending) {
    constexpr std::uint64_t writing = O_WRONLY | O_RDWR | O_CREAT | O_TRUNC;
    return !call.flags || (pending.arguments.at(*call.flags) & writing) != 0;
}

} // namespace

const std::vector<WritingCall>& writingCalls() {
    static const std::vector<WritingCall> calls = allCalls();
    return calls;
}

std::optional<std::string> stepBelow(const std::string& folder, const PendingCall& pending) {
    const auto& calls = writingCalls();
    const auto call = std::find_if(calls.begin(), calls.end(), [&](const WritingCall& candidate) {
        return static_cast<std::uint64_t>(candidate.number) == pending.number;
    });
    if (call == calls.end() || !mayWrite(*call, pending)) {
        return std::nullopt;
    }
    const auto argument = pending.arguments.at(call->argument);
    const auto file =
        call->names == Names::Path ? textAt(pending.thread, argument) : openFile(pending.thread, argument);
    const std::string below = folder + "/";
    if (file.compare(0, below.size(), below) != 0) {
        return std::nullopt;
    }
    return std::string(call->name) + " " + file.substr(below.size());
}

} // namespace kill_points
