#include <gio/gio.h>
#include <json-glib/json-glib.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <thread>

#include "TeskConsumerDbMgr.h"
#include "TestDbus.h"
#include "other_program.h"
#include "unit_test.h"

namespace {

using Data = TeskPolicyData;

class PolicyDataJsonTest : public UnitTest {
protected:
    /// The text that a record becomes.
    static std::string textOf(const TeskPolicyData& record) {
        return *std::unique_ptr<std::string>(TestDbus::__getPolicyDataJson(record));
    }

    static bool contains(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }
};

TEST_F(PolicyDataJsonTest, DefaultRecordBecomesAWholeIndication) {
    const auto text = textOf(TeskPolicyData());

    EXPECT_EQ(text.find(R"({"msgId":"email-itpolicy-ind","seqId":999,"param":[{"accountId":999,"accountName":")"), 0U);
    EXPECT_LT(text.find('@'), text.find("policySet")) << "the name of an account looks like an address";
    EXPECT_EQ(text.substr(text.find(R"("policySet")")),
              R"("policySet":{"PasswordMode":0,"devicePasswordEnabled":false,"allowSimplePassword":true,)"
              R"("minDevicePasswordLength":0,"maxDevicePasswordFailedAttempts":0,)"
              R"("minDevicePasswordComplexCharacters":0,"maxInactivityTimeDeviceLock":0,)"
              R"("passwordRecoveryEnabled":true,"devicePasswordExpiration":0,"devicePasswordHistory":0,)"
              R"("requireDeviceEncryption":false,"allowBluetoothMode":true,"allowBrowser":true,"allowCamera":true,)"
              R"("allowDesktopSync":true,"allowInternetSharing":true,"allowPOPIMAPEmail":true,)"
              R"("allowStorageCard":true,"allowTextMessaging":true,"allowWifi":true}}]})");
    EXPECT_EQ(journal.logsOf("__getPolicyDataJson"), (Lines{"I Enter", "I toJson: [" + text + "]", "I Leave"}));
}

TEST_F(PolicyDataJsonTest, EachMemberIsThatOfItsOwnField) {
    const std::vector<std::pair<std::string, std::int32_t Data::*>> allowed{
        {"allowSimplePassword", &Data::allowSimplePassword},
        {"passwordRecoveryEnabled", &Data::passwordRecoveryEnabled},
        {"allowBluetoothMode", &Data::allowBluetooth},
        {"allowBrowser", &Data::allowBrowser},
        {"allowCamera", &Data::allowCamera},
        {"allowDesktopSync", &Data::allowDesktopSync},
        {"allowInternetSharing", &Data::allowInternetSharing},
        {"allowPOPIMAPEmail", &Data::allowPopimapEmail},
        {"allowStorageCard", &Data::allowStorageCard},
        {"allowTextMessaging", &Data::allowTextMessaging},
        {"allowWifi", &Data::allowWifi},
    };
    for (const auto& [name, field] : allowed) {
        TeskPolicyData record;
        record.*field = 0;
        const auto text = textOf(record);
        EXPECT_TRUE(contains(text, "\"" + name + "\":false")) << text;
        EXPECT_EQ(text.size(), textOf(TeskPolicyData()).size() + 1) << "another member changed, too: " << text;
    }
}

TEST_F(PolicyDataJsonTest, PasswordModeTellsOfTheAlphanumericRule) {
    auto record = passwordAccount(1);
    EXPECT_FALSE(contains(textOf(record), "PasswordMode"));

    record.alphanumericDevicePasswordRequired = 1;
    EXPECT_TRUE(contains(textOf(record), R"("policySet":{"PasswordMode":64,"devicePasswordEnabled":true,)"));

    record.devicePasswordEnabled = 0;
    EXPECT_TRUE(contains(textOf(record), R"("policySet":{"PasswordMode":0,"devicePasswordEnabled":false,)"));
}

TEST_F(PolicyDataJsonTest, IdentityAndStorageCardStayOut) {
    TeskPolicyData record;
    record.accountId = 5;
    record.accountName = "somebody";
    record.displayName = "Somebody";
    record.requireStorageCardEncryption = 1;

    EXPECT_EQ(textOf(record), textOf(TeskPolicyData()));
}

/// The service's object on a system bus of the test's own, and a developer who calls it.
class TestDbusTest : public UnitTest {
public:
    TestDbusTest(const TestDbusTest&) = delete;
    TestDbusTest& operator=(const TestDbusTest&) = delete;

protected:
    TestDbusTest() : bus_(g_test_dbus_new(G_TEST_DBUS_NONE)) {
        g_test_dbus_up(bus_);
        g_setenv("DBUS_SYSTEM_BUS_ADDRESS", g_test_dbus_get_bus_address(bus_), TRUE);
        g_setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", TRUE);
        developer_ = g_dbus_connection_new_for_address_sync(
            g_test_dbus_get_bus_address(bus_),
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr);
        TeskConsumerDbMgr::getInstance();
        platform.devicePolicy.registerService();
    }

    ~TestDbusTest() override {
        g_object_unref(developer_);
        g_test_dbus_stop(bus_);
        g_object_unref(bus_);
    }

    /// Runs the main loop until something has happened, for ten seconds at most.
    static bool waitUntil(const std::function<bool()>& happened) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        const guint tick = g_timeout_add(
            50, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
        while (!happened() && std::chrono::steady_clock::now() < deadline) {
            g_main_context_iteration(nullptr, TRUE);
        }
        g_source_remove(tick);
        return happened();
    }

    void startService() {
        EXPECT_TRUE(TestDbus::init());
        ASSERT_TRUE(waitUntil([&] { return !journal.logsOf("__onNameAcquired").empty(); }));
    }

    /// Calls a method of an interface and returns once its work is done: its answer, or null when it was refused.
    GVariant* callInterface(const char* interface, const char* method, GVariant* arguments) {
        g_autoptr(GAsyncResult) result = nullptr;
        g_dbus_connection_call(
            developer_, "tesk.consumer.test", "/tesk/consumer/test", interface, method, arguments, nullptr,
            G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
            [](GObject*, GAsyncResult* answer, gpointer place) {
                *static_cast<GAsyncResult**>(place) = G_ASYNC_RESULT(g_object_ref(answer));
            },
            &result);
        if (!waitUntil([&] { return result != nullptr; })) {
            ADD_FAILURE() << method << " is not answered";
            return nullptr;
        }
        return g_dbus_connection_call_finish(developer_, result, nullptr);
    }

    /// The answer of a method of the service; -1 when it was refused.
    int call(const char* method, GVariant* arguments = nullptr) {
        g_autoptr(GVariant) answer = callInterface("tesk.consumer.test", method, arguments);
        gint32 value = -1;
        if (answer != nullptr) {
            g_variant_get(answer, "(i)", &value);
        }
        return value;
    }

    /// The methods that the object describes, each with the type of its argument.
    Lines methods() {
        g_autoptr(GVariant) answer = callInterface("org.freedesktop.DBus.Introspectable", "Introspect", nullptr);
        const gchar* xml = nullptr;
        g_variant_get(answer, "(&s)", &xml);
        g_autoptr(GDBusNodeInfo) node = g_dbus_node_info_new_for_xml(xml, nullptr);
        Lines lines;
        const auto* const interface = g_dbus_node_info_lookup_interface(node, "tesk.consumer.test");
        for (auto** method = interface->methods; *method != nullptr; ++method) {
            const auto* const argument = (*method)->in_args[0];
            EXPECT_STREQ((*method)->out_args[0]->signature, "i");
            EXPECT_STREQ((*method)->out_args[0]->name, "ret");
            lines.push_back((*method)->name + (argument == nullptr ? std::string()
                                                                   : "(" + std::string(argument->signature) + " " +
                                                                         argument->name + ")"));
        }
        return lines;
    }

    int call(const char* method, int value) { return call(method, g_variant_new("(i)", value)); }

    /// The bus's answer when the developer asks for the service's name: 1 owner, 3 it stays another's.
    guint32 requestName(guint32 flags) const {
        g_autoptr(GVariant) answer = g_dbus_connection_call_sync(
            developer_, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
            g_variant_new("(su)", "tesk.consumer.test", flags), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
        guint32 result = 0;
        if (answer != nullptr) {
            g_variant_get(answer, "(u)", &result);
        }
        return result;
    }

    /// Whether a method is answered in time; for a thread of its own, since nobody runs the main loop meanwhile.
    bool answersWithin(const char* method, std::chrono::milliseconds time) const {
        g_autoptr(GVariant) answer = g_dbus_connection_call_sync(
            developer_, "tesk.consumer.test", "/tesk/consumer/test", "tesk.consumer.test", method, nullptr, nullptr,
            G_DBUS_CALL_FLAGS_NONE, static_cast<int>(time.count()), nullptr, nullptr);
        return answer != nullptr;
    }

    bool logged(const std::string& line) const {
        const auto lines = journal.logs();
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }

    /// Writes the file that a developer puts on the watch.
    void writePolicyFile(const std::string& text) {
        const auto path = platform.dataPath + "policy.json";
        std::ofstream(path) << text;
        platform.system.movedFiles["/opt/usr/media/policy.json"] = path;
    }

private:
    GTestDBus* bus_;
    GDBusConnection* developer_ = nullptr;
};

TEST_F(TestDbusTest, OwnsItsNameAndObject) {
    startService();

    EXPECT_EQ(journal.logsOf("__onNameAcquired"), Lines{"I Enter"});
    ASSERT_EQ(journal.logsOf("__onBusAcquired").size(), 2U);
    EXPECT_EQ(journal.logsOf("__onBusAcquired")[0], "I Enter");
    EXPECT_EQ(journal.logsOf("__onBusAcquired")[1].rfind("I regId: [", 0), 0U);
    ASSERT_EQ(journal.logsOf("__initGdbus").size(), 1U);
    EXPECT_EQ(journal.logsOf("__initGdbus")[0].rfind("I ownerId: [", 0), 0U);
}

TEST_F(TestDbusTest, PingAnswersAndChangesNothing) {
    startService();
    journal.clear();

    EXPECT_EQ(call("ping"), 0);

    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "I TestDbus methodName: [ping]", "W Pong. I'm alive!"}));
    EXPECT_EQ(call("format"), -1) << "a method that is not there";
}

