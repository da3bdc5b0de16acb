#include "status/end_signal.h"

#include <glib-unix.h>

#include <csignal>
#include <utility>

namespace deskwatch {

EndSignal::EndSignal() {
    for (const int number : {SIGINT, SIGTERM}) {
        struct sigaction set {};
        sigaction(number, nullptr, &set);
        if (set.sa_handler != SIG_IGN) {
            sources_.push_back(g_unix_signal_add(number, number == SIGINT ? note<SIGINT> : note<SIGTERM>, this));
        }
    }
}

EndSignal::~EndSignal() {
    removeSources();
}

void EndSignal::obey() {
    removeSources();
    if (hasCome()) {
        std::raise(number_);
    }
}

template <int Number>
gboolean EndSignal::note(gpointer self) {
    static_cast<EndSignal*>(self)->number_ = Number;
    return G_SOURCE_CONTINUE;
}

/// The main loop gives a signal that nobody wants any more its default back.
void EndSignal::removeSources() {
    for (const guint source : std::exchange(sources_, {})) {
        g_source_remove(source);
    }
}

} // namespace deskwatch
