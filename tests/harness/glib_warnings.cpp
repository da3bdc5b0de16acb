#include "glib_warnings.h"

#include <glib.h>

#include <cstdlib>

namespace {

// GLib itself would end the process with a trap signal, which libFuzzer does not take for a crash.
GLogWriterOutput writeOrAbort(GLogLevelFlags level, const GLogField* fields, gsize count, gpointer data) {
    const auto written = g_log_writer_standard_streams(level, fields, count, data);
    if ((level & (G_LOG_LEVEL_ERROR | G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING)) != 0) {
        std::abort();
    }
    return written;
}

} // namespace

void harness::makeGlibWarningsFatal() {
    static const bool done = [] { // GLib takes a writer once
        g_log_set_writer_func(writeOrAbort, nullptr, nullptr);
        return true;
    }();
    static_cast<void>(done);
}
