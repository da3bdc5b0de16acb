#include "TeskConsumerDbMgr.h"

#include <app_common.h>
#include <fcntl.h>
#include <glib.h>
#include <glib/gstdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <fstream>

#include "TeskConsumerInstance.h"
#include "TeskConsumerLog.h"
#include "TeskConsumerText.h"
#include "rules/TeskPolicyTable.h"

namespace {

constexpr char dbFile[] = "dbspace/.tesk.db";
constexpr char newFileSuffix[] = ".new";
constexpr mode_t dbDirMode = 0755;
constexpr mode_t dbFileMode = 0600;
constexpr int maxLinks = 40; // as the kernel has it
constexpr int maxBusyCalls = 5;
constexpr gulong busySleepStep = 100000; // microseconds

constexpr char selectAccountSql[] = "select * from eas_policy_tbl where account_id=?;";
constexpr char deleteAccountSql[] = "delete from eas_policy_tbl where account_id=?;";
constexpr char countSql[] = "select count(account_id) from eas_policy_tbl;";
constexpr char selectAllSql[] = "select * from eas_policy_tbl;";

bool makeDirOf(const std::string& path) {
    const std::string dbDir = path.substr(0, path.rfind('/'));
    TESK_INFO("dbDir : %s", dbDir.c_str());
    if (g_access(dbDir.c_str(), F_OK) != 0 && mkdir(dbDir.c_str(), dbDirMode) == -1) {
        TESK_ERROR("g_mkdir() failed!");
        return false;
    }
    return true;
}

/// Where the file comes to lie when the path is a link that leads nowhere yet; empty when links go in circles.
std::string endOfLinks(std::string path) {
    for (int links = 0; links <= maxLinks; ++links) {
        g_autofree char* target = g_file_read_link(path.c_str(), nullptr);
        if (target == nullptr) {
            return path;
        }
        path = g_path_is_absolute(target) != FALSE ? target : path.substr(0, path.rfind('/') + 1) + target;
    }
    return {};
}

/// Whoever opens the file would play them into it, even if they were another file's.
void removeJournalsOf(const std::string& path) {
    unlink((path + "-journal").c_str());
    unlink((path + "-wal").c_str());
}

/// An empty file that nobody else may read, in the place of whatever an earlier start may have left there.
void makeEmptyFile(const std::string& path) {
    unlink(path.c_str());
    removeJournalsOf(path);
    const std::ofstream file(path, std::ios::out | std::ios::trunc);
    chmod(path.c_str(), dbFileMode);
}

} // namespace

void TeskConsumerDbMgr::StatementFinalizer::operator()(sqlite3_stmt* statement) const {
    __queryFinalize(statement);
}

TeskConsumerDbMgr* TeskConsumerDbMgr::getInstance() {
    return teskConsumerInstance<TeskConsumerDbMgr>();
}

TeskConsumerDbMgr::TeskConsumerDbMgr() {
    TESK_INFO("");
    if (!__init()) {
        TESK_WARN("db initialize fail!");
    }
}

TeskConsumerDbMgr::~TeskConsumerDbMgr() {
    TESK_INFO("");
    if (handle != nullptr) {
        sqlite3_close(handle);
    }
}

int TeskConsumerDbMgr::checkPolicyByAccountId(int accountId) {
    const TeskConsumerTrace trace;
    if (!__isValidAccount(accountId)) {
        return TESK_DB_INVALID_ACCOUNT;
    }
    const auto statement = __prepareQuery(selectAccountSql);
    if (!statement) {
        return TESK_DB_FAILURE;
    }
    sqlite3_bind_int(statement.get(), 1, accountId);
    return sqlite3_step(statement.get()) == SQLITE_ROW ? 0 : TESK_DB_NO_ROW;
}

int TeskConsumerDbMgr::insertPolicy(const TeskPolicyData& data) {
    const TeskConsumerTrace trace;
    const auto statement = __prepareQuery(TeskPolicyTable::insertSql());
    if (!statement) {
        return TESK_DB_FAILURE;
    }
    __bindPolicy(statement, data);
    return __write(statement);
}

int TeskConsumerDbMgr::updatePolicy(const TeskPolicyData& data) {
    const TeskConsumerTrace trace;
    const auto statement = __prepareQuery(TeskPolicyTable::updateSql());
    if (!statement) {
        return TESK_DB_FAILURE;
    }
    const int rowParameter = __bindPolicy(statement, data);
    sqlite3_bind_int(statement.get(), rowParameter, data.accountId);
    return __write(statement);
}

