#ifndef DESKWATCH_EXPLANATION_H
#define DESKWATCH_EXPLANATION_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "explain/administrator_notes.h"
#include "explain/device_facts.h"
#include "rules/TeskPolicyTable.h"

namespace deskwatch {

/// How an account's value stands to the merged one.
enum class Standing { Wins, Agrees, Loses };

/// An account's share in a merged field.
struct AccountShare {
    int account = 0;
    int value = 0;
    Standing standing = Standing::Agrees;
};

/// How one field came to its merged value.
struct FieldExplanation {
    const char* field = nullptr;
    const char* rule = nullptr;
    std::vector<AccountShare> accounts;
    /// The account that the merged value comes from; none when no account moved it from its start.
    std::optional<int> winner;
    int merged = 0;
    /// The device setting that the field decides, alone or with others, as an index of deviceSettings; none for a field
    /// that is merged and not enforced.
    std::optional<std::size_t> setting;
};

/// How strict an account's password rules are.
struct PasswordScore {
    int account = 0;
    /// None for an account without a password: it does not take part.
    std::optional<std::int64_t> score;
};

/// Why a watch enforces what it does.
struct Explanation {
    /// Number and name.
    std::vector<std::pair<int, std::string>> accounts;
    std::vector<FieldExplanation> fields;
    /// What these accounts demand on this watch; nothing when there is none.
    SettingValues written{};
    /// What the device policy manager holds now.
    SettingValues now{};
    /// What besides the accounts decides what is demanded or held; empty where nothing does.
    std::array<std::string, std::tuple_size_v<SettingValues>> remarks;
    std::vector<PasswordScore> scores;
    /// The account that the password is enforced for; 0 for none.
    int enforcingAccount = 0;
    std::vector<AdministratorNote> notes;
};

/// Explains the merge of a watch's accounts by the service's own rules.
Explanation explain(const DeviceFacts& device);

/// A rule in words; `start` is the value that no account has touched.
const char* ruleInWords(TeskMergeRule rule, int start);

/// The explanation as tables and sentences for a reader.
std::string explanationText(const Explanation& explanation);

/// The explanation as one JSON object.
std::string explanationJson(const Explanation& explanation);

/// The same on one line.
std::string explanationJsonLine(const Explanation& explanation);

} // namespace deskwatch

#endif
