#include "database_seeds.h"

#include "accounts.h"
#include "database_file.h"
#include "story.h"

namespace {

/// What is done to a database of two accounts. Small pages keep most of the files small, so that a changed byte
/// matters.
const std::map<std::string, std::string>& changes() {
    static const std::string smallPages = "PRAGMA page_size=512; VACUUM;";
    static const std::map<std::string, std::string> statements{
        {"as-left-by-the-service", ""},
        {"two-accounts", smallPages},
        {"no-accounts", "DELETE FROM eas_policy_tbl;" + smallPages},
        {"odd-values", "UPDATE eas_policy_tbl SET account_name=NULL, display_name=x'00ff', allow_wifi='yes', "
                       "device_password_history=9e99;" +
                           smallPages},
        {"few-columns", "DROP TABLE eas_policy_tbl; CREATE TABLE eas_policy_tbl(account_id INTEGER PRIMARY KEY);"
                        "INSERT INTO eas_policy_tbl VALUES(1);" +
                            smallPages},
        {"no-table", "DROP TABLE eas_policy_tbl;" + smallPages},
        {"view",
         "ALTER TABLE eas_policy_tbl RENAME TO kept; CREATE VIEW eas_policy_tbl AS SELECT * FROM kept;" + smallPages},
        {"triggers",
         "CREATE TRIGGER t BEFORE DELETE ON eas_policy_tbl BEGIN SELECT RAISE(ABORT, 'no'); END;" + smallPages},
        {"write-ahead", smallPages + "PRAGMA journal_mode=WAL;"},
    };
    return statements;
}

} // namespace

std::map<std::string, std::string> fuzz::databaseSeeds() {
    const auto asLeft = harness::databaseWith({harness::agency(1), harness::bank(2)});
    const harness::Watch watch;
    std::map<std::string, std::string> seeds;
    for (const auto& [name, statements] : changes()) {
        harness::writeDatabase(watch.databasePath(), asLeft);
        harness::changeDatabase(watch.databasePath(), statements);
        seeds[name] = harness::contentOf(watch.databasePath());
    }
    return seeds;
}
