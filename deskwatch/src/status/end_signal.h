#ifndef DESKWATCH_END_SIGNAL_H
#define DESKWATCH_END_SIGNAL_H

#include <glib.h>

#include <vector>

namespace deskwatch {

/// While one lives, SIGINT and SIGTERM wake the main loop instead of ending this process, so that it can finish what it
/// has begun. A signal that the process ignores stays ignored.
class EndSignal {
public:
    EndSignal();
    ~EndSignal();
    EndSignal(const EndSignal&) = delete;
    EndSignal& operator=(const EndSignal&) = delete;

    bool hasCome() const { return number_ != 0; }

    /// Ends this process as the signal would have; returns when none has come. From now on signals do what they did.
    void obey();

private:
    template <int Number>
    static gboolean note(gpointer self);

    void removeSources();

    std::vector<guint> sources_;
    int number_ = 0;
};

} // namespace deskwatch

#endif
