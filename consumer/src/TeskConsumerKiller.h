#ifndef TESK_CONSUMER_KILLER_H
#define TESK_CONSUMER_KILLER_H

#include <glib.h>

/// Ends the service ten seconds after the last trigger, once nothing is outstanding: both the lock and the encryption
/// that the policies require exist. A trigger is a launch request or a change of one of the two keys that tell so.
class TeskConsumerKiller {
public:
    /// The process's one instance.
    static TeskConsumerKiller* getInstance();

    TeskConsumerKiller();
    virtual ~TeskConsumerKiller();
    TeskConsumerKiller(const TeskConsumerKiller&) = delete;
    TeskConsumerKiller& operator=(const TeskConsumerKiller&) = delete;

    /// Watches the two keys.
    void init();

    /// Starts the ten seconds again, or stops them while something is outstanding.
    void tryStartKillTimer();

private:
    bool __canBeKilled();
    void __refreshKiller();
    void __stopKiller();
    void __removeTimer();

    guint timerId = 0;
};

#endif
