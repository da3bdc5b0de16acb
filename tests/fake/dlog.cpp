#include <dlog.h>
#include <glib.h>

#include <cstdarg>

#include "fake_platform.h"

using fake::FakePlatform;

int __dlog_print(log_id_t log_id, int prio, const char* tag, const char* fmt, ...) {
    if (log_id != LOG_ID_MAIN || !FakePlatform::exists()) {
        return -1;
    }
    va_list arguments;
    va_start(arguments, fmt);
    g_autofree char* message = g_strdup_vprintf(fmt, arguments);
    va_end(arguments);
    auto& journal = FakePlatform::current().journal;
    if (journal.isKept) {
        journal.addLog(fake::parseLogLine(prio, tag, message));
    }
    return static_cast<int>(std::char_traits<char>::length(message));
}
