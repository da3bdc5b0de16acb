#ifndef TESK_CONSUMER_LOG_H
#define TESK_CONSUMER_LOG_H

#include <dlog.h>

/// The file name without its folders, found while compiling.
constexpr const char* teskBaseName(const char* path) {
    const char* name = path;
    for (const char* at = path; *at != '\0'; ++at) {
        if (*at == '/') {
            name = at + 1;
        }
    }
    return name;
}

/// Where a log line speaks from. A helper takes it as its last argument and leaves the default: what it logs then
/// carries the name of the operation that called it.
struct TeskConsumerPlace {
    const char* file; ///< with its folders
    const char* function;
    int line;

    /// The place of the call; the arguments are left out.
    static constexpr TeskConsumerPlace here(const char* callerFile = __builtin_FILE(),
                                            const char* callerFunction = __builtin_FUNCTION(),
                                            int callerLine = __builtin_LINE()) {
        return {callerFile, callerFunction, callerLine};
    }
};

// Macros, because only they let the compiler check the arguments against the text and know the caller's place.
#define TESK_LOG(priority, text, ...)                                                                                  \
    do {                                                                                                               \
        constexpr const char* teskFile = teskBaseName(__FILE__);                                                       \
        __dlog_print(LOG_ID_MAIN, priority, "TESK_CONSUMER", "%s: %s(%d) >  " text, teskFile,                          \
                     static_cast<const char*>(__func__), __LINE__, ##__VA_ARGS__);                                     \
    } while (false)
#define TESK_LOG_AT(place, priority, text, ...)                                                                        \
    __dlog_print(LOG_ID_MAIN, priority, "TESK_CONSUMER", "%s: %s(%d) >  " text, teskBaseName((place).file),            \
                 (place).function, (place).line, ##__VA_ARGS__)

#define TESK_INFO(text, ...) TESK_LOG(DLOG_INFO, text, ##__VA_ARGS__)
#define TESK_WARN(text, ...) TESK_LOG(DLOG_WARN, text, ##__VA_ARGS__)
#define TESK_ERROR(text, ...) TESK_LOG(DLOG_ERROR, text, ##__VA_ARGS__)
#define TESK_INFO_AT(place, text, ...) TESK_LOG_AT(place, DLOG_INFO, text, ##__VA_ARGS__)
#define TESK_WARN_AT(place, text, ...) TESK_LOG_AT(place, DLOG_WARN, text, ##__VA_ARGS__)
#define TESK_ERROR_AT(place, text, ...) TESK_LOG_AT(place, DLOG_ERROR, text, ##__VA_ARGS__)

/// Logs "Enter" when it is made and "Leave" when its scope ends, whichever way it ends.
class TeskConsumerTrace {
public:
    explicit TeskConsumerTrace(const TeskConsumerPlace& caller = TeskConsumerPlace::here());
    ~TeskConsumerTrace();

    TeskConsumerTrace(const TeskConsumerTrace&) = delete;
    TeskConsumerTrace& operator=(const TeskConsumerTrace&) = delete;

private:
    TeskConsumerPlace place;
};

#endif
