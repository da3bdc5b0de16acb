#include "accounts/password_source.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "device/end_request.h"
#include "device/file_descriptor.h"

namespace deskwatch {
namespace {

constexpr char variable[] = "DESKWATCH_PASSWORD";
constexpr std::size_t longest = 1024;

/// Keeps the terminal from showing what is typed. A signal that ends the process first ends the input, so that the
/// terminal shows again what is typed.
class HiddenInput {
public:
    explicit HiddenInput(int terminal) : terminal_(terminal) {
        if (tcgetattr(terminal_, &old_) != 0) {
            throw std::runtime_error("cannot ask for the password: the terminal cannot hide it");
        }
        auto hidden = old_;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        hidden.c_lflag |= ECHONL;
        hidden.c_cc[VQUIT] = _POSIX_VDISABLE;
        hidden.c_cc[VSUSP] = _POSIX_VDISABLE;
        tcsetattr(terminal_, TCSAFLUSH, &hidden);
    }

    ~HiddenInput() {
        tcsetattr(terminal_, TCSAFLUSH, &old_);
        endRequest_.obey();
    }
    HiddenInput(const HiddenInput&) = delete;
    HiddenInput& operator=(const HiddenInput&) = delete;

    std::string line() const {
        std::string line;
        char character = 0;
        while (line.size() <= longest && isTyped() && read(terminal_, &character, 1) == 1 && character != '\n') {
            line += character;
        }
        return line;
    }

private:
    /// Waits for a key; false when a signal came instead.
    bool isTyped() const {
        std::array<pollfd, 2> ready{{{terminal_, POLLIN, 0}, {endRequest_.descriptor(), POLLIN, 0}}};
        while (!endRequest_.isNoted() && ready[0].revents == 0) {
            poll(ready.data(), ready.size(), -1);
        }
        return !endRequest_.isNoted();
    }

    int terminal_;
    termios old_{};
    EndRequest endRequest_;
};

void say(int terminal, const std::string& text) {
    if (write(terminal, text.data(), text.size()) < 0) {
        throw std::runtime_error("cannot ask for the password: the terminal is gone");
    }
}

std::string ask(const std::string& account) {
    const FileDescriptor terminal(open("/dev/tty", O_RDWR | O_CLOEXEC));
    if (!terminal.isOpen()) {
        throw std::runtime_error(std::string("there is no terminal to ask for the password; give it with "
                                             "--password-file FILE (- for standard input) or in ") +
                                 variable);
    }
    HiddenInput hidden(terminal.get()); // before the reader is asked to type
    say(terminal.get(), "Password of " + account + ": ");
    return hidden.line();
}

std::string firstLine(std::istream& stream, const std::string& file) {
    std::string line;
    if (!std::getline(stream, line)) {
        throw std::runtime_error("cannot read a password from " + file);
    }
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    return line;
}

std::string readFile(const std::string& file) {
    if (file == "-") {
        return firstLine(std::cin, "standard input");
    }
    std::ifstream stream(file, std::ios::binary);
    return firstLine(stream, file);
}

std::string checked(const std::string& password) {
    if (password.empty() || password.size() > longest) {
        throw std::runtime_error("the password is " + std::string(password.empty() ? "empty" : "too long"));
    }
    return password;
}

} // namespace

PasswordSource::PasswordSource(const std::string& file) {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    const char* const inherited = std::getenv(variable);
    const std::string given = inherited != nullptr ? inherited : "";
    unsetenv(variable);
    if (!file.empty()) {
        password_ = checked(readFile(file));
    } else if (inherited != nullptr) {
        password_ = checked(given);
    } else {
        isAsked_ = true;
    }
}

std::string PasswordSource::passwordOf(const std::string& account) {
    return isAsked_ ? checked(ask(account)) : password_;
}

} // namespace deskwatch