int TeskConsumerDbMgr::deletePolicyByAccountId(int accountId) {
    const TeskConsumerTrace trace;
    if (!__isValidAccount(accountId)) {
        return TESK_DB_INVALID_ACCOUNT;
    }
    const auto statement = __prepareQuery(deleteAccountSql);
    if (!statement) {
        return TESK_DB_FAILURE;
    }
    sqlite3_bind_int(statement.get(), 1, accountId);
    return __write(statement);
}

int TeskConsumerDbMgr::getPolicyDataByAccountId(int accountId, TeskPolicyData& out) {
    const TeskConsumerTrace trace;
    if (!__isValidAccount(accountId)) {
        return TESK_DB_INVALID_ACCOUNT;
    }
    const auto statement = __prepareQuery(selectAccountSql);
    if (!statement) {
        return TESK_DB_FAILURE;
    }
    sqlite3_bind_int(statement.get(), 1, accountId);
    const int result = sqlite3_step(statement.get());
    if (result != SQLITE_ROW) {
        TESK_WARN("query result: %d", result);
        return TESK_DB_NO_ROW;
    }
    __readPolicy(statement, out);
    return 0;
}

int TeskConsumerDbMgr::getPolicyDataList(TeskPolicyDataList& out) {
    TESK_INFO("Enter");
    const auto statement = __prepareQuery(selectAllSql);
    if (!statement) {
        return TESK_DB_FAILURE;
    }
    int result = sqlite3_step(statement.get());
    if (result != SQLITE_ROW) {
        TESK_WARN("query result: %d", result);
        return TESK_DB_NO_ROW;
    }
    for (; result == SQLITE_ROW; result = sqlite3_step(statement.get())) {
        const auto data = std::make_shared<TeskPolicyData>();
        __readPolicy(statement, *data);
        out.push_back(data);
    }
    return 0;
}

int TeskConsumerDbMgr::getAllEasAccountCount(int* count) {
    TESK_INFO("Enter");
    const auto statement = __prepareQuery(countSql);
    if (!statement) {
        return TESK_DB_FAILURE;
    }
    if (sqlite3_step(statement.get()) == SQLITE_ROW) {
        *count = sqlite3_column_int(statement.get(), 0);
    }
    return 0;
}

bool TeskConsumerDbMgr::__init() {
    TESK_INFO("");
    return __openDb();
}

bool TeskConsumerDbMgr::__openDb() {
    TESK_INFO("Enter");
    const TeskConsumerText dataPath(app_get_data_path());
    if (!dataPath) {
        TESK_ERROR("app_get_data_path failed");
        return false;
    }
    const std::string path = std::string(dataPath.get()) + dbFile;
    TESK_INFO("dbPath : %s", path.c_str());

    const bool exists = g_file_test(path.c_str(), G_FILE_TEST_EXISTS) != FALSE;
    if (!(exists ? __openFile(path) : __openNewFile(path))) {
        return false;
    }
    TESK_INFO("Leave");
    return true;
}

/// A file without a table would never be repaired, since a file that exists is used as it is. So the file gets its name
/// only once the table is in it: a start that is cut off on the way leaves nothing that counts. A link in its place
/// stays, since what it leads to may only be missing for now.
bool TeskConsumerDbMgr::__openNewFile(const std::string& path) {
    if (!makeDirOf(path)) {
        return false;
    }
    const std::string place = endOfLinks(path);
    if (place.empty()) {
        TESK_ERROR("sqlite3_open failed: [%d]", SQLITE_CANTOPEN); // what it would answer
        return false;
    }
    const std::string newPath = place + newFileSuffix;
    makeEmptyFile(newPath);
    if (!__openFile(newPath)) {
        return false;
    }
    TESK_INFO("Let's create db!");
    if (!__createDb()) {
        // every operation fails for lack of the table, and the next start tries again
        return true;
    }
    sqlite3_close(handle);
    handle = nullptr;
    removeJournalsOf(place);
    if (std::rename(newPath.c_str(), place.c_str()) != 0) {
        TESK_ERROR("rename failed: [%d]", errno);
        return false;
    }
    return __openFile(path);
}

