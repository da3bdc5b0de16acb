#ifndef TESK_CONSUMER_DB_MGR_H
#define TESK_CONSUMER_DB_MGR_H

#include <sqlite3.h>

#include <functional>
#include <memory>
#include <string>

#include "TeskConsumerLog.h"
#include "rules/TeskPolicyData.h"

/// Results of the database operations; 0 is success.
constexpr int TESK_DB_INVALID_ACCOUNT = -2;
constexpr int TESK_DB_FAILURE = -1001;
constexpr int TESK_DB_NO_ROW = -1002;

using TeskPolicyVisitor = std::function<void(const TeskPolicyData&)>;

/// Keeps one policy record per account in an SQLite file in the application's data folder. The file is opened, and on
/// the first start made, when the instance is; while it could not be opened every operation fails. A table that could
/// not be made is tried again by the next operation.
class TeskConsumerDbMgr {
public:
    /// The process's one instance, or null while memory is short.
    static TeskConsumerDbMgr* getInstance();

    TeskConsumerDbMgr();
    virtual ~TeskConsumerDbMgr();
    TeskConsumerDbMgr(const TeskConsumerDbMgr&) = delete;
    TeskConsumerDbMgr& operator=(const TeskConsumerDbMgr&) = delete;

    /// 0 when the account is stored, TESK_DB_NO_ROW when it is not, or an error.
    int checkPolicyByAccountId(int accountId);

    /// Stores a new account. Returns 0 or TESK_DB_FAILURE, also when the account is stored already.
    int insertPolicy(const TeskPolicyData& data);

    /// Overwrites the row of data.accountId. Returns 0, also when there is none, or TESK_DB_FAILURE.
    int updatePolicy(const TeskPolicyData& data);

    /// Deletes the account's row. Returns 0, also when there is none, or an error.
    int deletePolicyByAccountId(int accountId);

    /// Fills `out` from the account's row. Returns 0, or an error and leaves `out` alone.
    int getPolicyDataByAccountId(int accountId, TeskPolicyData& out);

    /// Appends a record per row, in the table's order. Returns 0, TESK_DB_NO_ROW for an empty table, or an error.
    int getPolicyDataList(TeskPolicyDataList& out);

    /// Shows the rows one by one, in the table's order, in a record that is valid during the call only. Returns the
    /// same.
    int getPolicyDataList(const TeskPolicyVisitor& visit);

    /// Writes the number of rows to *count. Returns 0, or TESK_DB_FAILURE and leaves *count alone.
    int getAllEasAccountCount(int* count);

private:
    struct StatementFinalizer {
        void operator()(sqlite3_stmt* statement) const;
    };
    using Statement = std::unique_ptr<sqlite3_stmt, StatementFinalizer>;

    bool __init();
    bool __openDb();
    void __closeDb();
    bool __createDb();
    sqlite3_stmt* __queryPrepare(const std::string& sql);
    static void __queryFinalize(sqlite3_stmt* statement);
    static int __busyHandler(void* data, int count);

    // steps of the operations above, in whose name they log
    bool __openNewFile(const std::string& path, const TeskConsumerPlace& place = TeskConsumerPlace::here());
    bool __openFile(const std::string& path, const TeskConsumerPlace& place = TeskConsumerPlace::here());
    static bool __isValidAccount(int accountId, const TeskConsumerPlace& place = TeskConsumerPlace::here());
    Statement __prepareQuery(const std::string& sql, const TeskConsumerPlace& place = TeskConsumerPlace::here());
    bool __bindAccount(const Statement& statement, int parameter, int accountId,
                       const TeskConsumerPlace& place = TeskConsumerPlace::here());
    int __bindPolicy(const Statement& statement, const TeskPolicyData& data,
                     const TeskConsumerPlace& place = TeskConsumerPlace::here());
    int __readRow(const Statement& statement, const TeskConsumerPlace& place = TeskConsumerPlace::here());
    int __write(const Statement& statement, const TeskConsumerPlace& place = TeskConsumerPlace::here());
    bool __succeeded(bool success, const TeskConsumerPlace& place);
    static void __readPolicy(const Statement& statement, TeskPolicyData& data);

    sqlite3* handle = nullptr;
    bool isTableMissing = false; ///< since the first start could not make it
};

#endif
