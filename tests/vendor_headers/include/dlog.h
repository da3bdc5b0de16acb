#pragma once
#ifdef __cplusplus
extern "C" {
#endif
typedef enum { LOG_ID_INVALID = -1, LOG_ID_MAIN, LOG_ID_RADIO, LOG_ID_SYSTEM, LOG_ID_APPS } log_id_t;
typedef enum {
    DLOG_UNKNOWN,
    DLOG_DEFAULT,
    DLOG_VERBOSE,
    DLOG_DEBUG,
    DLOG_INFO,
    DLOG_WARN,
    DLOG_ERROR,
    DLOG_FATAL,
    DLOG_SILENT
} log_priority;
int __dlog_print(log_id_t, int, const char*, const char*, ...) __attribute__((format(printf, 4, 5)));
#ifdef __cplusplus
}
#endif
