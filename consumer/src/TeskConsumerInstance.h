#ifndef TESK_CONSUMER_INSTANCE_H
#define TESK_CONSUMER_INSTANCE_H

#include <new>
#include <utility>

/// Where the one instance of a manager is kept. Only the two functions below touch it.
template <class Manager>
inline Manager* teskConsumerInstanceSlot = nullptr;

/// The process's one instance of a manager: made by whoever asks first, kept until the process ends, null only while
/// memory for it is short. The caller does not own it.
template <class Manager>
Manager* teskConsumerInstance() {
    auto& instance = teskConsumerInstanceSlot<Manager>;
    if (instance == nullptr) {
        instance = new (std::nothrow) Manager;
    }
    return instance;
}

/// For tests that play several lives of the service in one process: destroys the instance, if there is one, so that
/// whoever asks next gets a new one.
template <class Manager>
void teskConsumerResetInstance() {
    delete std::exchange(teskConsumerInstanceSlot<Manager>, nullptr);
}

#endif