TEST_F(TestDbusTest, RemoveAccountDeletesTheTestAccount) {
    store({account(999), account(1)});
    startService();

    EXPECT_EQ(call("removeAccount"), 0);
    EXPECT_EQ(call("removeAccount"), 0);

    EXPECT_TRUE(logged("I [RELAY MSG] req_delete_account : 999"));
    EXPECT_EQ(storedAccounts(), 1);
}

/// A method that sets a field: what it is called with, what the test account has then, and whether it needs a password.
struct Setter {
    const char* method;
    int value;
    std::int32_t TeskPolicyData::*field;
    int stored;
    bool needsPassword;
};

TEST_F(TestDbusTest, EachSetterSendsItsFieldOfADefaultRecord) {
    constexpr bool withPassword = true;
    constexpr bool plain = false;
    startService();
    for (const auto& row : {
             Setter{"devicePasswordEnabled", 1, &Data::devicePasswordEnabled, 1, withPassword},
             Setter{"devicePasswordEnabled", 0, &Data::devicePasswordEnabled, 0, plain},
             Setter{"allowSimplePassword", 0, &Data::allowSimplePassword, 0, withPassword},
             Setter{"minDevicePasswordLength", 9, &Data::minDevicePasswordLength, 9, withPassword},
             Setter{"minDevicePasswordComplexCharacters", 3, &Data::minDevicePasswordComplexCharacters, 3,
                    withPassword},
             Setter{"maxInactivityTimeDeviceLock", 60, &Data::maxInactivityTimeDeviceLock, 60, withPassword},
             Setter{"devicePasswordExpiration", 30, &Data::devicePasswordExpiration, 30, withPassword},
             Setter{"devicePasswordHistory", 5, &Data::devicePasswordHistory, 5, withPassword},
             Setter{"requireDeviceEncryption", 1, &Data::requireDeviceEncryption, 1, withPassword},
             Setter{"allowBluetooth", 2, &Data::allowBluetooth, 1, plain},
             Setter{"allowBluetooth", 0, &Data::allowBluetooth, 0, plain},
             Setter{"allowPopimapEmail", 0, &Data::allowPopimapEmail, 0, plain},
             Setter{"allowTextMessaging", 0, &Data::allowTextMessaging, 0, plain},
             Setter{"allowWifi", 0, &Data::allowWifi, 0, plain},
         }) {
        SCOPED_TRACE(row.method);
        journal.clear();
        EXPECT_EQ(call(row.method, row.value), 0);
        EXPECT_TRUE(logged(std::string("I TestDbus methodName: [") + row.method + "]"));
        EXPECT_TRUE(logged("I value: [" + std::to_string(row.value) + "]"));
        const auto data = stored(999);
        EXPECT_EQ(data.*row.field, row.stored);
        EXPECT_EQ(data.devicePasswordEnabled, row.needsPassword ? 1 : 0);
        const bool alphanumeric = row.field == &Data::minDevicePasswordComplexCharacters;
        EXPECT_EQ(data.alphanumericDevicePasswordRequired, alphanumeric ? 1 : 0);
    }
}

