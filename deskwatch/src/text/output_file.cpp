#include "text/output_file.h"

#include <fcntl.h>
#include <gio/gio.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "c_owners.h"
#include "text/text_table.h"

namespace deskwatch {
namespace {

[[noreturn]] void failToWrite(const std::string& name, const std::string& reason) {
    throw std::runtime_error("cannot write " + name + ": " + reason);
}

/// Whether the name means what this process writes to already, as /dev/stdout does. To exchange or to empty that would
/// lose what comes later.
bool isStandardOutput(const std::string& file) {
    struct stat found {};
    struct stat opened {};
    return file == standardOutput || (stat(file.c_str(), &found) == 0 && fstat(STDOUT_FILENO, &opened) == 0 &&
                                      found.st_dev == opened.st_dev && found.st_ino == opened.st_ino);
}

} // namespace

/// The libraries ignore the signal once the process has a connection.
void endByBrokenPipe() {
    std::signal(SIGPIPE, SIG_DFL);
    std::raise(SIGPIPE);
}

std::string outputName(const std::string& file) {
    return file == standardOutput ? "standard output" : printable(file);
}

OutputFile::OutputFile(const std::string& file)
    : name_(outputName(file)),
      opened_(file == standardOutput ? fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0)
                                     : open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {
    if (!opened_.isOpen()) {
        failToWrite(name_, std::strerror(errno));
    }
}

void OutputFile::write(std::string_view text) const {
    while (!text.empty()) {
        const auto written = ::write(opened_.get(), text.data(), text.size());
        if (written < 0 && errno == EPIPE) {
            endByBrokenPipe();
        }
        if (written < 0 && errno != EINTR) {
            failToWrite(name_, std::strerror(errno));
        }
        text.remove_prefix(static_cast<std::size_t>(written > 0 ? written : 0));
    }
}

void OutputFile::requireReader() const {
    pollfd output{opened_.get(), 0, 0};
    if (poll(&output, 1, 0) == 1 && (output.revents & POLLERR) != 0) {
        endByBrokenPipe();
    }
}

void writeOutput(const std::string& file, const std::string& text) {
    const bool isOpen = isStandardOutput(file);
    std::error_code missing; // opening creates it, even at the end of a link, or tells why not
    if (isOpen || !std::filesystem::is_regular_file(file, missing)) {
        OutputFile(isOpen ? standardOutput : file).write(text);
        return;
    }
    const auto target = std::filesystem::canonical(file); // a link itself would be written in place
    const c::ObjectOwner<GFile> replaced(g_file_new_for_path(target.c_str()));
    GError* error = nullptr;
    if (g_file_replace_contents(replaced.get(), text.data(), text.size(), nullptr, FALSE, G_FILE_CREATE_NONE, nullptr,
                                nullptr, &error) == FALSE) {
        failToWrite(outputName(file), c::takeMessage(error));
    }
}

} // namespace deskwatch
