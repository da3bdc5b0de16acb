#include "program.h"

#include <stdexcept>

#include "c_owners.h"

Outcome deskwatchProgram(const std::vector<std::string>& arguments, const std::string& outputFile) {
    std::vector<const char*> line{DESKWATCH_PROGRAM};
    for (const auto& argument : arguments) {
        line.push_back(argument.c_str());
    }
    line.push_back(nullptr);
    const auto pipe = outputFile.empty() ? G_SUBPROCESS_FLAGS_STDOUT_PIPE : G_SUBPROCESS_FLAGS_NONE;
    const c::ObjectOwner<GSubprocessLauncher> launcher(
        g_subprocess_launcher_new(static_cast<GSubprocessFlags>(pipe | G_SUBPROCESS_FLAGS_STDERR_PIPE)));
    if (!outputFile.empty()) {
        g_subprocess_launcher_set_stdout_file_path(launcher.get(), outputFile.c_str());
    }
    GError* error = nullptr;
    const c::ObjectOwner<GSubprocess> process(g_subprocess_launcher_spawnv(launcher.get(), line.data(), &error));
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
