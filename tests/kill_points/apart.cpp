#include "apart.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iostream>
#include <stdexcept>

namespace kill_points {

namespace {

/// How many expectations of the running test have not held, those of the parent before the fork included.
int failures() {
    return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

} // namespace

void endAfter(const Body& body) {
    int status = failed;
    try {
        const int before = failures();
        const int result = body();
        status = failures() == before ? result : failed;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
    }
    std::cout << std::flush;
    std::fflush(stdout);
    _exit(status);
}

int runApart(const Body& body) {
    std::cout << std::flush;
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == -1) {
        throw std::runtime_error(std::string("cannot start a process: ") + std::strerror(errno));
    }
    if (child == 0) {
        endAfter(body);
    }
    int status = 0;
    while (waitpid(child, &status, 0) == -1 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : failed;
}

} // namespace kill_points
