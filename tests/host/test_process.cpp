#include "test_process.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "host_bus.h"
#include "main_loop.h"

namespace {

std::filesystem::path newFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "process-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot make a temporary folder " + pattern);
    }
    return pattern;
}

std::string contentOf(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

void setTrue(GObject* process, GAsyncResult* result, gpointer flag) {
    if (g_subprocess_wait_finish(G_SUBPROCESS(process), result, nullptr)) {
        *static_cast<bool*>(flag) = true;
    }
}

} // namespace

TestProcess::TestProcess(const std::vector<std::string>& command, const std::string& applicationId)
    : folder_(newFolder()) {
    const c::ObjectOwner<GSubprocessLauncher> launcher(g_subprocess_launcher_new(G_SUBPROCESS_FLAGS_NONE));
    g_subprocess_launcher_set_stdout_file_path(launcher.get(), (folder_ / "output").c_str());
    g_subprocess_launcher_set_stderr_file_path(launcher.get(), (folder_ / "errors").c_str());
    if (applicationId.empty()) {
        g_subprocess_launcher_unsetenv(launcher.get(), host_bus::appIdVariable);
    } else {
        g_subprocess_launcher_setenv(launcher.get(), host_bus::appIdVariable, applicationId.c_str(), TRUE);
    }
    std::vector<const char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& argument : command) {
        arguments.push_back(argument.c_str());
    }
    arguments.push_back(nullptr);
    g_autoptr(GError) error = nullptr;
    process_.reset(g_subprocess_launcher_spawnv(launcher.get(), arguments.data(), &error));
    if (process_ == nullptr) {
        throw std::runtime_error("cannot start " + command.at(0) + ": " + error->message);
    }
    g_subprocess_wait_async(process_.get(), nullptr, setTrue, &hasEnded_);
}

TestProcess::~TestProcess() {
    g_subprocess_force_exit(process_.get());
    while (!hasEnded_) {
        g_main_context_iteration(nullptr, TRUE);
    }
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

bool TestProcess::ended() {
    return runMainLoopUntil([this] { return hasEnded_; });
}

bool TestProcess::said(const std::string& text) const {
    return runMainLoopUntil([&] { return errors().find(text) != std::string::npos; });
}

void TestProcess::sendSignal(int signal) {
    g_subprocess_send_signal(process_.get(), signal);
}

int TestProcess::status() const {
    return g_subprocess_get_if_exited(process_.get()) ? g_subprocess_get_exit_status(process_.get()) : -1;
}

std::string TestProcess::output() const {
    return contentOf(folder_ / "output");
}

std::string TestProcess::errors() const {
    return contentOf(folder_ / "errors");
}
