#include "text/value_words.h"

#include <algorithm>
#include <array>

#include "TeskConsumerKeys.h"
#include "text/value_output.h"

namespace deskwatch {
namespace {

struct NumberWord {
    std::string_view name;
    int number;
    const char* word;
};

/// The settings and keys whose numbers stand for something.
constexpr std::array<NumberWord, 14> numberWords{{
    {"quality", 0, "none"},
    {"quality", 32, "numeric"},
    {"quality", 33, "numeric, simple allowed"},
    {"quality", 128, "alphanumeric"},
    {"quality", 129, "alphanumeric, simple allowed"},
    {"wifi_state", 0, "forbidden"},
    {"wifi_state", 1, "allowed"},
    {"messaging_state", 0, "forbidden"},
    {"messaging_state", 1, "allowed"},
    {"popimap_email_state", 0, "forbidden"},
    {"popimap_email_state", 1, "allowed"},
    {TeskConsumerKeys::lockType, 0, "none"},
    {TeskConsumerKeys::lockType, 1, "PIN"},
    {TeskConsumerKeys::lockType, 2, "password"},
}};

} // namespace

std::string wordedValue(std::string_view name, const Value& value) {
    auto text = valueText(value);
    const auto* const number = std::get_if<int>(&value);
    const auto* const row = std::find_if(numberWords.begin(), numberWords.end(), [&](const NumberWord& candidate) {
        return number != nullptr && candidate.name == name && candidate.number == *number;
    });
    return row != numberWords.end() ? text + " " + row->word : text;
}

std::string wordedNumber(std::string_view name, const std::optional<int>& number) {
    return wordedValue(name, number ? Value(*number) : Value());
}

} // namespace deskwatch
