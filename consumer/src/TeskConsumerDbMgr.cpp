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

bool makeDirOf(const std::string& path, const TeskConsumerPlace& place) {
    const std::string dbDir = path.substr(0, path.rfind('/'));
    TESK_INFO_AT(place, "dbDir : %s", dbDir.c_str());
    if (g_access(dbDir.c_str(), F_OK) != 0 && mkdir(dbDir.c_str(), dbDirMode) == -1) {
        TESK_ERROR_AT(place, "g_mkdir() failed!");
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

/// The name of the file in which the table is made. A folder of that name, whoever left it there, is passed over.
std::string newPathFor(const std::string& place) {
    std::string path = place + newFileSuffix;
    while (g_file_test(path.c_str(), G_FILE_TEST_IS_DIR) != FALSE) {
        path += newFileSuffix;
    }
    return path;
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
    __closeDb();
}

int TeskConsumerDbMgr::checkPolicyByAccountId(int accountId) {
    const TeskConsumerTrace trace;
    if (!__isValidAccount(accountId)) {
        return TESK_DB_INVALID_ACCOUNT;
    }
    const auto statement = __prepareQuery(selectAccountSql);
    if (!statement || !__bindAccount(statement, 1, accountId)) {
        return TESK_DB_FAILURE;
    }
    return __readRow(statement) == SQLITE_ROW ? 0 : TESK_DB_NO_ROW;
}

int TeskConsumerDbMgr::insertPolicy(const TeskPolicyData& data) {
    const TeskConsumerTrace trace;
    const auto statement = __prepareQuery(TeskPolicyTable::insertSql());
    if (!statement || __bindPolicy(statement, data) == 0) {
        return TESK_DB_FAILURE;
    }
    return __write(statement);
}

int TeskConsumerDbMgr::updatePolicy(const TeskPolicyData& data) {
    const TeskConsumerTrace trace;
    const auto statement = __prepareQuery(TeskPolicyTable::updateSql());
    const int rowParameter = statement ? __bindPolicy(statement, data) : 0;
    if (rowParameter == 0 || !__bindAccount(statement, rowParameter, data.accountId)) {
        return TESK_DB_FAILURE;
    }
    return __write(statement);
}

int TeskConsumerDbMgr::deletePolicyByAccountId(int accountId) {
    const TeskConsumerTrace trace;
    if (!__isValidAccount(accountId)) {
        return TESK_DB_INVALID_ACCOUNT;
    }
    const auto statement = __prepareQuery(deleteAccountSql);
    if (!statement || !__bindAccount(statement, 1, accountId)) {
        return TESK_DB_FAILURE;
    }
    return __write(statement);
}

int TeskConsumerDbMgr::getPolicyDataByAccountId(int accountId, TeskPolicyData& out) {
    const TeskConsumerTrace trace;
    if (!__isValidAccount(accountId)) {
        return TESK_DB_INVALID_ACCOUNT;
    }
    const auto statement = __prepareQuery(selectAccountSql);
    if (!statement || !__bindAccount(statement, 1, accountId)) {
        return TESK_DB_FAILURE;
    }
    const int result = __readRow(statement);
    if (result != SQLITE_ROW) {
        TESK_WARN("query result: %d", result);
        return TESK_DB_NO_ROW;
    }
    __readPolicy(statement, out);
    return 0;
}

int TeskConsumerDbMgr::getPolicyDataList(TeskPolicyDataList& out) {
    return getPolicyDataList(
        [&out](const TeskPolicyData& data) { out.push_back(std::make_shared<TeskPolicyData>(data)); });
}

int TeskConsumerDbMgr::getPolicyDataList(const TeskPolicyVisitor& visit) {
    TESK_INFO("Enter");
    const auto statement = __prepareQuery(selectAllSql);
    if (!statement) {
        return TESK_DB_FAILURE;
    }
    int result = __readRow(statement);
    if (result != SQLITE_ROW) {
        TESK_WARN("query result: %d", result);
        return TESK_DB_NO_ROW;
    }
    TeskPolicyData data;
    for (; result == SQLITE_ROW; result = __readRow(statement)) {
        __readPolicy(statement, data);
        visit(data);
    }
    return 0;
}

int TeskConsumerDbMgr::getAllEasAccountCount(int* count) {
    TESK_INFO("Enter");
    const auto statement = __prepareQuery(countSql);
    if (!statement) {
        return TESK_DB_FAILURE;
    }
    if (__readRow(statement) == SQLITE_ROW) {
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

void TeskConsumerDbMgr::__closeDb() {
    if (handle != nullptr) {
        sqlite3_close(handle);
        handle = nullptr;
    }
}

/// A file without a table would never be repaired, since a file that exists is used as it is. So the file gets its name
/// only once the table is in it: a start that is cut off on the way leaves nothing that counts. A link in its place
/// stays, since what it leads to may only be missing for now.
bool TeskConsumerDbMgr::__openNewFile(const std::string& path, const TeskConsumerPlace& place) {
    if (!makeDirOf(path, place)) {
        return false;
    }
    const std::string file = endOfLinks(path);
    if (file.empty()) {
        TESK_ERROR_AT(place, "sqlite3_open failed: [%d]", SQLITE_CANTOPEN); // what it would answer
        return false;
    }
    const std::string newPath = newPathFor(file);
    makeEmptyFile(newPath);
    if (!__openFile(newPath, place)) {
        return false;
    }
    TESK_INFO_AT(place, "Let's create db!");
    isTableMissing = true; // until the file with the table has its name
    if (!__createDb()) {
        return true;
    }
    __closeDb();
    removeJournalsOf(file);
    if (std::rename(newPath.c_str(), file.c_str()) != 0) {
        TESK_ERROR_AT(place, "rename failed: [%d]", errno);
        return false;
    }
    isTableMissing = false;
    return __openFile(path, place);
}

bool TeskConsumerDbMgr::__openFile(const std::string& path, const TeskConsumerPlace& place) {
    // Nobody reads SQLite's statistics of its memory, and keeping them takes a lock at every allocation. Another lock
    // goes with each value that is read, for connections that several threads share; nobody shares one unless he asks
    // for that lock when he opens it. Where a library of the platform was first to use SQLite, both stay as they were.
    sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    sqlite3_config(SQLITE_CONFIG_MULTITHREAD);
    sqlite3* opened = nullptr;
    int result = sqlite3_open(path.c_str(), &opened);
    if (result != SQLITE_OK) {
        TESK_ERROR_AT(place, "sqlite3_open failed: [%d]", result);
        sqlite3_close(opened); // a failed open hands out a handle all the same
        return false;
    }
    result = sqlite3_busy_handler(opened, __busyHandler, nullptr);
    if (result != SQLITE_OK) {
        TESK_ERROR_AT(place, "sqlite3_busy_handler failed: [%d]", result);
        sqlite3_close(opened);
        TESK_INFO_AT(place, "Leave");
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

/// Where the first start could not make the table, for lack of space perhaps, it is tried once more now.
TeskConsumerDbMgr::Statement TeskConsumerDbMgr::__prepareQuery(const std::string& sql, const TeskConsumerPlace& place) {
    Statement statement(__queryPrepare(sql));
    if (!statement && isTableMissing) {
        __closeDb();
        __openDb();
        statement.reset(__queryPrepare(sql));
    }
    __succeeded(statement != nullptr, place);
    return statement;
}

bool TeskConsumerDbMgr::__succeeded(bool success, const TeskConsumerPlace& place) {
    if (!success) {
        TESK_ERROR_AT(place, "db failure: %s", sqlite3_errmsg(handle));
    }
    return success;
}

int TeskConsumerDbMgr::__readRow(const Statement& statement, const TeskConsumerPlace& place) {
    const int result = sqlite3_step(statement.get());
    __succeeded(result == SQLITE_ROW || result == SQLITE_DONE, place);
    return result;
}

int TeskConsumerDbMgr::__write(const Statement& statement, const TeskConsumerPlace& place) {
    return __succeeded(sqlite3_step(statement.get()) == SQLITE_DONE, place) ? 0 : TESK_DB_FAILURE;
}

bool TeskConsumerDbMgr::__bindAccount(const Statement& statement, int parameter, int accountId,
                                      const TeskConsumerPlace& place) {
    return __succeeded(sqlite3_bind_int(statement.get(), parameter, accountId) == SQLITE_OK, place);
}

/// Binds the columns in order; the result is the next free parameter, or 0 when one could not be bound.
int TeskConsumerDbMgr::__bindPolicy(const Statement& statement, const TeskPolicyData& data,
                                    const TeskConsumerPlace& place) {
    int parameter = 1;
    bool isBound = true;
    for (const auto& number : TeskPolicyTable::numbers) {
        isBound = isBound && sqlite3_bind_int(statement.get(), parameter++, data.*number.field) == SQLITE_OK;
    }
    for (const auto& text : TeskPolicyTable::texts) {
        const auto& value = data.*text.field;
        isBound = isBound && sqlite3_bind_text(statement.get(), parameter++, value.c_str(),
                                               static_cast<int>(value.size()), SQLITE_TRANSIENT) == SQLITE_OK;
    }
    return __succeeded(isBound, place) ? parameter : 0;
}

void TeskConsumerDbMgr::__readPolicy(const Statement& statement, TeskPolicyData& data) {
    int column = 0;
    for (const auto& number : TeskPolicyTable::numbers) {
        data.*number.field = sqlite3_column_int(statement.get(), column++);
    }
    for (const auto& text : TeskPolicyTable::texts) {
        // a foreign hand may have left NULL in the column
        const auto* const value = reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), column++));
        (data.*text.field).assign(value != nullptr ? value : "");
    }
}

bool TeskConsumerDbMgr::__isValidAccount(int accountId, const TeskConsumerPlace& place) {
    if (accountId < 1) {
        TESK_ERROR_AT(place, "accountId is invalid");
        return false;
    }
    return true;
}
