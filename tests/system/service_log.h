#ifndef TESTS_SYSTEM_SERVICE_LOG_H
#define TESTS_SYSTEM_SERVICE_LOG_H

#include <filesystem>
#include <string>

namespace system_test {

/// The log of a watch: what its processes wrote so far.
class ServiceLog {
public:
    explicit ServiceLog(std::filesystem::path file) : file_(std::move(file)) {}

    std::string text() const;

    /// How many lines hold that text.
    int count(const std::string& text) const;

private:
    std::filesystem::path file_;
};

} // namespace system_test

#endif
