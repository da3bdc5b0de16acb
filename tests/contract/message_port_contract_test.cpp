#include <gtest/gtest.h>
#include <message_port.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "contract_environment.h"
#include "platform_owners.h"

namespace {

constexpr char port[] = "example-port";
constexpr const char* self = contract::applicationId;

struct Inbox {
    std::vector<std::string> texts;
    std::vector<std::string> senders;
    std::vector<int> ports;
    bool hadRemotePort = false;
    bool wasTrusted = false;
};

void receive(int portId, const char* sender, const char* remotePort, bool trusted, bundle* message, void* data) {
    auto* inbox = static_cast<Inbox*>(data);
    char* text = nullptr;
    bundle_get_str(message, "text", &text);
    inbox->texts.emplace_back(text != nullptr ? text : "(null)");
    inbox->senders.emplace_back(sender);
    inbox->ports.push_back(portId);
    inbox->hadRemotePort = remotePort != nullptr;
    inbox->wasTrusted = trusted;
}

void receiveAndClose(int portId, const char* sender, const char* remotePort, bool trusted, bundle* message,
                     void* data) {
    message_port_unregister_local_port(portId);
    receive(portId, sender, remotePort, trusted, message, data);
}

BundleOwner messageOf(const std::string& text) {
    return bundleOf({{"text", text}});
}

int send(const std::string& text) {
    return message_port_send_message(self, port, messageOf(text).get());
}

bool received(const Inbox& inbox, std::size_t count) {
    return contract::runUntil([&] { return inbox.texts.size() >= count; });
}

TEST(MessagePortContract, OpenPortHasAPositiveId) {
    EXPECT_GT(message_port_register_local_port(port, receive, nullptr), 0);
}

TEST(MessagePortContract, DifferentPortsHaveDifferentIds) {
    EXPECT_NE(message_port_register_local_port("a", receive, nullptr),
              message_port_register_local_port("b", receive, nullptr));
}

TEST(MessagePortContract, DeliversAMessageToTheOwnPortOnTheMainLoop) {
    Inbox inbox;
    const int id = message_port_register_local_port(port, receive, &inbox);

    EXPECT_EQ(send("hello"), MESSAGE_PORT_ERROR_NONE);
    EXPECT_TRUE(inbox.texts.empty()) << "called inside message_port_send_message";

    ASSERT_TRUE(received(inbox, 1));
    EXPECT_EQ(inbox.texts, std::vector<std::string>{"hello"});
    EXPECT_EQ(inbox.senders, std::vector<std::string>{self});
    EXPECT_EQ(inbox.ports, std::vector<int>{id});
    EXPECT_FALSE(inbox.hadRemotePort);
    EXPECT_FALSE(inbox.wasTrusted);
}

TEST(MessagePortContract, KeepsTheOrderOfMessages) {
    Inbox inbox;
    message_port_register_local_port(port, receive, &inbox);
    std::vector<std::string> sent;
    for (int i = 0; i < 50; ++i) {
        sent.push_back(std::to_string(i));
        ASSERT_EQ(send(sent.back()), MESSAGE_PORT_ERROR_NONE);
    }

    ASSERT_TRUE(received(inbox, sent.size()));
    EXPECT_EQ(inbox.texts, sent);
}

TEST(MessagePortContract, LongestMessageArrivesAndOneByteMoreIsRefused) {
    Inbox inbox;
    message_port_register_local_port(port, receive, &inbox);
    const std::string longest(12223, 'x');
    const std::string beside(12173, 'x');
    const auto sendEntries = [](const std::vector<std::pair<std::string, std::string>>& entries) {
        return message_port_send_message(self, port, bundleOf(entries).get());
    };

    EXPECT_EQ(sendEntries({{"msg", longest}}), MESSAGE_PORT_ERROR_NONE);
    EXPECT_EQ(sendEntries({{"msg", longest + "x"}}), MESSAGE_PORT_ERROR_MAX_EXCEEDED);
    EXPECT_EQ(sendEntries({{"req", "req_update_policy"}, {"msg", beside}}), MESSAGE_PORT_ERROR_NONE);
    EXPECT_EQ(sendEntries({{"req", "req_update_policy"}, {"msg", beside + "x"}}), MESSAGE_PORT_ERROR_MAX_EXCEEDED);
    EXPECT_EQ(send("after it"), MESSAGE_PORT_ERROR_NONE);

    ASSERT_TRUE(received(inbox, 3));
    contract::runPending();
    EXPECT_EQ(inbox.texts, (std::vector<std::string>{"(null)", "(null)", "after it"}));
}

TEST(MessagePortContract, MessageMayBeEmpty) {
    Inbox inbox;
    message_port_register_local_port(port, receive, &inbox);
    EXPECT_EQ(message_port_send_message(self, port, bundleOf({}).get()), MESSAGE_PORT_ERROR_NONE);
    EXPECT_EQ(send(""), MESSAGE_PORT_ERROR_NONE);
    ASSERT_TRUE(received(inbox, 2));
    EXPECT_EQ(inbox.texts, (std::vector<std::string>{"(null)", ""}));
}

TEST(MessagePortContract, BytesThatAreNotUtf8ArriveUnchanged) {
    Inbox inbox;
    message_port_register_local_port(port, receive, &inbox);
    EXPECT_EQ(send("caf\xe9"), MESSAGE_PORT_ERROR_NONE);
    ASSERT_TRUE(received(inbox, 1));
    EXPECT_EQ(inbox.texts, std::vector<std::string>{"caf\xe9"});
}

TEST(MessagePortContract, NameOfAPortMayHaveAnyCharacters) {
    std::set<int> ids;
    const std::vector<const char*> names{"a port", "a\"port", "a.port", "a_port", "ä port"};
    for (const char* name : names) {
        bool open = true;
        EXPECT_EQ(message_port_check_remote_port(self, name, &open), MESSAGE_PORT_ERROR_NONE);
        EXPECT_FALSE(open) << name;
        ids.insert(message_port_register_local_port(name, receive, nullptr));
        EXPECT_EQ(message_port_check_remote_port(self, name, &open), MESSAGE_PORT_ERROR_NONE);
        EXPECT_TRUE(open) << name;
    }
    EXPECT_EQ(ids.size(), names.size());
    EXPECT_GT(*ids.begin(), 0);
}

TEST(MessagePortContract, PortClosesOnce) {
    EXPECT_EQ(message_port_unregister_local_port(1), MESSAGE_PORT_ERROR_PORT_NOT_FOUND);
    const int id = message_port_register_local_port(port, receive, nullptr);
    EXPECT_EQ(message_port_unregister_local_port(id + 1), MESSAGE_PORT_ERROR_PORT_NOT_FOUND);
    EXPECT_EQ(message_port_unregister_local_port(id), MESSAGE_PORT_ERROR_NONE);
    EXPECT_EQ(message_port_unregister_local_port(id), MESSAGE_PORT_ERROR_PORT_NOT_FOUND);
    EXPECT_NE(message_port_register_local_port(port, receive, nullptr), id);
}

TEST(MessagePortContract, PortStaysOpenWhenAnotherCloses) {
    Inbox inbox;
    message_port_register_local_port(port, receive, &inbox);
    message_port_unregister_local_port(message_port_register_local_port("another", receive, nullptr));
    EXPECT_EQ(send("hello"), MESSAGE_PORT_ERROR_NONE);
    EXPECT_TRUE(received(inbox, 1));
}

TEST(MessagePortContract, MessageForAClosedPortIsLostEvenWhenTheNameIsOpenedAgain) {
    Inbox closed;
    Inbox opened;
    const int id = message_port_register_local_port(port, receive, &closed);
    send("before");
    message_port_unregister_local_port(id);
    message_port_register_local_port(port, receive, &opened);
    send("after");
    ASSERT_TRUE(received(opened, 1));
    EXPECT_EQ(opened.texts, std::vector<std::string>{"after"});
    EXPECT_TRUE(closed.texts.empty());
}

TEST(MessagePortContract, PortThatNobodyOpenedIsNotFound) {
    EXPECT_EQ(send("hello"), MESSAGE_PORT_ERROR_PORT_NOT_FOUND);
    EXPECT_EQ(message_port_send_message("com.example.nobody", port, messageOf("hello").get()),
              MESSAGE_PORT_ERROR_PORT_NOT_FOUND);
    bool exists = true;
    EXPECT_EQ(message_port_check_remote_port("com.example.nobody", port, &exists), MESSAGE_PORT_ERROR_NONE);
    EXPECT_FALSE(exists);
}

TEST(MessagePortContract, ClosedPortIsNotFound) {
    const int id = message_port_register_local_port(port, receive, nullptr);
    EXPECT_EQ(message_port_unregister_local_port(id), MESSAGE_PORT_ERROR_NONE);
    EXPECT_EQ(send("hello"), MESSAGE_PORT_ERROR_PORT_NOT_FOUND);
}

TEST(MessagePortContract, PortCanCloseInItsCallback) {
    Inbox inbox;
    message_port_register_local_port(port, receiveAndClose, &inbox);
    send("hello");
    ASSERT_TRUE(received(inbox, 1));
    EXPECT_EQ(send("again"), MESSAGE_PORT_ERROR_PORT_NOT_FOUND);
}

TEST(MessagePortContract, CheckTellsWhetherAPortIsOpen) {
    bool before = true;
    EXPECT_EQ(message_port_check_remote_port(self, port, &before), MESSAGE_PORT_ERROR_NONE);
    message_port_register_local_port(port, receive, nullptr);
    bool after = false;
    EXPECT_EQ(message_port_check_remote_port(self, port, &after), MESSAGE_PORT_ERROR_NONE);
    EXPECT_FALSE(before);
    EXPECT_TRUE(after);
}

TEST(MessagePortContract, SecondRegistrationKeepsTheIdAndTakesTheNewCallback) {
    Inbox first;
    Inbox second;
    const int id = message_port_register_local_port(port, receive, &first);

    EXPECT_EQ(message_port_register_local_port(port, receive, &second), id);
    send("hello");

    ASSERT_TRUE(received(second, 1));
    EXPECT_TRUE(first.texts.empty());
}

/// Another application has got one message from here.
class RemotePortContract : public testing::Test {
protected:
    void SetUp() override {
        if (!contract::remote::start()) {
            GTEST_SKIP() << "no other application can be started here";
        }
        ASSERT_EQ(send(std::string(12223, 'x')), MESSAGE_PORT_ERROR_MAX_EXCEEDED) << "the first leaves nothing behind";
        ASSERT_EQ(send("one"), MESSAGE_PORT_ERROR_NONE);
        ASSERT_TRUE(arrived({"one"}));
    }

