#include "child_process.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <exception>
#include <iostream>
#include <stdexcept>

namespace harness {

namespace {

void require(bool works, const char* what) {
    if (!works) {
        throw std::runtime_error(std::string("cannot ") + what + ": " + std::strerror(errno));
    }
}

void writeAll(int out, const std::string& text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const auto size = write(out, text.data() + written, text.size() - written);
        require(size > 0, "write to the parent");
        written += static_cast<std::size_t>(size);
    }
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
                               : "exit " + std::to_string(WEXITSTATUS(status)) + " " + text;
}

int startChild(const std::function<void()>& function) {
    std::cout << std::flush; // or the child would write it once more
    const pid_t child = fork();
    require(child != -1, "start a process");
    if (child != 0) {
        return child;
    }
    int status = EXIT_SUCCESS;
    try {
        function();
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        status = EXIT_FAILURE;
    }
    std::cout << std::flush;
    _exit(status);
}

ChildEnd runInChild(const std::function<std::string()>& function) {
    static constexpr unsigned limitSeconds = 20;
    std::array<int, 2> ends{};
    require(pipe(ends.data()) == 0, "make a pipe");
    const pid_t child = startChild([&] {
        close(ends[0]);
        alarm(limitSeconds);
        try {
            writeAll(ends[1], function());
        } catch (const std::exception& error) {
            writeAll(ends[1], error.what());
            throw;
        }
    });
    close(ends[1]);
    ChildEnd end;
    end.text = readAll(ends[0]);
    close(ends[0]);
    waitpid(child, &end.status, 0);
    return end;
}

} // namespace harness
