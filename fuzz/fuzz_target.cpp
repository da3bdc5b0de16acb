#include "fuzz_target.h"

#include <glib.h>

#include <cstdlib>
#include <iostream>

namespace {

// GLib itself would end the process with a trap signal, which libFuzzer does not take for a crash: the input would be
// lost.
GLogWriterOutput writeOrEnd(GLogLevelFlags level, const GLogField* fields, gsize count, gpointer data) {
    const auto written = g_log_writer_standard_streams(level, fields, count, data);
    if ((level & (G_LOG_LEVEL_ERROR | G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING)) != 0) {
        std::abort();
    }
    return written;
}

} // namespace

void fuzz::require(bool holds, const std::string& what) {
    if (!holds) {
        std::cerr << "does not hold: " << what << '\n';
        std::abort();
    }
}

void fuzz::makeGlibWarningsFatal() {
    static const bool done = [] {
        g_log_set_writer_func(writeOrEnd, nullptr, nullptr);
        return true;
    }();
    static_cast<void>(done);
}
