#ifndef TESK_CONSUMER_INSTANCE_H
#define TESK_CONSUMER_INSTANCE_H

#include <new>

/// The process's one instance of a manager: made by whoever asks first, kept until the process ends, null only while
/// memory for it is short. The caller does not own it.
template <class Manager>
Manager* teskConsumerInstance() {
    static Manager* instance = nullptr;
    if (instance == nullptr) {
        instance = new (std::nothrow) Manager;
    }
    return instance;
}

#endif
