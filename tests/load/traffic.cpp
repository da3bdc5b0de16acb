#include "traffic.h"

#include <gtest/gtest.h>
#include <message_port.h>

#include <algorithm>
#include <array>
#include <stdexcept>

#include "messages.h"

namespace load_test {
namespace {

namespace ids = deskwatch::ids;
namespace keys = system_test::keys;

constexpr char diagnosticName[] = "tesk.consumer.test";
constexpr char diagnosticPath[] = "/tesk/consumer/test";
constexpr int timeout = 60'000; // milliseconds
constexpr int accountCount = 20;
constexpr int mostPopups = 10'000;

c::ObjectOwner<GDBusConnection> connect() {
    GError* error = nullptr;
    c::ObjectOwner<GDBusConnection> connection(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error));
    if (connection == nullptr) {
        throw std::runtime_error("cannot reach the bus: " + c::takeMessage(error));
    }
    return connection;
}

/// A message that ends too early, a foreign one, and the like.
const std::string& malformed(int which) {
    static const std::array<std::string, 6> messages{"",
                                                     "{",
                                                     "[1,2,3]",
                                                     R"({"msgId":"something-else"})",
                                                     R"({"msgId":"email-itpolicy-ind","param":[{"accountId":1,)",
                                                     std::string(10'000, '[')};
    return messages.at(static_cast<std::size_t>(which));
}

} // namespace

Traffic::Traffic(const system_test::TestDevice& device) : device_(device), connection_(connect()) {}

void Traffic::send(int requests) {
    for (int i = 0; i < requests; ++i) {
        ++number_;
        sendOne();
    }
}

void Traffic::settleAndCheck() {
    device_.companions().settle(ids::service);
    awaitAnswers();
    device_.companions().settle(ids::service);
    answerPopups();

    EXPECT_EQ(handledRequests(device_.log().text()), sent_);
    EXPECT_EQ(answers_, std::vector<std::string>(sent_.diagnostic.size(), "0"));
    Accounts expected = mail_.back();
    expected.insert(diagnostic_.back().begin(), diagnostic_.back().end());
    EXPECT_EQ(storedAccounts(device_.database()), expected);
    EXPECT_EQ(system_test::settings(), settingsOf(expected));
    forget();
}

void Traffic::checkAfterRestart() {
    awaitAnswers();
    const Accounts stored = storedAccounts(device_.database());
    const auto wasState = [](const std::vector<Accounts>& states, const Accounts& state) {
        return std::find(states.begin(), states.end(), state) != states.end();
    };
    EXPECT_TRUE(wasState(mail_, mailAccounts(stored))) << testing::PrintToString(stored);
    EXPECT_TRUE(wasState(diagnostic_, diagnosticAccounts(stored))) << testing::PrintToString(stored);
    if (!stored.empty()) { // a start with nothing stored leaves the device alone
        EXPECT_EQ(system_test::settings(), settingsOf(stored));
    }
    mail_ = {mailAccounts(stored)};
    diagnostic_ = {diagnosticAccounts(stored)};
    answerPopups();
    forget();
}

void Traffic::sendOne() {
    const int kind = oneOf(100);
    if (kind < 55) {
        sendUpdate();
    } else if (kind < 70) {
        sendDeletion();
    } else if (kind < 85) {
        sendUnusable();
    } else if (kind < 98) {
        callDiagnostics();
    } else {
        changeLock();
    }
}

void Traffic::sendUpdate() {
    constexpr std::array<int, 4> inactivities{0, 60, 300, 900};
    const int id = 1 + oneOf(accountCount);
    const Demands demands{number_, oneOf(17), inactivities.at(static_cast<std::size_t>(oneOf(4))), oneOf(20) != 0};
    mail_.push_back(mail_.back());
    mail_.back()[id] = demands;
    sendToPort("req_update_policy", updateOf(id, demands), "update");
}

void Traffic::sendDeletion() {
    const int id = 1 + oneOf(accountCount + 5); // some were never there
    mail_.push_back(mail_.back());
    mail_.back().erase(id);
    sendToPort("req_delete_account", std::to_string(id), "delete");
}

void Traffic::sendUnusable() {
    if (oneOf(2) == 0) {
        const std::string name = "unknown-" + std::to_string(number_);
        sendToPort(name, "", name);
    } else {
        sendToPort("req_update_policy", malformed(oneOf(6)), "malformed");
    }
}

void Traffic::callDiagnostics() {
    const int which = oneOf(4);
    if (which == 0) {
        call("ping", nullptr, "ping");
    } else if (which == 1) {
        diagnostic_.emplace_back();
        call("removeAccount", nullptr, "removeAccount");
    } else {
        constexpr char method[] = "maxInactivityTimeDeviceLock";
        diagnostic_.push_back({{diagnosticAccount, {0, 0, number_, true}}});
        call(method, g_variant_new("(i)", number_), method + (" " + std::to_string(number_)));
    }
}

void Traffic::changeLock() {
    system_test::setKey(keys::lockType, oneOf(3));
}

void Traffic::sendToPort(const std::string& request, const std::string& argument, const std::string& kind) {
    sent_.port.push_back(kind);
    EXPECT_EQ(system_test::sendMessage({{"req", request}, {"msg", argument}}), MESSAGE_PORT_ERROR_NONE);
}

void Traffic::call(const char* method, GVariant* arguments, const std::string& kind) {
    sent_.diagnostic.push_back(kind);
    ++outstanding_;
    g_dbus_connection_call(connection_.get(), diagnosticName, diagnosticPath, diagnosticName, method, arguments,
                           nullptr, G_DBUS_CALL_FLAGS_NONE, timeout, nullptr, onAnswer, this);
}

void Traffic::onAnswer(GObject* connection, GAsyncResult* outcome, gpointer self) {
    auto& traffic = *static_cast<Traffic*>(self);
    --traffic.outstanding_;
    GError* error = nullptr;
    const c::VariantOwner answer(g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), outcome, &error));
    if (answer == nullptr) {
        traffic.answers_.push_back(c::takeMessage(error));
        return;
    }
    gint32 result = -1;
    g_variant_get(answer.get(), "(i)", &result);
    traffic.answers_.push_back(std::to_string(result));
}

void Traffic::awaitAnswers() const {
    while (outstanding_ > 0) {
        g_main_context_iteration(nullptr, TRUE);
    }
}

void Traffic::answerPopups() {
    constexpr std::array<const char*, 4> answers{"ok", "sync_off_ok", "later", ""};
    for (int i = 0; i < mostPopups; ++i) {
        try {
            device_.companions().answer(ids::popup, answers.at(static_cast<std::size_t>(oneOf(4))));
        } catch (const std::runtime_error&) {
            return; // none waits any more
        }
    }
    ADD_FAILURE() << "the popup asks again and again";
}

/// The log is read once and does not grow without bounds.
void Traffic::forget() {
    EXPECT_EQ(device_.log().count("CRITICAL **"), 0);
    std::filesystem::resize_file(device_.layout().log(), 0);
    sent_ = {};
    answers_.clear();
    mail_ = {mail_.back()};
    diagnostic_ = {diagnostic_.back()};
}

int Traffic::oneOf(int count) {
    return static_cast<int>(random_() % static_cast<unsigned>(count));
}

} // namespace load_test