bool TeskConsumerDbMgr::__openFile(const std::string& path) {
    // Nobody reads SQLite's statistics of its memory, and keeping them takes a lock at every allocation. Where a
    // library of the platform was first to use SQLite, the statistics stay, and nothing else is different.
    sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    sqlite3* opened = nullptr;
    int result = sqlite3_open(path.c_str(), &opened);
    if (result != SQLITE_OK) {
        TESK_ERROR("sqlite3_open failed: [%d]", result);
        sqlite3_close(opened); // a failed open hands out a handle all the same
        return false;
    }
    result = sqlite3_busy_handler(opened, __busyHandler, nullptr);
    if (result != SQLITE_OK) {
        TESK_ERROR("sqlite3_busy_handler failed: [%d]", result);
        sqlite3_close(opened);
        TESK_INFO("Leave");
        return false;
    }
    handle = opened;
    return true;
}

/// Whether the table is there now.
bool TeskConsumerDbMgr::__createDb() {
    const auto& sql = TeskPolicyTable::createSql();
    const Statement statement(__queryPrepare(sql));
    if (!statement) {
        TESK_ERROR("query prepare fail: [%s] - %s", sql.c_str(), sqlite3_errmsg(handle));
        return false;
    }
    if (sqlite3_step(statement.get()) != SQLITE_DONE) {
        TESK_WARN("db create fail: [%s] - %s", sql.c_str(), sqlite3_errmsg(handle));
        return false;
    }
    return true;
}

sqlite3_stmt* TeskConsumerDbMgr::__queryPrepare(const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    const int result = sqlite3_prepare_v2(handle, sql.c_str(), static_cast<int>(sql.size()), &statement, nullptr);
    if (result != SQLITE_OK) {
        TESK_ERROR("sqlite3_prepare_v2 failed: %s", sqlite3_errmsg(handle));
        return nullptr;
    }
    return statement;
}

void TeskConsumerDbMgr::__queryFinalize(sqlite3_stmt* statement) {
    if (statement == nullptr) {
        return;
    }
    const int result = sqlite3_finalize(statement);
    if (result != SQLITE_OK) {
        TESK_WARN("sqlite3_finalize failed: [%d]", result);
    }
}

int TeskConsumerDbMgr::__busyHandler(void* /*data*/, int count) {
    TESK_INFO("");
    if (count >= maxBusyCalls) {
        TESK_ERROR("sqlite busy error!");
        return 0;
    }
    const int call = count + 1;
    TESK_WARN("busy handler called! count - %d", call);
    g_usleep(busySleepStep * static_cast<gulong>(call));
    return 1;
}

TeskConsumerDbMgr::Statement TeskConsumerDbMgr::__prepareQuery(const std::string& sql) {
    Statement statement(__queryPrepare(sql));
    if (!statement) {
        TESK_ERROR("db failure: %s", sqlite3_errmsg(handle));
    }
    return statement;
}

int TeskConsumerDbMgr::__write(const Statement& statement) {
    if (sqlite3_step(statement.get()) != SQLITE_DONE) {
        TESK_ERROR("db failure: %s", sqlite3_errmsg(handle));
        return TESK_DB_FAILURE;
    }
    return 0;
}

/// Binds the columns in order; the result is the next free parameter.
int TeskConsumerDbMgr::__bindPolicy(const Statement& statement, const TeskPolicyData& data) {
    int parameter = 1;
    for (const auto& number : TeskPolicyTable::numbers) {
        sqlite3_bind_int(statement.get(), parameter++, data.*number.field);
    }
    for (const auto& text : TeskPolicyTable::texts) {
        const auto& value = data.*text.field;
        sqlite3_bind_text(statement.get(), parameter++, value.c_str(), static_cast<int>(value.size()),
                          SQLITE_TRANSIENT);
    }
    return parameter;
}

void TeskConsumerDbMgr::__readPolicy(const Statement& statement, TeskPolicyData& data) {
    int column = 0;
    for (const auto& number : TeskPolicyTable::numbers) {
        data.*number.field = sqlite3_column_int(statement.get(), column++);
    }
    for (const auto& text : TeskPolicyTable::texts) {
        // a foreign hand may have left NULL in the column
        const auto* const value = reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), column++));
        data.*text.field = value != nullptr ? value : "";
    }
}

bool TeskConsumerDbMgr::__isValidAccount(int accountId) {
    if (accountId < 1) {
        TESK_ERROR("accountId is invalid");
        return false;
    }
    return true;
}
