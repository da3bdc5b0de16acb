#include <algorithm>
#include <string_view>
#include <vector>

#include "device/plain_text.h"
#include "policy_files/policy_readers.h"
#include "policy_files/policy_setting.h"
#include "policy_files/setting_text.h"

namespace deskwatch {
namespace {

using Cells = std::vector<std::string>;

struct Row {
    Cells cells;
    long line = 1;
};

/// Goes through a text and splits it into rows of cells. A cell in quotation marks may hold all characters, also line
/// breaks; the mark itself is doubled there.
class CsvText {
public:
    CsvText(std::string_view text, char separator) : text_(text), separator_(separator) {}

    bool isAtEnd() const { return at_ >= text_.size(); }

    Row next() {
        Row row{{""}, line_};
        while (!isAtEnd()) {
            const char character = text_[at_++];
            line_ += character == '\n' ? 1 : 0;
            if (character == '"' && isQuoted_ && !isAtEnd() && text_[at_] == '"') {
                row.cells.back() += text_[at_++];
            } else if (character == '"') {
                isQuoted_ = !isQuoted_;
            } else if (character == '\n' && !isQuoted_) {
                break;
            } else if (character == separator_ && !isQuoted_) {
                row.cells.emplace_back();
            } else if (character != '\r' || isQuoted_) {
                row.cells.back() += character;
            }
        }
        return row;
    }

private:
    std::string_view text_;
    char separator_;
    std::size_t at_ = 0;
    long line_ = 1;
    bool isQuoted_ = false;
};

bool isHeading(const Cells& cells) {
    return cells.size() > 1 && std::any_of(cells.begin(), cells.end(), [](const std::string& cell) {
               return isPolicyName(cell, Naming::Properties);
           });
}

PolicySetting settingOfCell(const std::string& name, const std::string& cell, long line) {
    // a cell holds the kind of a list and not what is in the list
    const bool isKind = startsWith(cell, "System.") || startsWith(cell, "Microsoft.");
    return {name, isKind ? "(not in the file)" : trimmedText(cell), false, line};
}

PolicyFile readRows(const std::string& file, CsvText& text, const Cells& heading) {
    PolicyFile content;
    while (!text.isAtEnd()) {
        const auto row = text.next();
        if (row.cells == Cells{""}) {
            continue;
        }
        std::vector<PolicySetting> settings;
        for (std::size_t column = 0; column < std::min(heading.size(), row.cells.size()); ++column) {
            settings.push_back(settingOfCell(heading[column], row.cells[column], row.line));
        }
        addPolicy(content, policyOf(file, settings, Naming::Properties));
    }
    return content;
}

} // namespace

std::optional<PolicyFile> readCsvPolicies(const std::string& file, const std::string& text) {
    for (const char separator : {',', ';', '\t'}) {
        CsvText rows(text, separator);
        auto heading = rows.next().cells;
        if (heading.front().rfind("#TYPE", 0) == 0) {
            heading = rows.next().cells;
        }
        if (isHeading(heading)) {
            return readRows(file, rows, heading);
        }
    }
    return std::nullopt;
}

} // namespace deskwatch
