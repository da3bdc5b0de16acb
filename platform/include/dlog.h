#ifndef DLOG_H
#define DLOG_H

#ifdef __cplusplus
extern "C" {
#endif

typedef enum { LOG_ID_INVALID = -1, LOG_ID_MAIN = 0, LOG_ID_RADIO = 1, LOG_ID_SYSTEM = 2, LOG_ID_APPS = 3 } log_id_t;

typedef enum {
    DLOG_UNKNOWN = 0,
    DLOG_DEFAULT = 1,
    DLOG_VERBOSE = 2,
    DLOG_DEBUG = 3,
    DLOG_INFO = 4,
    DLOG_WARN = 5,
    DLOG_ERROR = 6,
    DLOG_FATAL = 7,
    DLOG_SILENT = 8
} log_priority;

/// Writes one line to the log. Returns the bytes written, or a negative error.
int __dlog_print(log_id_t log_id, int prio, const char* tag, const char* fmt, ...)
#ifdef __GNUC__
    __attribute__((format(printf, 4, 5)))
#endif
    ;

#ifdef __cplusplus
}
#endif

#endif
