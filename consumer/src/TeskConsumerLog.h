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

// Macros, because only they let the compiler check the arguments against the text and know the caller's place.
#define TESK_LOG(priority, text, ...)                                                                                  \
    do {                                                                                                               \
        constexpr const char* teskFile = teskBaseName(__FILE__);                                                       \
        __dlog_print(LOG_ID_MAIN, priority, "TESK_CONSUMER", "%s: %s(%d) >  " text, teskFile,                          \
                     static_cast<const char*>(__func__), __LINE__, ##__VA_ARGS__);                                     \
    } while (false)

#define TESK_INFO(text, ...) TESK_LOG(DLOG_INFO, text, ##__VA_ARGS__)
#define TESK_WARN(text, ...) TESK_LOG(DLOG_WARN, text, ##__VA_ARGS__)
#define TESK_ERROR(text, ...) TESK_LOG(DLOG_ERROR, text, ##__VA_ARGS__)

/// Logs "Enter" when it is made and "Leave" when its scope ends, whichever way it ends.
class TeskConsumerTrace {
public:
    /// The arguments are left out: their defaults name the function that makes the trace.
    explicit TeskConsumerTrace(const char* callerFile = __builtin_FILE(),
                               const char* callerFunction = __builtin_FUNCTION(), int callerLine = __builtin_LINE());
    ~TeskConsumerTrace();

    TeskConsumerTrace(const TeskConsumerTrace&) = delete;
    TeskConsumerTrace& operator=(const TeskConsumerTrace&) = delete;

private:
    void __print(const char* text) const;

    const char* file;
    const char* function;
    int line;
};

#endif
