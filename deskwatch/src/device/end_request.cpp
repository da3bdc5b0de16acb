#include "device/end_request.h"

#include <glib-unix.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>
#include <utility>

namespace deskwatch {
namespace {

volatile std::sig_atomic_t notedSignal = 0;
volatile std::sig_atomic_t wakeUp = -1; // a descriptor, which all requests of the process share

void note(int signal) {
    notedSignal = signal;
    const int error = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(wakeUp, &one, sizeof one); // only the first matters
    errno = error;
}

void openWakeUp() {
    if (wakeUp < 0) {
        wakeUp = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    }
    if (wakeUp < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot wait for signals");
    }
}

} // namespace

EndRequest::EndRequest() {
    openWakeUp();
    struct sigaction noting {};
    noting.sa_handler = note; // without SA_RESTART, so that a wait ends
    for (std::size_t index = 0; index < signals.size(); ++index) {
        sigaction(signals[index], nullptr, &earlier_[index]);
        if (earlier_[index].sa_handler != SIG_IGN) {
            sigaction(signals[index], &noting, nullptr);
        }
    }
}

EndRequest::~EndRequest() {
    if (source_ != 0) {
        g_source_remove(source_);
    }
    for (std::size_t index = 0; index < signals.size(); ++index) {
        sigaction(signals[index], &earlier_[index], nullptr);
    }
}

bool EndRequest::isNoted() const {
    return notedSignal != 0;
}

void EndRequest::obey() const {
    if (isNoted()) {
        std::signal(notedSignal, SIG_DFL);
        std::raise(notedSignal);
    }
}

int EndRequest::descriptor() const {
    return wakeUp;
}

void EndRequest::whenNoted(std::function<void()> act) {
    act_ = std::move(act);
    source_ = g_unix_fd_add(descriptor(), G_IO_IN, onNoted, this);
}

gboolean EndRequest::onNoted(int /*descriptor*/, GIOCondition /*condition*/, gpointer self) {
    auto& request = *static_cast<EndRequest*>(self);
    request.source_ = 0;
    request.act_();
    return G_SOURCE_REMOVE;
}

} // namespace deskwatch
