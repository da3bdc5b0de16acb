#include <json-glib/json-glib.h>

#include <algorithm>
#include <array>
#include <stdexcept>

#include "data_folder.h"
#include "database.h"
#include "rules/TeskPolicyTable.h"
#include "workload.h"

namespace {

constexpr char selectAllSql[] = "select * from eas_policy_tbl;";

struct ParserReleaser {
    void operator()(JsonParser* parser) const { g_object_unref(parser); }
};

/// The service's table with that many rows.
class LimitWorkload : public bench::Workload {
public:
    explicit LimitWorkload(int accounts) {
        folder_.fill(accounts);
        database_ = bench::open(folder_.database());
    }

protected:
    const bench::Database& database() const { return database_; }

private:
    bench::DataFolder folder_;
    bench::Database database_;
};

/// The policy set's members, all of them numbers or flags.
constexpr std::array<const char*, 20> members{"PasswordMode",
                                              "allowCamera",
                                              "allowBluetoothMode",
                                              "allowBrowser",
                                              "allowDesktopSync",
                                              "allowInternetSharing",
                                              "allowPOPIMAPEmail",
                                              "allowSimplePassword",
                                              "allowStorageCard",
                                              "allowTextMessaging",
                                              "allowWifi",
                                              "devicePasswordEnabled",
                                              "devicePasswordExpiration",
                                              "devicePasswordHistory",
                                              "minDevicePasswordComplexCharacters",
                                              "maxDevicePasswordFailedAttempts",
                                              "maxInactivityTimeDeviceLock",
                                              "minDevicePasswordLength",
                                              "passwordRecoveryEnabled",
                                              "requireDeviceEncryption"};

/// Parses the text, overwrites the account's row and commits, with a statement that stays prepared.
class Update : public LimitWorkload {
public:
    explicit Update(int accounts) : LimitWorkload(accounts) {}

    void run() final {
        const std::unique_ptr<JsonParser, ParserReleaser> parser(json_parser_new());
        json_parser_load_from_data(parser.get(), message_.c_str(), -1, nullptr);
        JsonObject* const root = json_node_get_object(json_parser_get_root(parser.get()));
        JsonObject* const account = json_array_get_object_element(json_object_get_array_member(root, "param"), 0);
        store(account, json_object_get_object_member(account, "policySet"));
    }

protected:
    virtual void store(JsonObject* account, JsonObject* policySet) {
        bind(statement_.get(), account, policySet);
        bench::run(statement_);
    }

    /// Binds the columns; returns the next free parameter.
    static int bind(sqlite3_stmt* statement, JsonObject* account, JsonObject* policySet) {
        int parameter = 1;
        sqlite3_bind_int64(statement, parameter++, json_object_get_int_member(account, "accountId"));
        for (const char* member : members) {
            JsonNode* const node = json_object_get_member(policySet, member);
            sqlite3_bind_int64(statement, parameter++, json_node_get_int(node));
        }
        sqlite3_bind_int(statement, parameter++, 0); // encryption of the storage card, which no message names
        const char* const name = json_object_get_string_member(account, "accountName");
        sqlite3_bind_text(statement, parameter++, name, -1, SQLITE_STATIC);
        sqlite3_bind_text(statement, parameter++, name, -1, SQLITE_STATIC);
        return parameter;
    }

private:
    std::string message_ = bench::updateMessage();
    bench::Statement statement_ = bench::prepare(database(), upsertSql());

    static std::string upsertSql() {
        std::string sql = TeskPolicyTable::insertSql();
        return sql.replace(0, std::string("insert").size(), "insert or replace");
    }
};

/// Steps over the rows and looks at none of their values.
class Merge : public LimitWorkload {
public:
    explicit Merge(int accounts) : LimitWorkload(accounts) {}

    void run() override {
        while (sqlite3_step(statement_.get()) == SQLITE_ROW) {
        }
        sqlite3_reset(statement_.get());
    }

private:
    bench::Statement statement_ = bench::prepare(database(), selectAllSql);
};

/// Reads every value of every row, with a statement that is compiled for it.
void readAll(const bench::Database& database) {
    TeskPolicyData data;
    const bench::Statement statement = bench::prepare(database, selectAllSql);
    while (sqlite3_step(statement.get()) == SQLITE_ROW) {
        int column = 0;
        for (const auto& number : TeskPolicyTable::numbers) {
            data.*number.field = sqlite3_column_int(statement.get(), column++);
        }
        for (const auto& text : TeskPolicyTable::texts) {
            data.*text.field = reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), column++));
        }
    }
}

/// The update with the three statements that the store's operations compile for it: is the account there, overwrite its
/// row, read all rows.
class CompiledUpdate : public Update {
public:
    explicit CompiledUpdate(int accounts) : Update(accounts) {}

protected:
    void store(JsonObject* account, JsonObject* policySet) override {
        find(json_object_get_int_member(account, "accountId"));
        overwrite(account, policySet);
        readAll(database());
    }

private:
    void find(gint64 accountId) const {
        const bench::Statement statement =
            bench::prepare(database(), "select * from eas_policy_tbl where account_id=?;");
        sqlite3_bind_int64(statement.get(), 1, accountId);
        if (sqlite3_step(statement.get()) != SQLITE_ROW) {
            throw std::runtime_error("bench: the account is not stored");
        }
    }

    void overwrite(JsonObject* account, JsonObject* policySet) const {
        const bench::Statement statement = bench::prepare(database(), TeskPolicyTable::updateSql());
        const int rowParameter = bind(statement.get(), account, policySet);
        sqlite3_bind_int64(statement.get(), rowParameter, json_object_get_int_member(account, "accountId"));
        bench::run(statement);
    }
};

class CompiledMerge : public LimitWorkload {
public:
    explicit CompiledMerge(int accounts) : LimitWorkload(accounts) {}
    void run() override { readAll(database()); }
};

/// Compares the numbers that decide.
class Decide : public bench::Workload {
public:
    void run() override {
        const int wanted = std::max(int(wantedLength_), int(countryLength_));
        satisfied_ = quality_ >= wantedQuality_ && length_ >= wanted && complex_ >= wantedComplex_ && lock_ > 1;
    }

private:
    volatile int quality_ = 33;
    volatile int wantedQuality_ = 33;
    volatile int length_ = 4;
    volatile int wantedLength_ = 4;
    volatile int countryLength_ = 4;
    volatile int complex_ = 0;
    volatile int wantedComplex_ = 0;
    volatile int lock_ = 2;
    volatile bool satisfied_ = false;
};

} // namespace

std::unique_ptr<bench::Workload> bench::makeLimitWorkload(const std::string& name, int accounts) {
    if (name == "update") {
        return std::make_unique<Update>(accounts);
    }
    if (name == "merge") {
        return std::make_unique<Merge>(accounts);
    }
    if (name == "decide") {
        return std::make_unique<Decide>();
    }
    throw std::runtime_error("bench: no such work: " + name);
}

std::unique_ptr<bench::Workload> bench::makeCompiledWorkload(const std::string& name, int accounts) {
    if (name == "update") {
        return std::make_unique<CompiledUpdate>(accounts);
    }
    if (name == "merge") {
        return std::make_unique<CompiledMerge>(accounts);
    }
    throw std::runtime_error("bench: no such work with compiled statements: " + name);
}
