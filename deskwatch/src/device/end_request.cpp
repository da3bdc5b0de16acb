#include "device/end_request.h"

namespace deskwatch {
namespace {

volatile std::sig_atomic_t notedSignal = 0;

void note(int signal) {
    notedSignal = signal;
}

} // namespace

EndRequest::EndRequest() {
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

void EndRequest::passOn() const {
    if (isNoted()) {
        std::raise(notedSignal);
    }
}

} // namespace deskwatch
