#ifndef DESKWATCH_REGISTRY_H
#define DESKWATCH_REGISTRY_H

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

namespace deskwatch {

/// Remembers which watches a user has booted, so that commands find the newest one.
class Registry {
public:
    /// The user's own: $XDG_STATE_HOME/deskwatch, ~/.local/state/deskwatch where that is not set.
    static Registry ofUser();

    /// Keeps its list in that folder, which is made when it is needed.
    explicit Registry(std::filesystem::path folder) : folder_(std::move(folder)) {}

    /// Remembers a watch as the newest one. Throws std::runtime_error when the list cannot be written.
    void add(const std::filesystem::path& folder) const;

    /// Remembers a watch that is about to be booted: as the oldest one, unless it is remembered already; false then.
    /// Throws std::runtime_error when the list cannot be written.
    bool announce(const std::filesystem::path& folder) const;

    /// Forgets a watch; touches nothing when it is not remembered. Throws std::runtime_error when the list cannot be
    /// written.
    void remove(const std::filesystem::path& folder) const;

    /// The watch that was added last; none when there is none.
    std::optional<std::filesystem::path> newest() const;

    /// All of them, the newest last. What cannot be the folder of a watch is damage and left out.
    std::vector<std::filesystem::path> folders() const;

    /// The folder of a watch that is booted without a folder of its own.
    std::filesystem::path defaultDevice() const { return folder_ / "watch"; }

private:
    using Folders = std::vector<std::filesystem::path>;

    void change(const std::function<void(Folders& folders)>& action) const;

    std::filesystem::path folder_;
};

} // namespace deskwatch

#endif
