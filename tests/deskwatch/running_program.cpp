#include "running_program.h"

#include <gio/gunixinputstream.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace {

constexpr int lineTimeout = 20'000; // milliseconds

} // namespace

RunningProgram::RunningProgram(const std::vector<std::string>& arguments) {
    std::vector<const char*> line{DESKWATCH_PROGRAM};
    for (const auto& argument : arguments) {
        line.push_back(argument.c_str());
    }
    line.push_back(nullptr);
    GError* error = nullptr;
    process_.reset(g_subprocess_newv(line.data(), G_SUBPROCESS_FLAGS_STDOUT_PIPE, &error));
    if (process_ == nullptr) {
        throw std::runtime_error("cannot run deskwatch: " + c::takeMessage(error));
    }
}

RunningProgram::~RunningProgram() {
    g_subprocess_force_exit(process_.get());
    g_subprocess_wait(process_.get(), nullptr, nullptr);
}

bool RunningProgram::readMore() {
    const int output = g_unix_input_stream_get_fd(G_UNIX_INPUT_STREAM(g_subprocess_get_stdout_pipe(process_.get())));
    pollfd waiting{output, POLLIN, 0};
    if (poll(&waiting, 1, lineTimeout) <= 0) {
        throw std::runtime_error("deskwatch writes nothing; the unfinished line: " + unread_);
    }
    std::array<char, 4096> buffer{};
    const ssize_t length = read(output, buffer.data(), buffer.size());
    unread_.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    return length > 0;
}

std::string RunningProgram::nextLine() {
    auto end = unread_.find('\n');
    for (; end == std::string::npos; end = unread_.find('\n')) {
        if (!readMore()) {
            throw std::runtime_error("deskwatch has ended; the unfinished line: " + unread_);
        }
    }
    std::string line = unread_.substr(0, end);
    unread_.erase(0, end + 1);
    return line;
}

std::string RunningProgram::awaitLine(const std::function<bool(const std::string& line)>& condition) {
    std::string line = nextLine();
    while (!condition(line)) {
        line = nextLine();
    }
    return line;
}

int RunningProgram::waitForEnd() {
    while (readMore()) {
    }
    g_subprocess_wait(process_.get(), nullptr, nullptr);
    return g_subprocess_get_if_exited(process_.get()) != FALSE ? g_subprocess_get_exit_status(process_.get()) : -1;
}
