#include "child.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace {

constexpr unsigned limitSeconds = 20;

[[noreturn]] void work(const std::function<std::string()>& function, int out) {
    alarm(limitSeconds);
    const std::string text = function();
    std::size_t written = 0;
    while (written < text.size()) {
        const auto size = write(out, text.data() + written, text.size() - written);
        if (size <= 0) {
            _exit(EXIT_FAILURE);
        }
        written += static_cast<std::size_t>(size);
    }
    _exit(EXIT_SUCCESS); // nothing of the parent's is to be torn down here
}

std::string readAll(int in) {
    std::string text;
    std::array<char, 65536> buffer{};
    for (;;) {
        const auto size = read(in, buffer.data(), buffer.size());
        if (size <= 0) {
            return text;
        }
        text.append(buffer.data(), static_cast<std::size_t>(size));
    }
}

} // namespace

std::string ChildEnd::how() const {
    return WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                               : "exit " + std::to_string(WEXITSTATUS(status));
}

ChildEnd runInChild(const std::function<std::string()>& function) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        throw std::runtime_error("child: no pipe");
    }
    const pid_t child = fork();
    if (child < 0) {
        throw std::runtime_error("child: no process");
    }
    if (child == 0) {
        close(ends[0]);
        work(function, ends[1]);
    }
    close(ends[1]);
    ChildEnd end;
    end.text = readAll(ends[0]);
    close(ends[0]);
    waitpid(child, &end.status, 0);
    return end;
}
