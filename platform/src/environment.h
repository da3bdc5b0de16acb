#ifndef PLATFORM_ENVIRONMENT_H
#define PLATFORM_ENVIRONMENT_H

#include <filesystem>
#include <string>

namespace host {

/// What the process was told by whoever started it.
class Environment {
public:
    /// The process's one environment, read on first use. Throws HostError when a variable is missing or not valid.
    static const Environment& get();

    /// The id that the process runs under as an application; a well-formed bus name.
    const std::string& applicationId() const { return applicationId_; }

    /// The device's folder; an absolute path.
    const std::filesystem::path& device() const { return device_; }

private:
    Environment();

    std::string applicationId_;
    std::filesystem::path device_;
};

} // namespace host

#endif
