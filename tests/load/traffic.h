#ifndef LOAD_TRAFFIC_H
#define LOAD_TRAFFIC_H

#include <random>
#include <string>
#include <vector>

#include "accounts.h"
#include "c_owners.h"
#include "handled.h"
#include "test_device.h"

namespace load_test {

/// Requests of every kind at a watch's service, in the same order in every run, and what must come of them.
class Traffic {
public:
    explicit Traffic(const system_test::TestDevice& device);
    Traffic(const Traffic&) = delete;
    Traffic& operator=(const Traffic&) = delete;

    /// Sends so many requests in one go and does not wait for them.
    void send(int requests);

    /// Waits until all is handled, the wearer has answered every popup, and checks that nothing was lost, reordered or
    /// answered otherwise. The log is empty then.
    void settleAndCheck();

    /// Checks, after a new start of a service that ended in the middle of what was sent, that one of the states is
    /// stored that the requests went through and that its rules are enforced. What is stored is what holds from now on.
    void checkAfterRestart();

    /// How many requests were sent since the beginning.
    int sent() const { return number_; }

private:
    void sendOne();
    void sendUpdate();
    void sendDeletion();
    void sendUnusable();
    void callDiagnostics();
    void changeLock();
    void sendToPort(const std::string& request, const std::string& argument, const std::string& kind);
    void call(const char* method, GVariant* arguments, const std::string& kind);
    static void onAnswer(GObject* connection, GAsyncResult* outcome, gpointer self);

    void awaitAnswers() const;
    void answerPopups();
    void forget();
    int oneOf(int count);

    const system_test::TestDevice& device_;
    const c::ObjectOwner<GDBusConnection> connection_;
    std::minstd_rand random_;
    int number_ = 0;
    /// What the accounts of each way went through since all was settled, the present state last.
    std::vector<Accounts> mail_{Accounts{}};
    std::vector<Accounts> diagnostic_{Accounts{}};
    Requests sent_;
    /// The answers that are still to come, and those that came.
    int outstanding_ = 0;
    std::vector<std::string> answers_;
};

} // namespace load_test

#endif
