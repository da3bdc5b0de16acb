#ifndef DESKWATCH_END_REQUEST_H
#define DESKWATCH_END_REQUEST_H

#include <array>
#include <csignal>

namespace deskwatch {

/// While one lives, SIGINT, SIGTERM and SIGHUP do not end this process in the middle of something: the last of them is
/// noted, and cuts a system call short that waits. Signals that the process ignores stay ignored.
class EndRequest {
public:
    EndRequest();
    ~EndRequest();
    EndRequest(const EndRequest&) = delete;
    EndRequest& operator=(const EndRequest&) = delete;

    bool isNoted() const;

    /// Ends this process as the noted signal would have; returns when there was none.
    void obey() const;

    /// Raises the noted signal again for the handler that is set now; does nothing if none was noted.
    void passOn() const;

private:
    static constexpr std::array<int, 3> signals{SIGINT, SIGTERM, SIGHUP};

    std::array<struct sigaction, 3> earlier_{};
};

} // namespace deskwatch

#endif