TEST_F(TestDbusTest, FirstLineOfTheFileIsSentUpTo4095Bytes) {
    const std::vector<std::pair<std::string, std::string>> files{
        {"one\ntwo\n", "one\n"}, {std::string(5000, 'x'), std::string(4095, 'x')}, {"", ""}};
    startService();
    for (const auto& [text, sent] : files) {
        writePolicyFile(text);
        journal.clear();
        EXPECT_EQ(call("usingFile"), 0);
        EXPECT_TRUE(logged("I [RELAY MSG] req_update_policy : " + sent));
        EXPECT_EQ(logged("W Failed to get string from file."), text.empty());
    }
}

TEST_F(TestDbusTest, MissingFileIsAnErrorAndSendsNothing) {
    platform.system.movedFiles["/opt/usr/media/policy.json"] = platform.dataPath + "none";
    startService();
    journal.clear();

    EXPECT_EQ(call("usingFile"), 0);

    EXPECT_EQ(journal.warnings(), Lines{"E Failed to open file."});
    EXPECT_EQ(journal.calls({"bundle"}), Lines{});
}

TEST_F(TestDbusTest, FileIsClosedBeforeItsRequestRuns) {
    writePolicyFile("{}\n");
    startService();

    EXPECT_EQ(call("usingFile"), 0);

    const auto calls = journal.calls({"fclose", "bundle_create"});
    EXPECT_EQ(calls, (Lines{"fclose", "bundle_create"}));
}