    void TearDown() override { contract::remote::kill(); }

    static int send(const std::string& text) {
        return message_port_send_message(contract::remote::id, contract::remote::port, messageOf(text).get());
    }

    static bool arrived(const std::vector<std::string>& texts) {
        return contract::runUntil([&] { return contract::remote::texts() == texts; });
    }
};

TEST_F(RemotePortContract, ManyMessagesAtOnceAllArriveInOrder) {
    std::vector<std::string> sent{"one"};
    for (int i = 0; i < 200; ++i) {
        sent.push_back(std::to_string(i) + std::string(2000, 'x'));
        ASSERT_EQ(send(sent.back()), MESSAGE_PORT_ERROR_NONE);
    }
    EXPECT_TRUE(arrived(sent));
}

TEST_F(RemotePortContract, DeadRemoteFailsUntilTheMainLoopHasRun) {
    contract::remote::kill();
    EXPECT_EQ(send("two"), MESSAGE_PORT_ERROR_IO_ERROR);
    EXPECT_EQ(send("three"), MESSAGE_PORT_ERROR_IO_ERROR);
    contract::runPending();
    EXPECT_EQ(send("four"), MESSAGE_PORT_ERROR_PORT_NOT_FOUND);
}

TEST_F(RemotePortContract, RestartedRemoteIsReachedOnceTheMainLoopHasRun) {
    contract::remote::kill();
    ASSERT_TRUE(contract::remote::start());
    contract::runPending();
    EXPECT_EQ(send("two"), MESSAGE_PORT_ERROR_NONE);
    const std::string longest(12222, 'x');
    EXPECT_EQ(send(longest), MESSAGE_PORT_ERROR_NONE);
    EXPECT_TRUE(arrived({"one", "two", longest}));
}

TEST_F(RemotePortContract, RestartedRemoteMissesOneMessageUnlessTheMainLoopHasRun) {
    contract::remote::kill();
    ASSERT_TRUE(contract::remote::start());
    EXPECT_EQ(send("two"), MESSAGE_PORT_ERROR_IO_ERROR);
    EXPECT_EQ(send("three"), MESSAGE_PORT_ERROR_NONE);
    EXPECT_TRUE(arrived({"one", "three"}));
}

TEST_F(RemotePortContract, TooLongMessageRuinsTheConnectionUntilTheRemoteStartsAnew) {
    EXPECT_EQ(send(std::string(13000, 'x')), MESSAGE_PORT_ERROR_MAX_EXCEEDED);
    EXPECT_EQ(send("two"), MESSAGE_PORT_ERROR_NONE);
    EXPECT_EQ(send("three"), MESSAGE_PORT_ERROR_IO_ERROR);
    EXPECT_EQ(send("four"), MESSAGE_PORT_ERROR_IO_ERROR);
    EXPECT_TRUE(arrived({"one", "no message"}));

    contract::remote::kill();
    ASSERT_TRUE(contract::remote::start());
    contract::runPending();
    EXPECT_EQ(send("five"), MESSAGE_PORT_ERROR_NONE);
    EXPECT_TRUE(arrived({"one", "no message", "five"}));
}

TEST(MessagePortContract, NullArgumentsAreInvalid) {
    bool exists = false;
    const BundleOwner message = messageOf("hello");
    EXPECT_EQ(message_port_register_local_port(nullptr, receive, nullptr), MESSAGE_PORT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(message_port_register_local_port(port, nullptr, nullptr), MESSAGE_PORT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(message_port_unregister_local_port(0), MESSAGE_PORT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(message_port_check_remote_port(nullptr, port, &exists), MESSAGE_PORT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(message_port_check_remote_port(self, nullptr, &exists), MESSAGE_PORT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(message_port_check_remote_port(self, port, nullptr), MESSAGE_PORT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(message_port_send_message(nullptr, port, message.get()), MESSAGE_PORT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(message_port_send_message(self, nullptr, message.get()), MESSAGE_PORT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(message_port_send_message(self, port, nullptr), MESSAGE_PORT_ERROR_INVALID_PARAMETER);
}

} // namespace
