#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>

#include "commands_fixture.h"
#include "device/file_descriptor.h"
#include "running_program.h"

namespace deskwatch {
namespace {

/// The deskwatch program at a terminal of its own.
class AtTerminal {
public:
    explicit AtTerminal(const std::vector<std::string>& arguments) {
        std::vector<std::string> words{DESKWATCH_PROGRAM};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::vector<char*> line;
        line.reserve(words.size() + 1);
        for (auto& word : words) {
            line.push_back(word.data());
        }
        line.push_back(nullptr);
        int terminal = -1;
        process_ = forkpty(&terminal, nullptr, nullptr, nullptr);
        if (process_ == 0) {
            alarm(timeout.count()); // a prompt that nobody answers
            execv(line.front(), line.data());
            _exit(127);
        }
        terminal_ = FileDescriptor(terminal);
    }

    /// Reads what it writes until these words have come, or until it ends.
    void readUntil(const std::string& words) {
        std::array<char, 512> part{};
        while (shown_.find(words) == std::string::npos) {
            const auto size = read(terminal_.get(), part.data(), part.size());
            if (size <= 0) {
                return;
            }
            shown_.append(part.data(), static_cast<std::size_t>(size));
        }
    }

    bool showsWhatIsTyped() const {
        termios mode{};
        tcgetattr(terminal_.get(), &mode);
        return (mode.c_lflag & static_cast<tcflag_t>(ECHO)) != 0;
    }

    void type(const std::string& text) const {
        EXPECT_EQ(write(terminal_.get(), text.data(), text.size()), text.size());
    }

    int waitForEnd() {
        readUntil("no program writes this");
        int status = -1;
        waitpid(process_, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    const std::string& shown() const { return shown_; }

private:
    pid_t process_ = -1;
    FileDescriptor terminal_;
    std::string shown_;
};

class PasswordPrompt : public Commands {};

TEST_F(PasswordPrompt, PasswordIsTypedUnseen) {
    boot();
    RunningProgram server({"exchange", "serve", sample("provision-hardened.xml")});
    const auto listening = server.nextLine();
    unsetenv("DESKWATCH_PASSWORD");
    AtTerminal connect({"mail", "connect", listening.substr(listening.find("http")), "--user", "bob", "--no-wait"});
    connect.readUntil("Password of bob at ");
    EXPECT_FALSE(connect.showsWhatIsTyped());
    connect.type("seen by nobody\n");
    EXPECT_EQ(connect.waitForEnd(), 0) << connect.shown();
    EXPECT_NE(connect.shown().find("account 1 (bob@127.0.0.1): stored"), std::string::npos);
    EXPECT_EQ(connect.shown().find("seen by nobody"), std::string::npos) << connect.shown();
}

TEST_F(PasswordPrompt, InterruptedPromptLeavesTheTerminalAsItWas) {
    boot();
    unsetenv("DESKWATCH_PASSWORD");
    AtTerminal connect({"mail", "connect", "http://127.0.0.1:9", "--user", "bob"});
    connect.readUntil("Password of bob at ");
    connect.type("\x03"); // ^C
    EXPECT_EQ(connect.waitForEnd(), -1) << "by the signal";
    EXPECT_TRUE(connect.showsWhatIsTyped());
}

} // namespace
} // namespace deskwatch
