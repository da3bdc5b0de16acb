#ifndef PLATFORM_LAUNCHER_H
#define PLATFORM_LAUNCHER_H

#include <list>
#include <memory>
#include <string>
#include <vector>

#include "app_control_handle.h"
#include "bus.h"

namespace host {

/// Sends launch requests and waits for their answers, however late they come.
class Launcher {
public:
    static Launcher& get();

    Launcher(const Launcher&) = delete;
    Launcher& operator=(const Launcher&) = delete;

    /// Waits for the applications that are being started: the bus daemon forgets a request whose sender is gone before
    /// its target has come up.
    ~Launcher();

    /// Sends a request and returns at once. The callback may be null. Returns 0 or an app_control_error_e.
    int send(const app_control_s& request, app_control_reply_cb callback, void* userData);

    /// The ids of the applications that have not answered yet, in the order of the requests.
    std::vector<std::string> outstanding() const;

private:
    struct Launch;

    explicit Launcher(Bus& bus);

    void dispatch(Launch& launch);
    std::unique_ptr<Launch> take(Launch* launch);

    static void onAnswer(GObject* connection, GAsyncResult* outcome, gpointer launch);
    void answered(Launch* launch, GVariant* answer, const GError* error);

    Bus& bus_;
    std::list<std::unique_ptr<Launch>> launches_;
};

} // namespace host

#endif
