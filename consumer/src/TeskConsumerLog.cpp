#include "TeskConsumerLog.h"

TeskConsumerTrace::TeskConsumerTrace(const char* callerFile, const char* callerFunction, int callerLine)
    : file(teskBaseName(callerFile)), function(callerFunction), line(callerLine) {
    __print("Enter");
}

TeskConsumerTrace::~TeskConsumerTrace() {
    __print("Leave");
}

void TeskConsumerTrace::__print(const char* text) const {
    __dlog_print(LOG_ID_MAIN, DLOG_INFO, "TESK_CONSUMER", "%s: %s(%d) >  %s", file, function, line, text);
}
