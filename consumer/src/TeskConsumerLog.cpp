#include "TeskConsumerLog.h"

TeskConsumerTrace::TeskConsumerTrace(const TeskConsumerPlace& caller) : place(caller) {
    TESK_INFO_AT(place, "Enter");
}

TeskConsumerTrace::~TeskConsumerTrace() {
    TESK_INFO_AT(place, "Leave");
}