TEST_F(TestDbusTest, AnswerComesBeforeTheWorkIsDone) {
    startService();
    OtherProgram other(watch.databasePath());
    other.run("begin exclusive"); // has the service wait for the database
    bool answered = false;
    std::thread developer([&] { answered = answersWithin("removeAccount", std::chrono::seconds(10)); });
    bool hasSlept = false;
    platform.system.whileSleeping = [&] {
        if (!hasSlept) {
            hasSlept = true;
            developer.join(); // the service goes on once the developer has the answer, or has given up
            other.run("rollback");
        }
    };

    EXPECT_TRUE(waitUntil([&] { return hasSlept; }));

    if (developer.joinable()) {
        developer.join();
    }
    EXPECT_TRUE(answered);
}

TEST_F(TestDbusTest, PipeInThePlaceOfTheFileDoesNotHoldTheServiceUp) {
    const auto pipe = platform.dataPath + "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    platform.system.movedFiles["/opt/usr/media/policy.json"] = pipe;
    startService();
    journal.clear();

    EXPECT_EQ(call("usingFile"), 0);

    EXPECT_TRUE(logged("W Failed to get string from file."));
}

TEST_F(TestDbusTest, FolderInThePlaceOfTheFileIsReadAsEmpty) {
    platform.system.movedFiles["/opt/usr/media/policy.json"] = platform.dataPath;
    startService();
    journal.clear();

    EXPECT_EQ(call("usingFile"), 0);

    EXPECT_TRUE(logged("W Failed to get string from file."));
}

TEST_F(TestDbusTest, NameThatAnotherOwnsIsOnlyTraced) {
    ASSERT_EQ(requestName(0), 1U);

    EXPECT_TRUE(TestDbus::init());

    ASSERT_TRUE(waitUntil([&] { return !journal.logsOf("__onNameLost").empty(); }));
    EXPECT_EQ(journal.logsOf("__onNameLost"), Lines{"I Enter"});
    EXPECT_EQ(journal.logsOf("__onNameAcquired"), Lines{});
    EXPECT_EQ(journal.warnings(), Lines{});
}

TEST_F(TestDbusTest, NameIsNotHandedOver) {
    constexpr guint32 replaceAndDoNotQueue = 2 | 4;
    startService();

    EXPECT_EQ(requestName(replaceAndDoNotQueue), 3U);
}

TEST_F(TestDbusTest, LostBusDoesNotEndTheProcess) {
    startService();

    g_autoptr(GDBusConnection) connection = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr);

    ASSERT_NE(connection, nullptr);
    EXPECT_FALSE(g_dbus_connection_get_exit_on_close(connection));
}

TEST_F(TestDbusTest, InterfaceDescribesItsMethodsInOrder) {
    startService();

    EXPECT_EQ(methods(), (Lines{"ping", "removeAccount", "usingFile", "devicePasswordEnabled(i value)",
                                "allowSimplePassword(i value)", "minDevicePasswordLength(i value)",
                                "minDevicePasswordComplexCharacters(i value)", "maxInactivityTimeDeviceLock(i value)",
                                "devicePasswordExpiration(i value)", "devicePasswordHistory(i value)",
                                "requireDeviceEncryption(i value)", "allowBluetooth(i value)",
                                "allowPopimapEmail(i value)", "allowTextMessaging(i value)", "allowWifi(i value)"}));
}

TEST_F(TestDbusTest, UnreadableDescriptionIsAnErrorAndTheNameIsOwnedAllTheSame) {
    platform.faults.always("g_dbus_node_info_new_for_xml");

    startService();

    EXPECT_EQ(journal.warnings(), Lines{"E g_dbus_node_info_new_for_xml failed: [the test says so]"});
    EXPECT_EQ(journal.logsOf("__onBusAcquired"), (Lines{"I Enter", "I regId: [0]"}));
    EXPECT_EQ(call("ping"), -1);
}

using TestDbusWithoutBusTest = UnitTest;

TEST_F(TestDbusWithoutBusTest, MissingBusDoesNotStopTheStart) {
    EXPECT_TRUE(TestDbus::init());
    EXPECT_EQ(journal.warnings(), Lines{});
}

} // namespace
