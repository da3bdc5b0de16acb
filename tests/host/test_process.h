#ifndef TEST_PROCESS_H
#define TEST_PROCESS_H

#include <filesystem>
#include <string>
#include <vector>

#include "c_owners.h"

/// A child process of a test, and what it writes.
class TestProcess {
public:
    /// Starts a command; an empty application id leaves the variable for it unset. Throws std::runtime_error.
    TestProcess(const std::vector<std::string>& command, const std::string& applicationId);

    TestProcess(const TestProcess&) = delete;
    TestProcess& operator=(const TestProcess&) = delete;

    /// Kills it if it still runs.
    ~TestProcess();

    /// Waits for its end. False when it does not come in time.
    [[nodiscard]] bool ended();

    /// Waits until it wrote a text to stderr. False when it does not in time.
    [[nodiscard]] bool said(const std::string& text) const;

    void sendSignal(int signal);

    /// The exit status; -1 when a signal ended it.
    int status() const;

    std::string output() const;
    std::string errors() const;

private:
    std::filesystem::path folder_;
    c::ObjectOwner<GSubprocess> process_;
    bool hasEnded_ = false;
};

#endif
