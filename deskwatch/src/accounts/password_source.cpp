#include "accounts/password_source.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "device/file_descriptor.h"

namespace deskwatch {
namespace {

constexpr char variable[] = "DESKWATCH_PASSWORD";
constexpr std::size_t longest = 1024;

/// Keeps the terminal from showing what is typed. Signals that would leave it so wait until it shows it again.
class HiddenInput {
public:
    explicit HiddenInput(int terminal) : terminal_(terminal) {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int number : {SIGINT, SIGTERM, SIGQUIT, SIGTSTP, SIGHUP}) {
            sigaddset(&signals, number);
        }
        sigprocmask(SIG_BLOCK, &signals, &oldSignals_);
        if (tcgetattr(terminal_, &old_) != 0) {
            sigprocmask(SIG_SETMASK, &oldSignals_, nullptr);
            throw std::runtime_error("cannot ask for the password: the terminal cannot hide it");
        }
        auto hidden = old_;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        hidden.c_lflag |= ECHONL;
        tcsetattr(terminal_, TCSAFLUSH, &hidden);
    }

    ~HiddenInput() {
        tcsetattr(terminal_, TCSAFLUSH, &old_);
        sigprocmask(SIG_SETMASK, &oldSignals_, nullptr);
    }
    HiddenInput(const HiddenInput&) = delete;
    HiddenInput& operator=(const HiddenInput&) = delete;

private:
    int terminal_;
    termios old_{};
    sigset_t oldSignals_{};
};

void say(int terminal, const std::string& text) {
    if (write(terminal, text.data(), text.size()) < 0) {
        throw std::runtime_error("cannot ask for the password: the terminal is gone");
    }
}

std::string readLine(int terminal) {
    std::string line;
    for (char character = 0; line.size() <= longest && read(terminal, &character, 1) == 1 && character != '\n';) {
        line += character;
    }
    return line;
}

std::string ask(const std::string& account) {
    const FileDescriptor terminal(open("/dev/tty", O_RDWR | O_CLOEXEC));
    if (!terminal.isOpen()) {
        throw std::runtime_error(std::string("there is no terminal to ask for the password; give it with "
                                             "--password-file FILE (- for standard input) or in ") +
                                 variable);
    }
    say(terminal.get(), "Password of " + account + ": ");
    const HiddenInput hidden(terminal.get());
    return readLine(terminal.get());
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
