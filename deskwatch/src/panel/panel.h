#ifndef DESKWATCH_PANEL_H
#define DESKWATCH_PANEL_H

#include <functional>
#include <optional>
#include <string>

#include "device/device.h"
#include "device/end_request.h"

namespace deskwatch {

/// How the panel is run.
struct PanelOptions {
    /// Any free one for 0.
    unsigned port = 0;
    /// Called with the address when pages can be opened, and with a file that leads a browser there without showing the
    /// token on a command line.
    std::function<void(const std::string& address, const std::string& file)> onReady;
};

/// Serves the watch to browsers until an end is requested; the watch may be switched off and booted meanwhile.
/// Returns the last boot that a page asked for. Throws std::runtime_error when it cannot listen.
std::optional<pid_t> runPanel(const Device& device, const PanelOptions& options, EndRequest& endRequest);

} // namespace deskwatch

#endif
