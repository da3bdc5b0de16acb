#include "rules/TeskPolicyTable.h"

#include <cstddef>
#include <functional>

namespace {

constexpr std::size_t columnsPerLine = 5;
constexpr std::size_t nameWidth = 39;

/// Kept free for products that store values of their own; nothing here writes them.
constexpr std::array<const char*, 3> reservedNumbers{"user_int1", "user_int2", "user_int3"};
constexpr std::array<const char*, 3> reservedTexts{"user_str1", "user_str2", "user_str3"};

using ColumnVisitor = std::function<void(const char* column, const char* type)>;

void forEachColumn(const ColumnVisitor& visit) {
    for (const auto& number : TeskPolicyTable::numbers) {
        visit(number.column, "INTEGER");
    }
    for (const auto& text : TeskPolicyTable::texts) {
        visit(text.column, "TEXT");
    }
}

void forEachReservedColumn(const ColumnVisitor& visit) {
    for (const char* column : reservedNumbers) {
        visit(column, "INTEGER");
    }
    for (const char* column : reservedTexts) {
        visit(column, "TEXT");
    }
}

/// The columns, each followed by `suffix`, with one more blank where a new line of the statement begins.
std::string columnList(const char* suffix) {
    std::string list;
    std::size_t count = 0;
    forEachColumn([&](const char* column, const char* /*type*/) {
        if (count > 0) {
            list += count % columnsPerLine == 0 ? ",  " : ", ";
        }
        list.append(column).append(suffix);
        ++count;
    });
    return list;
}

std::string parameterList() {
    std::string list;
    forEachColumn([&](const char* /*column*/, const char* /*type*/) { list += list.empty() ? "?" : ", ?"; });
    return list;
}

std::string columnDefinitions() {
    std::string definitions;
    const ColumnVisitor define = [&](const char* column, const char* type) {
        std::string name = column;
        name.resize(nameWidth, ' ');
        definitions.append("\t").append(name).append(type).append(", \n");
    };
    forEachColumn(define);
    forEachReservedColumn(define);
    return definitions;
}

} // namespace

const std::string& TeskPolicyTable::createSql() {
    static const std::string sql =
        "CREATE TABLE eas_policy_tbl \n( \n" + columnDefinitions() + "\tPRIMARY KEY(account_id) \n);";
    return sql;
}

const std::string& TeskPolicyTable::insertSql() {
    static const std::string sql =
        "insert into eas_policy_tbl (" + columnList("") + ") values (" + parameterList() + ");";
    return sql;
}

const std::string& TeskPolicyTable::updateSql() {
    static const std::string sql = "update eas_policy_tbl set " + columnList("=?") + "  where account_id=?;";
    return sql;
}
