#include "main_loop.h"

#include <glib.h>

namespace {

gboolean wakeUp(gpointer /*data*/) {
    return G_SOURCE_CONTINUE;
}

} // namespace

bool runMainLoopUntil(const std::function<bool()>& condition) {
    constexpr guint interval = 20;
    constexpr gint64 limit = gint64{10} * G_USEC_PER_SEC;
    const gint64 deadline = g_get_monotonic_time() + limit;
    const guint timer = g_timeout_add(interval, wakeUp, nullptr);
    bool holds = condition();
    while (!holds && g_get_monotonic_time() < deadline) {
        g_main_context_iteration(nullptr, TRUE);
        holds = condition();
    }
    g_source_remove(timer);
    return holds;
}
