#include "commands/output.h"

#include <fcntl.h>
#include <glib-unix.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <stdexcept>

#include "text/output_file.h"

namespace deskwatch {
namespace {

gboolean onReaderGone(int /*descriptor*/, GIOCondition /*condition*/, gpointer /*data*/) {
    endByBrokenPipe();
    return G_SOURCE_CONTINUE;
}

/// What failed in the middle of the output left its reason behind; the next line break fails for the same one.
int reasonToFail() {
    return write(STDOUT_FILENO, "\n", 1) == -1 ? errno : 0;
}

} // namespace

void reserveOutput() {
    if (fcntl(STDOUT_FILENO, F_GETFD) == -1 && errno == EBADF) {
        const int unwritable = open("/dev/null", O_RDONLY); // gets the lowest number that is free
        if (unwritable != -1 && unwritable != STDOUT_FILENO) {
            dup2(unwritable, STDOUT_FILENO);
        }
    }
}

void flushOutput() {
    errno = 0;
    std::cout.flush();
    if (std::fflush(stdout) == 0 && std::cout) {
        return;
    }
    const int reason = errno != 0 ? errno : reasonToFail();
    if (reason == EPIPE) {
        endByBrokenPipe();
    }
    throw OutputLost(std::string("cannot write the output: ") +
                     (reason != 0 ? std::strerror(reason) : "a part of it is lost"));
}

void endWithReader() {
    g_unix_fd_add(STDOUT_FILENO, G_IO_ERR, onReaderGone, nullptr);
}

void flushFollowed() {
    try {
        flushOutput();
    } catch (const std::exception& error) {
        std::cerr << "deskwatch: " << error.what() << '\n' << std::flush;
        std::_Exit(EXIT_FAILURE);
    }
}

} // namespace deskwatch
