#include "program.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

#include "c_owners.h"

namespace {

Outcome outcomeOf(GSubprocessLauncher* launcher, const std::vector<std::string>& arguments) {
    std::vector<const char*> line{DESKWATCH_PROGRAM};
    for (const auto& argument : arguments) {
        line.push_back(argument.c_str());
    }
    line.push_back(nullptr);
    GError* error = nullptr;
    const c::ObjectOwner<GSubprocess> process(g_subprocess_launcher_spawnv(launcher, line.data(), &error));
    char* output = nullptr;
    char* errors = nullptr;
    if (process == nullptr ||
        g_subprocess_communicate_utf8(process.get(), nullptr, nullptr, &output, &errors, &error) == FALSE) {
        throw std::runtime_error("cannot run deskwatch: " + c::takeMessage(error));
    }
    const c::MemoryOwner<char> outputOwner(output);
    const c::MemoryOwner<char> errorsOwner(errors);
    const bool isExited = g_subprocess_get_if_exited(process.get()) != FALSE;
    return {isExited ? g_subprocess_get_exit_status(process.get()) : -1, output != nullptr ? output : "", errors};
}

c::ObjectOwner<GSubprocessLauncher> newLauncher(int flags) {
    return c::ObjectOwner<GSubprocessLauncher>(
        g_subprocess_launcher_new(static_cast<GSubprocessFlags>(flags | G_SUBPROCESS_FLAGS_STDERR_PIPE)));
}

} // namespace

Outcome deskwatchProgram(const std::vector<std::string>& arguments, const std::string& outputFile) {
    const auto launcher = newLauncher(outputFile.empty() ? G_SUBPROCESS_FLAGS_STDOUT_PIPE : G_SUBPROCESS_FLAGS_NONE);
    if (!outputFile.empty()) {
        g_subprocess_launcher_set_stdout_file_path(launcher.get(), outputFile.c_str());
    }
    return outcomeOf(launcher.get(), arguments);
}

Outcome deskwatchWithoutReader(const std::vector<std::string>& arguments) {
    const auto launcher = newLauncher(G_SUBPROCESS_FLAGS_NONE);
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("cannot make a pipe");
    }
    close(ends[0]);
    g_subprocess_launcher_take_stdout_fd(launcher.get(), ends[1]);
    return outcomeOf(launcher.get(), arguments);
}
