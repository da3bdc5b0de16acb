#include <gio/gio.h>
#include <json-glib/json-glib.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <set>

#include "TeskConsumer.h"
#include "TeskConsumerAccountMgr.h"
#include "TeskConsumerDbMgr.h"
#include "TeskConsumerIpcMgr.h"
#include "TeskConsumerKiller.h"
#include "TeskConsumerLockMgr.h"
#include "TeskConsumerPolicyMgr.h"
#include "TeskConsumerPreferenceProxy.h"
#include "TeskConsumerUtil.h"
#include "TestDbus.h"
#include "msgs/TeskConsumerAccountInfoRespMsg.h"
#include "msgs/TeskConsumerEasRemoteWipeIndMsg.h"
#include "msgs/TeskConsumerInitRespMsg.h"
#include "msgs/TeskConsumerItPolicyIndMsg.h"
#include "msgs/TeskConsumerRespMsgFactory.h"
#include "other_program.h"
#include "req_workers/TeskConsumerPolicyWorker.h"
#include "req_workers/TeskConsumerReqFactory.h"
#include "rules/TeskPolicyTable.h"
#include "sample_policies.h"
#include "service_main.h"
#include "unit_test.h"

namespace {
namespace log_lines { // its many short names would meet those of other tests in a unity build

using Lines = fake::Journal::Lines;
using Step = std::function<void()>;

/// What an operation logs in a situation. A line begins with the letter of its level.
struct Row {
    const char* function;
    const char* situation;
    std::vector<Step> given;
    Step act;
    Lines lines; ///< all of this operation's, in order
};

Row row(const char* function, const char* situation, const std::vector<Step>& given, const Step& act,
        const Lines& lines) {
    return {function, situation, given, act, lines};
}

/// The rows of the operations that log in the name of one file.
struct Source {
    std::string file;
    std::vector<Row> rows;
};

// what an operation logs

const Lines bareLine{"I "};

Lines entered(Lines lines = {}) {
    lines.insert(lines.begin(), "I Enter");
    return lines;
}

Lines traced(const Lines& lines = {}) {
    auto all = entered(lines);
    all.emplace_back("I Leave");
    return all;
}

// situations

fake::FakePlatform& platform() {
    return fake::FakePlatform::current();
}

Step fails(const std::string& function, int code = -1) {
    return [=] { platform().faults.always(function, code); };
}

Step failsAt(const std::string& function, int nth, int code = -1) {
    return [=] { platform().faults.atCall(function, nth, code); };
}

Step keyIs(const std::string& key, const fake::SettingsStore::Value& value) {
    return [=] { platform().settings.setKeyAsDevice(key, value); };
}

/// Accounts of an earlier run; without any, only the database is open.
Step stored(const std::vector<TeskPolicyData>& accounts) {
    return [=] {
        for (const auto& data : accounts) {
            TeskConsumerDbMgr::getInstance()->insertPolicy(data);
        }
        TeskConsumerDbMgr::getInstance();
        platform().devicePolicy.registerService();
    };
}

/// What the device enforces by now.
Step deviceHolds(int quality, int minLength, int complexCharacters = 0) {
    return [=] {
        platform().devicePolicy.settings = {
            {"quality", quality}, {"minimum_length", minLength}, {"min_complex_chars", complexCharacters}};
    };
}

TeskPolicyData limitingAccount() {
    auto data = account(1);
    data.maxDevicePasswordFailedAttempts = 5;
    data.maxInactivityTimeDeviceLock = 60;
    data.devicePasswordExpiration = 30;
    data.devicePasswordHistory = 4;
    data.allowWifi = 0;
    return data;
}

TeskPolicyData alphanumericAccount() {
    auto data = passwordAccount(1);
    data.alphanumericDevicePasswordRequired = 1;
    data.minDevicePasswordComplexCharacters = 3;
    return data;
}

TeskPolicyData complexAccount() {
    auto data = passwordAccount(1);
    data.allowSimplePassword = 0;
    return data;
}

TeskPolicyData encryptingAccount() {
    auto data = account(1);
    data.requireDeviceEncryption = 1;
    return data;
}

std::string dbPath() {
    return platform().dataPath + "dbspace/.tesk.db";
}

void linkDatabaseToItself() {
    std::filesystem::create_directory(platform().dataPath + "dbspace");
    std::filesystem::create_symlink(".tesk.db", dbPath());
}

Step policyFileHolds(const std::string& text) {
    return [=] {
        const auto path = platform().dataPath + "policy.json";
        std::ofstream(path) << text;
        platform().system.movedFiles["/opt/usr/media/policy.json"] = path;
    };
}

void policyFileIsMissing() {
    platform().system.movedFiles["/opt/usr/media/policy.json"] = platform().dataPath + "none";
}

constexpr char passwordKey[] = "db/eas/password_policy_applied";
constexpr char encryptionKey[] = "db/eas/device_encryption_applied";
constexpr char lockKey[] = "db/setting/lock_type";
constexpr char tutorialKey[] = "memory/private/com.velmor.hearth/tutorial_is_in_progress";

// what the operations are asked to do

template <class Object>
void makeAndDestroy() {
    const Object object;
}

void runMain() {
    std::string name = "tesk-agent";
    std::array<char*, 2> arguments{name.data(), nullptr};
    teskMain(1, arguments.data());
}

/// The process's one instance does something.
template <class Manager, class Result>
Step does(Result (Manager::*operation)()) {
    return [=] { (Manager::getInstance()->*operation)(); };
}

/// The system tells of an event.
Step event(app_event_cb callback) {
    return [=] { callback(nullptr, nullptr); };
}

void bringUp() {
    TeskConsumer::appCreated(nullptr);
}

void takeDown() {
    TeskConsumer::appTerminated(nullptr);
}

void hearOfKeys() {
    platform().settings.deliverChanges();
}

void passTenSeconds() {
    platform().system.passSeconds(10);
}

void changeLock() {
    platform().settings.setKeyAsDevice(lockKey, 1);
    platform().settings.deliverChanges();
}

const Step openPort = does(&TeskConsumerIpcMgr::init);
const Step triggerKiller = does(&TeskConsumerKiller::tryStartKillTimer);
const Step watchLock = does(&TeskConsumerLockMgr::init);
const Step registerClient = does(&TeskConsumerPolicyMgr::registerClient);
const Step deregisterClient = does(&TeskConsumerPolicyMgr::deregisterClient);
const Step applyPolicy = does(&TeskConsumerPolicyMgr::applyPolicy);

/// The mail application sends a request.
Step request(const std::string& name) {
    return [=] { platform().ports.deliver(name, ""); };
}

void sendRequest() {
    TeskConsumerIpcMgr::getInstance()->sendEasItpolicyReq("req_a", "b");
}

void relayRequest() {
    TeskConsumerIpcMgr::getInstance()->policyTest("req_a", "b");
}

/// The service is launched once more.
void launch() {
    TeskConsumer::appControl(nullptr, nullptr);
}

Step getsWorker(const std::string& request) {
    return [=] { TeskConsumerReqFactory::getWorker(request.c_str()); };
}

TeskConsumerDbMgr& db() {
    return *TeskConsumerDbMgr::getInstance();
}

void findAccount() {
    db().checkPolicyByAccountId(1);
}

void insertAccount() {
    db().insertPolicy(account(1));
}

void updateAccount() {
    db().updatePolicy(account(1));
}

void deleteAccount() {
    db().deletePolicyByAccountId(1);
}

void readAccount() {
    TeskPolicyData data;
    db().getPolicyDataByAccountId(1, data);
}

void readAccounts() {
    TeskPolicyDataList list;
    db().getPolicyDataList(list);
}

void countAccounts() {
    int count = 0;
    db().getAllEasAccountCount(&count);
}

void insertIntoLockedDatabase() {
    OtherProgram other(dbPath());
    other.run("begin exclusive");
    insertAccount();
    other.run("rollback");
}

Step adds(int accountId) {
    return [=] {
        TeskConsumerAccountMgr::getInstance()->addAccount(std::make_shared<TeskPolicyData>(account(accountId)));
    };
}

Step deletes(int accountId) {
    return [=] { TeskConsumerAccountMgr::getInstance()->delAccount(accountId); };
}

template <class Value>
Step sets(Value value) {
    return [=] { TeskConsumerPreferenceProxy().set<Value>("pref/test", value); };
}

template <class Value>
Step gets() {
    return [] { TeskConsumerPreferenceProxy().get<Value>("pref/test"); };
}

Step receives(const std::string& text) {
    return [=] {
        const std::unique_ptr<TeskConsumerResponsedMsg> owned(TeskConsumerRespMsgFactory::createResponsedMsg(text));
    };
}

/// Reads a message and does what it says.
template <class Message>
Step runs(const std::string& text) {
    return [=] {
        Message message;
        message.fromJson(text);
        message.process();
    };
}

Step readsPolicySet(const std::string& text) {
    return [=] {
        g_autoptr(JsonNode) node = json_from_string(text.c_str(), nullptr);
        TeskConsumerPolicyInfo::getInstanceFromJsonObject(json_node_get_object(node))->getPolicyData();
    };
}

Step readsAccount(const std::string& text) {
    return [=] {
        g_autoptr(JsonNode) node = json_from_string(text.c_str(), nullptr);
        TeskConsumerAccountInfo::getInstanceFromJsonObject(json_node_get_object(node));
    };
}

/// Runs the main loop until something has happened, for ten seconds at most.
void runLoopUntil(const std::function<bool()>& happened) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    const guint tick = g_timeout_add(
        50, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
    while (!happened() && std::chrono::steady_clock::now() < deadline) {
        g_main_context_iteration(nullptr, TRUE);
    }
    g_source_remove(tick);
}

void startDiagnosticsUntil(const std::string& function) {
    TestDbus::init();
    runLoopUntil([&] { return !platform().journal.logsOf(function).empty(); });
}

void startDiagnosticsWithoutBus() {
    startDiagnosticsUntil("__onNameLost");
}

/// Runs on a system bus of the test's own.
Step onBus(const Step& step) {
    return [=] {
        GTestDBus* const bus = g_test_dbus_new(G_TEST_DBUS_NONE);
        g_test_dbus_up(bus);
        g_setenv("DBUS_SYSTEM_BUS_ADDRESS", g_test_dbus_get_bus_address(bus), TRUE);
        startDiagnosticsUntil("__onNameAcquired");
        step();
        g_test_dbus_stop(bus);
        g_object_unref(bus);
    };
}

/// A developer calls a method of the diagnostic interface.
Step calls(const std::string& method, GVariant* (*arguments)() = nullptr) {
    return onBus([=] {
        g_autoptr(GDBusConnection) connection = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr);
        bool answered = false;
        g_dbus_connection_call(
            connection, "tesk.consumer.test", "/tesk/consumer/test", "tesk.consumer.test", method.c_str(),
            arguments != nullptr ? arguments() : nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
            [](GObject*, GAsyncResult*, gpointer place) { *static_cast<bool*>(place) = true; }, &answered);
        runLoopUntil([&] { return answered; });
    });
}

GVariant* zero() {
    return g_variant_new("(i)", 0);
}

void makeTestIndication() {
    const std::unique_ptr<std::string> text(TestDbus::__getPolicyDataJson(TeskPolicyData()));
}

// the table

std::vector<Row> mainRows() {
    return {row("teskMain", "Runs", {}, runMain, {"W Hello World!", "W Goodbye World!"})};
}

std::vector<Row> consumerRows() {
    return {
        row("TeskConsumer", "Made", {}, makeAndDestroy<TeskConsumer>, traced()),
        row("~TeskConsumer", "Destroyed", {}, makeAndDestroy<TeskConsumer>, traced()),
        row("init", "Done", {}, does(&TeskConsumer::init), traced()),
        row("start", "Done", {}, runMain, traced()),
        row("deinit", "Done", {}, does(&TeskConsumer::deinit), traced()),
        row("appCreated", "Done", {}, bringUp, traced()),
        row("appCreated", "NoDatabaseManager", {failsAt("operator new", 2)}, bringUp,
            traced({"E TeskConsumerDbMgr::getInstance() failed"})),
        row("appCreated", "NoPortManager", {failsAt("operator new", 3)}, bringUp,
            traced({"E TeskConsumerIpcMgr::getInstance() failed"})),
        row("appCreated", "PortRefused", {fails("message_port_register_local_port")}, bringUp,
            traced({"E ipcMgr->init() failed"})),
        row("appCreated", "PasswordOutstanding", {stored({passwordAccount(1)})}, bringUp,
            traced({"W Password policy requires stronger password."})),
        row("appTerminated", "Done", {openPort}, takeDown, traced()),
        row("appTerminated", "NoPortManager", {failsAt("operator new", 1)}, takeDown,
            traced({"W TeskConsumerIpcMgr::getInstance() failed", "W ipcMgr->init() failed"})),
        row("appTerminated", "PortNotOpen", {}, takeDown, traced({"W ipcMgr->init() failed"})),
        row("appControl", "Done", {}, launch, traced()),
        row("appLowMemory", "Done", {}, event(TeskConsumer::appLowMemory), traced({"W Low memory!"})),
        row("appLowBattery", "Done", {}, event(TeskConsumer::appLowBattery), traced({"W Low battery!"})),
        row("appDeviceOrientationChanged", "Done", {}, event(TeskConsumer::appDeviceOrientationChanged), traced()),
    };
}

std::vector<Row> reqFactoryRows() {
    return {
        row("getWorker", "Known", {}, getsWorker("req_update_policy"), traced()),
        row("getWorker", "Unknown", {}, getsWorker("req_else"), traced({"E Unsupported request : req_else"})),
    };
}

std::vector<Row> policyWorkerRows() {
    return {
        row("process", "NoMessage", {}, [] { TeskConsumerPolicyWorker().process("{}"); },
            {"W TeskConsumerRespMsgFactory::createResponsedMsg() failed"}),
    };
}

std::vector<Row> killerRows() {
    return {
        row("TeskConsumerKiller", "Made", {}, makeAndDestroy<TeskConsumerKiller>, bareLine),
        row("~TeskConsumerKiller", "Destroyed", {}, makeAndDestroy<TeskConsumerKiller>, bareLine),
        row("init", "Done", {}, does(&TeskConsumerKiller::init), traced()),
        row("tryStartKillTimer", "Done", {}, triggerKiller, traced()),
        row("__canBeKilled", "NothingApplied", {}, triggerKiller,
            traced({"W Password is not crated yet.", "W Encryption is not completed yet.",
                    "W consumer can be killed: [false]"})),
        row("__canBeKilled", "PasswordOutstanding", {keyIs(encryptionKey, 1)}, triggerKiller,
            traced({"W Password is not crated yet.", "W consumer can be killed: [false]"})),
        row("__canBeKilled", "EncryptionOutstanding", {keyIs(passwordKey, 1)}, triggerKiller,
            traced({"W Encryption is not completed yet.", "W consumer can be killed: [false]"})),
        row("__canBeKilled", "NothingOutstanding", {keyIs(passwordKey, 1), keyIs(encryptionKey, 1)}, triggerKiller,
            traced({"W consumer can be killed: [true]"})),
        row("__refreshKiller", "NothingOutstanding", {keyIs(passwordKey, 1), keyIs(encryptionKey, 1)}, triggerKiller,
            traced({"W REFRESH killer!"})),
        row("__stopKiller", "NothingApplied", {}, triggerKiller, traced({"W STOP killer!"})),
        row("operator()", "KeyChanged", {does(&TeskConsumerKiller::init), keyIs(passwordKey, 1)}, hearOfKeys, bareLine),
        row("operator()", "TimePassed", {keyIs(passwordKey, 1), keyIs(encryptionKey, 1), triggerKiller}, passTenSeconds,
            bareLine),
    };
}

std::vector<Row> ipcMgrRows() {
    return {
        row("TeskConsumerIpcMgr", "Made", {}, makeAndDestroy<TeskConsumerIpcMgr>, bareLine),
        row("~TeskConsumerIpcMgr", "Destroyed", {}, makeAndDestroy<TeskConsumerIpcMgr>, bareLine),
        row("init", "Done", {}, openPort, traced()),
        row("init", "Refused", {fails("message_port_register_local_port", -13)}, openPort,
            traced({"E Failed message port register. (-13)"})),
        row("deinit", "Done", {openPort}, TeskConsumerIpcMgr::deinit, traced()),
        row("deinit", "Refused", {openPort, fails("message_port_unregister_local_port", -5)},
            TeskConsumerIpcMgr::deinit, traced({"E Failed message port unregister. (-5)"})),
        row("sendEasItpolicyReq", "Done", {}, sendRequest, traced({"I [RELAY MSG] req_a : b"})),
        row("policyTest", "Done", {}, relayRequest, {"I [RELAY MSG] req_a : b"}),
        row("__teskItpolicyReqCb", "Known", {openPort}, request("chk_device_encryption_policy"), traced()),
        row("__teskItpolicyReqCb", "Unknown", {openPort}, request("req_a"), traced()),
    };
}

std::vector<Row> respMsgFactoryRows() {
    return {
        row("createResponsedMsg", "Known", {}, receives(samples::indication(1, samples::pin)), traced()),
        row("createResponsedMsg", "NotJson", {}, receives("policy"), entered({"E json_parser_get_root failed"})),
        row("createResponsedMsg", "NotAnObject", {}, receives("[]"), entered({"E json_node_get_object failed"})),
        row("createResponsedMsg", "Unknown", {}, receives(R"({"msgId":"email-else"})"),
            traced({"E this is not request msgId: email-else"})),
    };
}

/// What every kind of message logs of a text that is not of its kind.
template <class Message>
std::vector<Row> withEnvelopeRows(std::vector<Row> rows) {
    const std::vector<Row> envelopeRows{
        row("fromJson", "NotJson", {}, runs<Message>("policy"), traced({"E json_parser_get_root failed"})),
        row("fromJson", "NotAnObject", {}, runs<Message>("[]"), traced({"E json_node_get_object failed"})),
        row("fromJson", "OtherKind", {}, runs<Message>("{}"), traced({"E msgId is diffrent"})),
    };
    rows.insert(rows.end(), envelopeRows.begin(), envelopeRows.end());
    return rows;
}

std::vector<Row> itPolicyIndRows() {
    return withEnvelopeRows<TeskConsumerItPolicyIndMsg>({
        row("getInstanceFromJsonObject", "Done", {}, readsPolicySet("{}"), traced()),
        row("getPolicyData", "Done", {}, readsPolicySet("{}"), traced()),
        row("fromJson", "Done", {}, runs<TeskConsumerItPolicyIndMsg>(samples::indication(1, samples::builtIn)),
            traced()),
        row("fromJson", "NoArray", {}, runs<TeskConsumerItPolicyIndMsg>(samples::indicationOf("{}")),
            traced({"E json_object_get_object_member failed"})),
        row("process", "Done", {}, runs<TeskConsumerItPolicyIndMsg>(samples::indication(1, samples::builtIn)),
            traced()),
        row("process", "PasswordOutstanding", {},
            runs<TeskConsumerItPolicyIndMsg>(samples::indication(1, samples::pin)),
            traced({"W Password policy requires stronger password."})),
    });
}

constexpr char emptyAccountInfo[] = R"({"msgId":"email-account-info","accountId":[]})";

std::vector<Row> accountInfoRespRows() {
    return withEnvelopeRows<TeskConsumerAccountInfoRespMsg>({
        row("TeskConsumerAccountInfoRespMsg", "Made", {}, makeAndDestroy<TeskConsumerAccountInfoRespMsg>, bareLine),
        row("~TeskConsumerAccountInfoRespMsg", "Destroyed", {}, makeAndDestroy<TeskConsumerAccountInfoRespMsg>,
            bareLine),
        row("getInstanceFromJsonObject", "Done", {}, readsAccount(R"({"policySet":{}})"), traced()),
        row("getInstanceFromJsonObject", "NoPolicySet", {}, readsAccount("{}"), traced()),
        row("fromJson", "Done", {}, runs<TeskConsumerAccountInfoRespMsg>(emptyAccountInfo), traced()),
        row("fromJson", "NoArray", {}, runs<TeskConsumerAccountInfoRespMsg>(R"({"msgId":"email-account-info"})"),
            traced()),
        row("process", "Done", {}, runs<TeskConsumerAccountInfoRespMsg>(emptyAccountInfo), traced()),
        row("process", "PasswordOutstanding", {stored({passwordAccount(1)})},
            runs<TeskConsumerAccountInfoRespMsg>(emptyAccountInfo),
            traced({"W Password policy requires stronger password."})),
    });
}

constexpr char emptyInitResponse[] = R"({"msgId":"email-init-res","param":{"accountId":[]}})";

std::vector<Row> initRespRows() {
    return withEnvelopeRows<TeskConsumerInitRespMsg>({
        row("fromJson", "Done", {}, runs<TeskConsumerInitRespMsg>(emptyInitResponse), traced()),
        row("fromJson", "NoObject", {}, runs<TeskConsumerInitRespMsg>(R"({"msgId":"email-init-res","param":[]})"),
            traced({"E json_object_get_object_member failed"})),
        row("fromJson", "NoArray", {}, runs<TeskConsumerInitRespMsg>(R"({"msgId":"email-init-res","param":{}})"),
            traced()),
        row("process", "Done", {}, runs<TeskConsumerInitRespMsg>(emptyInitResponse), traced()),
        row("process", "PasswordOutstanding", {stored({passwordAccount(1)})},
            runs<TeskConsumerInitRespMsg>(emptyInitResponse),
            traced({"W Password policy requires stronger password."})),
    });
}

std::vector<Row> remoteWipeRows() {
    return withEnvelopeRows<TeskConsumerEasRemoteWipeIndMsg>({
        row("~TeskConsumerEasRemoteWipeIndMsg", "Destroyed", {}, makeAndDestroy<TeskConsumerEasRemoteWipeIndMsg>,
            bareLine),
        row("fromJson", "Done", {}, runs<TeskConsumerEasRemoteWipeIndMsg>(R"({"msgId":"eas-remote-wipe"})"), traced()),
    });
}

const Step prepareFails = fails("sqlite3_prepare_v2", SQLITE_ERROR);
const Step readFails = fails("sqlite3_step", SQLITE_IOERR);
const Step writeFails = fails("sqlite3_step", SQLITE_FULL);

std::vector<Row> dbMgrRows() {
    return {
        row("TeskConsumerDbMgr", "Made", {}, makeAndDestroy<TeskConsumerDbMgr>, bareLine),
        row("TeskConsumerDbMgr", "NotOpened", {fails("app_get_data_path")}, makeAndDestroy<TeskConsumerDbMgr>,
            {"I ", "W db initialize fail!"}),
        row("~TeskConsumerDbMgr", "Destroyed", {}, makeAndDestroy<TeskConsumerDbMgr>, bareLine),
        row("__init", "Done", {}, makeAndDestroy<TeskConsumerDbMgr>, bareLine),
        row("__openDb", "FirstStart", {}, makeAndDestroy<TeskConsumerDbMgr>,
            traced({"I dbPath : <data>/dbspace/.tesk.db", "I dbDir : <data>/dbspace", "I Let's create db!"})),
        row("__openDb", "SecondStart", {makeAndDestroy<TeskConsumerDbMgr>}, makeAndDestroy<TeskConsumerDbMgr>,
            traced({"I dbPath : <data>/dbspace/.tesk.db"})),
        row("__openDb", "NoDataPath", {fails("app_get_data_path")}, makeAndDestroy<TeskConsumerDbMgr>,
            entered({"E app_get_data_path failed"})),
        row("__openDb", "NoFolder", {fails("mkdir", EACCES)}, makeAndDestroy<TeskConsumerDbMgr>,
            entered({"I dbPath : <data>/dbspace/.tesk.db", "I dbDir : <data>/dbspace", "E g_mkdir() failed!"})),
        row("__openDb", "LinksInCircles", {linkDatabaseToItself}, makeAndDestroy<TeskConsumerDbMgr>,
            entered({"I dbPath : <data>/dbspace/.tesk.db", "I dbDir : <data>/dbspace", "E sqlite3_open failed: [14]"})),
        row("__openDb", "NewFileNotOpened", {fails("sqlite3_open", 14)}, makeAndDestroy<TeskConsumerDbMgr>,
            entered({"I dbPath : <data>/dbspace/.tesk.db", "I dbDir : <data>/dbspace", "E sqlite3_open failed: [14]"})),
        row("__openDb", "FileNotOpened", {makeAndDestroy<TeskConsumerDbMgr>, fails("sqlite3_open", 14)},
            makeAndDestroy<TeskConsumerDbMgr>,
            entered({"I dbPath : <data>/dbspace/.tesk.db", "E sqlite3_open failed: [14]"})),
        row("__openDb", "NoBusyHandler", {makeAndDestroy<TeskConsumerDbMgr>, fails("sqlite3_busy_handler", 21)},
            makeAndDestroy<TeskConsumerDbMgr>,
            traced({"I dbPath : <data>/dbspace/.tesk.db", "E sqlite3_busy_handler failed: [21]"})),
        row("__openDb", "TableNotMade", {writeFails}, makeAndDestroy<TeskConsumerDbMgr>,
            traced({"I dbPath : <data>/dbspace/.tesk.db", "I dbDir : <data>/dbspace", "I Let's create db!"})),
        row("__openDb", "FileNotNamed", {fails("rename", 13)}, makeAndDestroy<TeskConsumerDbMgr>,
            entered({"I dbPath : <data>/dbspace/.tesk.db", "I dbDir : <data>/dbspace", "I Let's create db!",
                     "E rename failed: [13]"})),
        row("__createDb", "NotPrepared", {prepareFails}, makeAndDestroy<TeskConsumerDbMgr>,
            {"E query prepare fail: [" + TeskPolicyTable::createSql() + "] - not an error"}),
        row("__createDb", "NotCreated", {writeFails}, makeAndDestroy<TeskConsumerDbMgr>,
            {"W db create fail: [" + TeskPolicyTable::createSql() + "] - not an error"}),
        row("__queryPrepare", "Refused", {stored({}), prepareFails}, countAccounts,
            {"E sqlite3_prepare_v2 failed: not an error"}),
        row("__queryFinalize", "Refused", {stored({}), fails("sqlite3_finalize", 5)}, countAccounts,
            {"W sqlite3_finalize failed: [5]"}),
        row("__busyHandler", "Locked", {stored({})}, insertIntoLockedDatabase,
            {"I ", "W busy handler called! count - 1", "I ", "W busy handler called! count - 2", "I ",
             "W busy handler called! count - 3", "I ", "W busy handler called! count - 4", "I ",
             "W busy handler called! count - 5", "I ", "E sqlite busy error!"}),

        row("checkPolicyByAccountId", "Stored", {stored({account(1)})}, findAccount, traced()),
        row("checkPolicyByAccountId", "Absent", {stored({})}, findAccount, traced()),
        row(
            "checkPolicyByAccountId", "InvalidAccount", {stored({})}, [] { db().checkPolicyByAccountId(0); },
            traced({"E accountId is invalid"})),
        row("checkPolicyByAccountId", "NotPrepared", {stored({}), prepareFails}, findAccount,
            traced({"E db failure: not an error"})),
        row("checkPolicyByAccountId", "NotRead", {stored({}), readFails}, findAccount,
            traced({"E db failure: not an error"})),

        row("insertPolicy", "Done", {stored({})}, insertAccount, traced()),
        row("insertPolicy", "NotPrepared", {stored({}), prepareFails}, insertAccount,
            traced({"E db failure: not an error"})),
        row("insertPolicy", "StoredAlready", {stored({account(1)})}, insertAccount,
            traced({"E db failure: UNIQUE constraint failed: eas_policy_tbl.account_id"})),

        row("updatePolicy", "Done", {stored({account(1)})}, updateAccount, traced()),
        row("updatePolicy", "NotPrepared", {stored({}), prepareFails}, updateAccount,
            traced({"E db failure: not an error"})),
        row("updatePolicy", "NotWritten", {stored({}), writeFails}, updateAccount,
            traced({"E db failure: not an error"})),

        row("deletePolicyByAccountId", "Done", {stored({account(1)})}, deleteAccount, traced()),
        row(
            "deletePolicyByAccountId", "InvalidAccount", {stored({})}, [] { db().deletePolicyByAccountId(-5); },
            traced({"E accountId is invalid"})),
        row("deletePolicyByAccountId", "NotPrepared", {stored({}), prepareFails}, deleteAccount,
            traced({"E db failure: not an error"})),
        row("deletePolicyByAccountId", "NotWritten", {stored({}), writeFails}, deleteAccount,
            traced({"E db failure: not an error"})),

        row("getPolicyDataByAccountId", "Stored", {stored({account(1)})}, readAccount, traced()),
        row("getPolicyDataByAccountId", "Absent", {stored({})}, readAccount, traced({"W query result: 101"})),
        row(
            "getPolicyDataByAccountId", "InvalidAccount", {stored({})},
            [] {
                TeskPolicyData data;
                db().getPolicyDataByAccountId(0, data);
            },
            traced({"E accountId is invalid"})),
        row("getPolicyDataByAccountId", "NotPrepared", {stored({}), prepareFails}, readAccount,
            traced({"E db failure: not an error"})),
        row("getPolicyDataByAccountId", "NotRead", {stored({}), readFails}, readAccount,
            traced({"E db failure: not an error", "W query result: 10"})),

        row("getPolicyDataList", "Stored", {stored({account(1)})}, readAccounts, entered()),
        row("getPolicyDataList", "Empty", {stored({})}, readAccounts, entered({"W query result: 101"})),
        row("getPolicyDataList", "NotPrepared", {stored({}), prepareFails}, readAccounts,
            entered({"E db failure: not an error"})),
        row("getPolicyDataList", "NotRead", {stored({}), readFails}, readAccounts,
            entered({"E db failure: not an error", "W query result: 10"})),

        row("getAllEasAccountCount", "Done", {stored({})}, countAccounts, entered()),
        row("getAllEasAccountCount", "NotPrepared", {stored({}), prepareFails}, countAccounts,
            entered({"E db failure: not an error"})),
        row("getAllEasAccountCount", "NotRead", {stored({}), readFails}, countAccounts,
            entered({"E db failure: not an error"})),
    };
}

std::vector<Row> preferenceProxyRows() {
    return {
        row("set", "RefusedInt", {fails("preference_set_int", -5)}, sets(1), {"W preference_set_int failed: [-5]"}),
        row("set", "RefusedBool", {fails("preference_set_boolean", -5)}, sets(true),
            {"W preference_set_boolean failed: [-5]"}),
        row("set", "RefusedDouble", {fails("preference_set_double", -5)}, sets(1.5),
            {"W preference_set_double failed: [-5]"}),
        row("set", "RefusedText", {fails("preference_set_string", -5)},
            [] { TeskConsumerPreferenceProxy().set("pref/test", "text"); }, {"W preference_set_string failed: [-5]"}),
        row("get", "RefusedInt", {fails("preference_get_int", -5)}, gets<int>(), {"W preference_get_int failed: [-5]"}),
        row("get", "RefusedBool", {fails("preference_get_boolean", -5)}, gets<bool>(),
            {"W preference_get_boolean failed: [-5]"}),
        row("get", "RefusedDouble", {fails("preference_get_double", -5)}, gets<double>(),
            {"W preference_get_double failed: [-5]"}),
        row("get", "RefusedText", {fails("preference_get_string", -5)}, gets<std::string>(),
            {"W preference_get_string failed: [-5]"}),
        row("exist", "Refused", {fails("preference_is_existing", -5)},
            [] { TeskConsumerPreferenceProxy().exist("pref/test"); }, {"W preference_is_existing failed: [-5]"}),
        row("setPwdEnforcingAccountId", "Refused", {fails("preference_set_int")},
            [] { TeskConsumerPreferenceProxy::setPwdEnforcingAccountId(7); }, {"E Failed to set enforce account id."}),
        row("getPwdEnforcingAccountId", "Refused", {fails("preference_get_int")},
            TeskConsumerPreferenceProxy::getPwdEnforcingAccountId, {"E Failed to get enforce account id. ret : -1"}),
        row("init", "Done", {}, TeskConsumerPreferenceProxy::init, traced()),
    };
}

std::vector<Row> accountMgrRows() {
    return {
        row("TeskConsumerAccountMgr", "Made", {}, makeAndDestroy<TeskConsumerAccountMgr>, bareLine),
        row("~TeskConsumerAccountMgr", "Destroyed", {}, makeAndDestroy<TeskConsumerAccountMgr>, bareLine),
        row("addAccount", "New", {stored({})}, adds(1), traced()),
        row("addAccount", "Stored", {stored({account(1)})}, adds(1), traced()),
        row("addAccount", "NotInserted", {stored({}), failsAt("sqlite3_step", 3, SQLITE_FULL)}, adds(1),
            traced({"W _db_insert_policy_data failed: -1001"})),
        row("addAccount", "NotUpdated", {stored({account(1)}), failsAt("sqlite3_step", 2, SQLITE_FULL)}, adds(1),
            traced({"W _db_update_rule_data failed: -1001"})),
        row("delAccount", "Done", {stored({account(1)})}, deletes(1), traced()),
        row("delAccount", "InvalidAccount", {stored({})}, deletes(0), traced({"W deletePolicyByAccountId failed: -2"})),
        row("delAccount", "PasswordOutstanding", {stored({account(1), passwordAccount(2)})}, deletes(1),
            traced({"W applyPolicy failed: -6000"})),
    };
}

/// The type, quality, length and complex characters that a decision compares, each as it is and as it must be.
Lines decision(const std::array<const char*, 8>& values, const Lines& reason) {
    const auto pair = [&](const std::string& name, std::size_t at) {
        return "I ##### current " + name + ": [" + values.at(at) + "], new " + name + ": [" + values.at(at + 1) + "]";
    };
    auto lines = entered({pair("Type   ", 0), pair("Quality", 2), pair("MinLeng", 4), pair("Complex", 6)});
    lines.insert(lines.end(), reason.begin(), reason.end());
    return lines;
}

/// The device refuses a setting.
Row refusal(const char* situation, const std::string& setter, const std::string& text) {
    return row("applyPolicy", situation, {stored({limitingAccount()}), fails(setter, -13)}, applyPolicy,
               entered({text, "I NOT Enforce password"}));
}

std::vector<Row> policyMgrRows() {
    return {
        row("TeskConsumerPolicyMgr", "Made", {}, makeAndDestroy<TeskConsumerPolicyMgr>, bareLine),
        row("~TeskConsumerPolicyMgr", "Destroyed", {}, makeAndDestroy<TeskConsumerPolicyMgr>, bareLine),
        row("registerClient", "FirstAccount", {}, registerClient, entered({"I easAccountCount : 0"})),
        row("registerClient", "Registered", {stored({account(1)})}, registerClient, entered({"I easAccountCount : 1"})),
        row("registerClient", "Refused", {fails("dpm_admin_register_client", -13)}, registerClient,
            entered({"I easAccountCount : 0", "W Failed to register policy admin : -13"})),
        row("deregisterClient", "NoAccount", {stored({})}, deregisterClient, entered({"I easAccountCount : 0"})),
        row("deregisterClient", "Needed", {stored({account(1)})}, deregisterClient, entered({"I easAccountCount : 1"})),
        row("deregisterClient", "Refused", {fails("dpm_admin_deregister_client", -13)}, deregisterClient,
            entered({"I easAccountCount : 0", "W Failed to register policy admin : -13"})),
        row("factoryReset", "Done", {stored({})}, does(&TeskConsumerPolicyMgr::factoryReset), traced()),
        row("factoryReset", "Refused", {fails("dpm_security_wipe_data", -13)},
            does(&TeskConsumerPolicyMgr::factoryReset), traced({"W Failed to wipe internal storage. : [-13]"})),
        row("getStrongPolicy", "Done", {}, does(&TeskConsumerPolicyMgr::getStrongPolicy),
            {"I <<<<<<<<<< Strong policy >>>>>>>>>>"}),
        row("__getPasswordEnforcingAccountId", "Found", {stored({passwordAccount(2)})}, applyPolicy,
            {"I Password enforcing account id : 2"}),
        row("__getPasswordEnforcingAccountId", "NoList", {stored({}), fails("dpm_password_get_quality")}, applyPolicy,
            {"I Password enforcing account id : 0"}),
        row("__getOdeEnforceFlag", "Outstanding", {stored({encryptingAccount()})}, applyPolicy, entered()),
        row("__getOdeEnforceFlag", "NotOutstanding", {stored({account(1)})}, applyPolicy, traced()),

        row("__getPasswordEnforceFlag", "NoQuality", {fails("dpm_password_get_quality", -13)}, applyPolicy,
            entered({"E Failed to get password quality. [-13]"})),
        row("__getPasswordEnforceFlag", "NoLength", {fails("dpm_password_get_minimum_length", -13)}, applyPolicy,
            entered({"E Failed to get password min length. [-13]"})),
        row("__getPasswordEnforceFlag", "NoComplexCharacters", {fails("dpm_password_get_min_complex_chars", -13)},
            applyPolicy, entered({"E Failed to get password min complex characters. [-13]"})),
        row("__getPasswordEnforceFlag", "OldQuality",
            {deviceHolds(17, 5), fails("dpm_password_set_quality", -13), fails("dpm_password_set_minimum_length", -14),
             fails("dpm_password_get_min_complex_chars", -15)},
            applyPolicy,
            entered({"W Before MDM -> DPM migration - current Type: [16], current Quality: [17]",
                     "W setPasswordQuality failed: [-13]", "W setPasswordMinLength failed: [-14]",
                     "W After MDM -> DPM migration - current Type: [32], current Quality: [33]",
                     "E Failed to get password min complex characters. [-15]"})),
        row("__getPasswordEnforceFlag", "NoPasswordRequired", {stored({account(1)}), deviceHolds(33, 5)}, applyPolicy,
            decision({"32", "0", "33", "0", "5", "0", "0", "0"}, {})),
        row("__getPasswordEnforceFlag", "QualityTooWeak", {stored({passwordAccount(1)})}, applyPolicy,
            decision({"0", "32", "0", "33", "0", "4", "0", "0"}, {"E enforce password by password quality"})),
        row("__getPasswordEnforceFlag", "SimplePassword", {stored({complexAccount()}), deviceHolds(33, 4)}, applyPolicy,
            decision({"32", "32", "33", "32", "4", "4", "0", "0"}, {"E enforce password by simple password policy"})),
        row("__getPasswordEnforceFlag", "TooShort", {stored({passwordAccount(1)}), deviceHolds(33, 3)}, applyPolicy,
            decision({"32", "32", "33", "33", "3", "4", "0", "0"}, {"E enforce password by password length"})),
        row("__getPasswordEnforceFlag", "TooFewComplexCharacters",
            {stored({alphanumericAccount()}), deviceHolds(129, 4, 2)}, applyPolicy,
            decision({"128", "128", "129", "129", "4", "4", "2", "3"}, {"E enforce password by min complex charater"})),
        row("__getPasswordEnforceFlag", "NoLock", {stored({passwordAccount(1)}), deviceHolds(33, 4)}, applyPolicy,
            decision({"32", "32", "33", "33", "4", "4", "0", "0"},
                     {"E enforce password. quality : 33, lock type : PIN"})),
        row("__getPasswordEnforceFlag", "PinInsteadOfPassword",
            {stored({alphanumericAccount()}), deviceHolds(129, 4, 3), keyIs(lockKey, 1)}, applyPolicy,
            decision({"128", "128", "129", "129", "4", "4", "3", "3"},
                     {"E enforce password. quality : 129, lock type : Password"})),

        row("applyPolicy", "Satisfied", {stored({account(1)})}, applyPolicy, entered({"I NOT Enforce password"})),
        row("applyPolicy", "Outstanding", {stored({passwordAccount(1)})}, applyPolicy, entered({"I Enforce password"})),
        row("applyPolicy", "KeysRefusedWhenSatisfied", {stored({account(1)}), fails("vconf_set_int", -3)}, applyPolicy,
            entered({"W vconf_set_int(db/eas/is_pwd_input_finished) failed: [-3]",
                     "W vconf_set_int(db/eas/device_encryption_applied) failed: [-3]", "I NOT Enforce password",
                     "W vconf_set_int(db/eas/password_policy_applied) failed: [-3]"})),
        row("applyPolicy", "KeysRefusedWhenOutstanding", {stored({passwordAccount(1)}), fails("vconf_set_int", -3)},
            applyPolicy,
            entered({"W vconf_set_int(db/eas/device_encryption_applied) failed: [-3]", "I Enforce password",
                     "W vconf_set_int(db/eas/password_policy_applied) failed: [-3]"})),
        refusal("NoQuality", "dpm_password_set_quality", "W [EAS] Failed setPasswordQuality(0). [-13]"),
        refusal("NoLength", "dpm_password_set_minimum_length", "W [EAS] Failed setPasswordMinLength(0). [-13]"),
        refusal("NoFailedAttempts", "dpm_password_set_maximum_failed_attempts_for_wipe",
                "W [EAS] Failed setPasswordMaxFailedAttempts(5). [-13]"),
        refusal("NoComplexCharacters", "dpm_password_set_min_complex_chars",
                "W [EAS] Failed setPasswordMinComplexCharacters(0). [-13]"),
        refusal("NoInactivity", "dpm_password_set_max_inactivity_time_device_lock",
                "W [EAS] Failed setPasswordMaxInactivityTimeDeviceLock(60). [-13]"),
        refusal("NoExpiration", "dpm_password_set_expires", "W [EAS] Failed setPasswordExpires(30). [-13]"),
        refusal("NoHistory", "dpm_password_set_history", "W [EAS] Failed setPasswordHistory(4). [-13]"),
        refusal("NoWifi", "dpm_restriction_set_wifi_state", "W [EAS] Failed setRestrictionWifi(0). [-13]"),
        refusal("NoMessaging", "dpm_restriction_set_messaging_state",
                "W [EAS] Failed setRestrictionMessaging(1). [-13]"),
        refusal("NoPopImap", "dpm_restriction_set_popimap_email_state",
                "W [EAS] Failed setRestrictionPopImap(1). [-13]"),
        refusal("NoDecryption", "dpm_security_set_internal_storage_encryption",
                "W [EAS] Failed setSecurityInternalStorageEncryption(0). [-13]"),
        row("applyPolicy", "NoEncryption",
            {stored({encryptingAccount()}), fails("dpm_security_set_internal_storage_encryption", -13)}, applyPolicy,
            entered({"W [EAS] Failed setSecurityInternalStorageEncryption(1). [-13]", "I NOT Enforce password"})),
    };
}

std::vector<Row> lockMgrRows() {
    return {
        row("TeskConsumerLockMgr", "Made", {}, makeAndDestroy<TeskConsumerLockMgr>, bareLine),
        row("~TeskConsumerLockMgr", "Destroyed", {}, makeAndDestroy<TeskConsumerLockMgr>, bareLine),
        row("init", "Done", {}, watchLock, {}),
        row("init", "Refused", {fails("vconf_notify_key_changed", -3)}, watchLock,
            {"W vconf_notify_key_changed(db/setting/lock_type) failed: [-3]"}),
        row("getLockType", "Done", {}, does(&TeskConsumerLockMgr::getLockType), traced()),
        row("__lockTypeChangedCb", "LockSet", {watchLock}, changeLock, traced()),
        row("__lockTypeChangedCb", "KeyRefused", {watchLock, fails("vconf_set_int", -3)}, changeLock,
            traced({"W vconf_set_int(db/eas/password_policy_applied) failed: [-3]"})),
        row("__lockTypeChangedCb", "NotAskedFor", {watchLock, keyIs(passwordKey, 1)}, changeLock,
            traced({"W Failed to get password policy applied value"})),
    };
}

std::vector<Row> utilRows() {
    return {
        row("getIsTutorialFinished", "Finished", {keyIs(tutorialKey, 0)}, TeskConsumerUtil::getIsTutorialFinished,
            traced({"I tutorial is finished: [1]"})),
        row("getIsTutorialFinished", "InProgress", {keyIs(tutorialKey, 1)}, TeskConsumerUtil::getIsTutorialFinished,
            traced({"I tutorial is finished: [0]"})),
        row("getIsTutorialFinished", "Unreadable", {fails("vconf_get_int", -3)},
            TeskConsumerUtil::getIsTutorialFinished,
            traced({"W vconf_get_int failed: [-3]", "I tutorial is finished: [1]"})),

        row("launchPopup", "Sent", {}, TeskConsumerUtil::launchPopup, traced()),
        row("launchPopup", "TutorialInProgress", {keyIs(tutorialKey, 1)}, TeskConsumerUtil::launchPopup,
            entered({"W tutorial is not finished yet"})),
        row("launchPopup", "NotCreated", {fails("app_control_create", -12)}, TeskConsumerUtil::launchPopup,
            entered({"W app_control_create() failed: -12"})),
        row("launchPopup", "NoAppId", {fails("app_control_set_app_id", -12)}, TeskConsumerUtil::launchPopup,
            traced({"W app_control_set_app_id() failed: -12"})),
        row("launchPopup", "NoOperation", {failsAt("app_control_add_extra_data", 1, -12)},
            TeskConsumerUtil::launchPopup, traced({"W app_control_add_extra_data() failed: -12"})),
        row("launchPopup", "NoMinLength", {failsAt("app_control_add_extra_data", 3, -12)},
            TeskConsumerUtil::launchPopup, traced({"W app_control_add_extra_data() failed: -12"})),
        row("launchPopup", "NotSent", {fails("app_control_send_launch_request", -12)}, TeskConsumerUtil::launchPopup,
            traced({"W app_control_send_launch_request() failed: -12"})),

        row("exitPopup", "Sent", {}, TeskConsumerUtil::exitPopup, {"I Leave"}),
        row("exitPopup", "NotCreated", {fails("app_control_create", -12)}, TeskConsumerUtil::exitPopup,
            {"W app_control_create() failed: -12"}),
        row("exitPopup", "NoAppId", {fails("app_control_set_app_id", -12)}, TeskConsumerUtil::exitPopup,
            {"W app_control_set_app_id() failed: -12", "I Leave"}),
        row("exitPopup", "NoOperation", {fails("app_control_add_extra_data", -12)}, TeskConsumerUtil::exitPopup,
            {"W app_control_add_extra_data() failed: -12", "I Leave"}),
        row("exitPopup", "NotSent", {fails("app_control_send_launch_request", -12)}, TeskConsumerUtil::exitPopup,
            {"W app_control_send_launch_request() failed: -12", "I Leave"}),

        row("launchOdePopup", "Sent", {}, TeskConsumerUtil::launchOdePopup, traced()),
        row("launchOdePopup", "TutorialInProgress", {keyIs(tutorialKey, 1)}, TeskConsumerUtil::launchOdePopup,
            entered({"W tutorial is not finished yet"})),
        row("launchOdePopup", "NotCreated", {fails("app_control_create", -12)}, TeskConsumerUtil::launchOdePopup,
            entered({"W app_control_create() failed: -12"})),
        row("launchOdePopup", "NoAppId", {fails("app_control_set_app_id", -12)}, TeskConsumerUtil::launchOdePopup,
            traced({"W app_control_set_app_id() failed: -12"})),
        row("launchOdePopup", "NoType", {fails("app_control_add_extra_data", -12)}, TeskConsumerUtil::launchOdePopup,
            traced({"W app_control_add_extra_data() failed: -12"})),
        row("launchOdePopup", "NotSent", {fails("app_control_send_launch_request", -12)},
            TeskConsumerUtil::launchOdePopup, traced({"W app_control_send_launch_request() failed: -12"})),

        row("enableOdeSetting", "Sent", {}, TeskConsumerUtil::enableOdeSetting, traced()),
        row("enableOdeSetting", "NotCreated", {fails("app_control_create", -12)}, TeskConsumerUtil::enableOdeSetting,
            traced({"W app_control_set_app_id() failed: -22"})),
        row("enableOdeSetting", "NoAppId", {fails("app_control_set_app_id", -12)}, TeskConsumerUtil::enableOdeSetting,
            traced({"W app_control_set_app_id() failed: -12"})),
        row("enableOdeSetting", "NoOperation", {fails("app_control_add_extra_data", -12)},
            TeskConsumerUtil::enableOdeSetting, traced({"W app_control_add_extra_data() failed: -12"})),
        row("enableOdeSetting", "NotSent", {fails("app_control_send_launch_request", -12)},
            TeskConsumerUtil::enableOdeSetting, traced({"W app_control_send_launch_request() failed: -12"})),

        row("__enforcePassword", "Sent", {}, TeskConsumerUtil::__enforcePassword, traced()),
        row("__enforcePassword", "NotCreated", {fails("app_control_create", -12)}, TeskConsumerUtil::__enforcePassword,
            entered({"W app_control_create() failed: -12"})),
        row("__enforcePassword", "NoAppId", {fails("app_control_set_app_id", -12)}, TeskConsumerUtil::__enforcePassword,
            traced({"W app_control_set_app_id() failed: -12"})),
        row("__enforcePassword", "NoState", {fails("app_control_add_extra_data", -12)},
            TeskConsumerUtil::__enforcePassword, traced({"W app_control_add_extra_data() failed: -12"})),
        row("__enforcePassword", "NotSent", {fails("app_control_send_launch_request", -12)},
            TeskConsumerUtil::__enforcePassword, traced({"W app_control_send_launch_request() failed: -12"})),

        row("launchQuillonConsumer", "Sent", {}, TeskConsumerUtil::launchQuillonConsumer, traced()),
        row("launchQuillonConsumer", "NotSent", {fails("app_control_send_launch_request", -12)},
            TeskConsumerUtil::launchQuillonConsumer, traced({"E consumer launching fail: [-12]"})),
    };
}

constexpr char testIndication[] =
    R"({"msgId":"email-itpolicy-ind","seqId":999,"param":[{"accountId":999,"accountName":"test@tesk.example",)"
    R"("policySet":{"PasswordMode":0,"devicePasswordEnabled":false,"allowSimplePassword":true,)"
    R"("minDevicePasswordLength":0,"maxDevicePasswordFailedAttempts":0,"minDevicePasswordComplexCharacters":0,)"
    R"("maxInactivityTimeDeviceLock":0,"passwordRecoveryEnabled":true,"devicePasswordExpiration":0,)"
    R"("devicePasswordHistory":0,"requireDeviceEncryption":false,"allowBluetoothMode":true,"allowBrowser":true,)"
    R"("allowCamera":true,"allowDesktopSync":true,"allowInternetSharing":true,"allowPOPIMAPEmail":true,)"
    R"("allowStorageCard":true,"allowTextMessaging":true,"allowWifi":true}}]})";

std::vector<Row> testDbusRows() {
    return {
        row("__initGdbus", "Done", {}, TestDbus::init, {"I ownerId: [1]"}),
        row("__initGdbus", "BadDescription", {fails("g_dbus_node_info_new_for_xml")}, TestDbus::init,
            {"E g_dbus_node_info_new_for_xml failed: [the test says so]", "I ownerId: [1]"}),
        row("__onBusAcquired", "Done", {}, onBus([] {}), entered({"I regId: [1]"})),
        row("__onNameAcquired", "Done", {}, onBus([] {}), entered()),
        row("__onNameLost", "NoBus", {}, startDiagnosticsWithoutBus, entered()),
        row("__handleMethodCall", "Ping", {}, calls("ping"),
            entered({"I TestDbus methodName: [ping]", "W Pong. I'm alive!"})),
        row("__handleMethodCall", "RemoveAccount", {}, calls("removeAccount"),
            entered({"I TestDbus methodName: [removeAccount]"})),
        row("__handleMethodCall", "UsingFile", {policyFileHolds("{}")}, calls("usingFile"),
            entered({"I TestDbus methodName: [usingFile]"})),
        row("__handleMethodCall", "NoFile", {policyFileIsMissing}, calls("usingFile"),
            entered({"I TestDbus methodName: [usingFile]", "E Failed to open file."})),
        row("__handleMethodCall", "EmptyFile", {policyFileHolds("")}, calls("usingFile"),
            entered({"I TestDbus methodName: [usingFile]", "W Failed to get string from file."})),
        row("__handleMethodCall", "Field", {}, calls("allowWifi", zero),
            entered({"I TestDbus methodName: [allowWifi]", "I value: [0]"})),
        row("__getPolicyDataJson", "Done", {}, makeTestIndication,
            traced({"I toJson: [" + std::string(testIndication) + "]"})),
    };
}

std::vector<Source> table() {
    return {
        {"main.cpp", mainRows()},
        {"TeskConsumer.cpp", consumerRows()},
        {"TeskConsumerReqFactory.cpp", reqFactoryRows()},
        {"TeskConsumerPolicyWorker.cpp", policyWorkerRows()},
        {"TeskConsumerKiller.cpp", killerRows()},
        {"TeskConsumerIpcMgr.cpp", ipcMgrRows()},
        {"TeskConsumerRespMsgFactory.cpp", respMsgFactoryRows()},
        {"TeskConsumerItPolicyIndMsg.cpp", itPolicyIndRows()},
        {"TeskConsumerAccountInfoRespMsg.cpp", accountInfoRespRows()},
        {"TeskConsumerInitRespMsg.cpp", initRespRows()},
        {"TeskConsumerEasRemoteWipeIndMsg.cpp", remoteWipeRows()},
        {"TeskConsumerDbMgr.cpp", dbMgrRows()},
        {"TeskConsumerPreferenceProxy.cpp", preferenceProxyRows()},
        {"TeskConsumerAccountMgr.cpp", accountMgrRows()},
        {"TeskConsumerPolicyMgr.cpp", policyMgrRows()},
        {"TeskConsumerLockMgr.cpp", lockMgrRows()},
        {"TeskConsumerUtil.cpp", utilRows()},
        {"TestDbus.cpp", testDbusRows()},
    };
}

// its test

struct Case {
    std::string file;
    Row row;
};

std::vector<Case> cases() {
    std::vector<Case> all;
    for (const auto& source : table()) {
        for (const auto& row : source.rows) {
            all.push_back({source.file, row});
        }
    }
    return all;
}

std::string nameOf(const Case& param) {
    std::string name =
        param.file.substr(0, param.file.find('.')) + "_" + param.row.function + "_" + param.row.situation;
    const auto isForbidden = [](unsigned char letter) { return std::isalnum(letter) == 0 && letter != '_'; };
    name.erase(std::remove_if(name.begin(), name.end(), isForbidden), name.end());
    return name;
}

void PrintTo(const Case& param, std::ostream* output) {
    *output << nameOf(param);
}

/// Some compilers add the types that a template is used with.
std::string operationOf(const fake::LogLine& line) {
    return line.function.substr(0, line.function.find('<'));
}

class LogLinesTest : public UnitTest, public ::testing::WithParamInterface<Case> {
protected:
    /// The log lines of an operation. The application's data folder, another one each time, reads "<data>/".
    Lines linesOf(const std::string& file, const std::string& function) const {
        fake::Journal ofOperation;
        for (auto line : journal.logLines()) {
            if (line.file == file && operationOf(line) == function) {
                const auto folder = line.text.find(platform.dataPath);
                if (folder != std::string::npos) {
                    line.text.replace(folder, platform.dataPath.size(), "<data>/");
                }
                ofOperation.addLog(line);
            }
        }
        return ofOperation.logs();
    }

    /// Who logged something and has no row in the table.
    std::set<std::string> strangers() const {
        std::set<std::string> names;
        for (const auto& line : journal.logLines()) {
            names.insert(line.file + " " + operationOf(line));
        }
        for (const auto& [file, row] : cases()) {
            names.erase(file + " " + row.function);
        }
        return names;
    }
};

TEST_P(LogLinesTest, NameTheirOperation) {
    const auto& [file, row] = GetParam();
    for (const auto& step : row.given) {
        step();
    }
    journal.clear();

    row.act();

    EXPECT_EQ(linesOf(file, row.function), row.lines);
    EXPECT_EQ(strangers(), std::set<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(Operations, LogLinesTest, ::testing::ValuesIn(cases()),
                         [](const auto& test) { return nameOf(test.param); });

} // namespace log_lines
} // namespace
