#ifndef TESTS_PROCESS_LIMIT_H
#define TESTS_PROCESS_LIMIT_H

#include <sys/resource.h>

/// Limits what this process and its children may use, for as long as the object lives.
class ProcessLimit {
public:
    ProcessLimit(__rlimit_resource resource, rlim_t limit) : resource_(resource) {
        getrlimit(resource_, &before_);
        const rlimit now{limit, before_.rlim_max};
        setrlimit(resource_, &now);
    }
    ~ProcessLimit() { setrlimit(resource_, &before_); }
    ProcessLimit(const ProcessLimit&) = delete;
    ProcessLimit& operator=(const ProcessLimit&) = delete;

private:
    __rlimit_resource resource_;
    rlimit before_{};
};

#endif
