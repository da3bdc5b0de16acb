#include "batch/batch_report.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <set>
#include <stdexcept>

#include "c_owners.h"
#include "text/value_output.h"
#include "text/value_text.h"

namespace deskwatch {
namespace {

using Json = nlohmann::ordered_json;

std::string decimal(double number) {
    std::array<char, 64> text{};
    const int length = std::snprintf(text.data(), text.size(), "%.2f", number);
    return {text.data(), static_cast<std::size_t>(length)};
}

/// Without the characters that XML does not have, and with those escaped that mean something there.
std::string xmlText(const std::string& text) {
    const c::MemoryOwner<char> valid(g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())));
    std::string plain = valid.get();
    std::replace_if(
        plain.begin(), plain.end(),
        [](char character) {
            return static_cast<unsigned char>(character) < 0x20 && character != '\n' && character != '\t';
        },
        '?');
    const c::MemoryOwner<char> escaped(g_markup_escape_text(plain.data(), static_cast<gssize>(plain.size())));
    return escaped.get();
}

} // namespace

std::size_t BatchReport::failed() const {
    return static_cast<std::size_t>(
        std::count_if(results.begin(), results.end(), [](const auto& result) { return !result.failure.empty(); }));
}

std::string failureLine(const BatchResult& result) {
    const auto line = result.failure.substr(0, result.failure.find('\n'));
    return line.find(result.file) == 0 ? line : result.file + ": " + line;
}

std::string batchText(const BatchReport& report) {
    constexpr std::size_t mostShown = 10;
    auto slowest = report.results;
    const auto shown = slowest.begin() + static_cast<std::ptrdiff_t>(std::min(mostShown, slowest.size()));
    std::partial_sort(slowest.begin(), shown, slowest.end(),
                      [](const auto& one, const auto& other) { return one.seconds > other.seconds; });
    std::string text;
    for (const auto& result : report.results) {
        text += result.isUpdated ? result.file + ": updated\n" : "";
    }
    text += slowest.size() > 1 ? "Slowest\n" : "";
    for (auto result = slowest.begin(); slowest.size() > 1 && result != shown; ++result) {
        text += "  " + decimal(result->seconds) + " s  " + result->file + "\n";
    }
    if (report.shard.count > 1) {
        text += "shard " + std::to_string(report.shard.index) + "/" + std::to_string(report.shard.count) + " of " +
                counted(report.total, "recording") + ": ";
    }
    return text + counted(report.results.size(), "recording") + " in " + decimal(report.seconds) + " s, " +
           std::to_string(report.failed()) + " failed\n";
}

std::string batchJson(const BatchReport& report) {
    Json results = Json::array();
    for (const auto& result : report.results) {
        results.push_back({{"file", result.file},
                           {"seconds", result.seconds},
                           {"failure", result.failure.empty() ? Json(nullptr) : Json(result.failure)},
                           {"updated", result.isUpdated}});
    }
    return jsonText({{"shard", report.shard.index},
                     {"shards", report.shard.count},
                     {"total", report.total},
                     {"seconds", report.seconds},
                     {"failed", report.failed()},
                     {"recordings", results}},
                    1) +
           "\n";
}

BatchReport parseBatchJson(const std::string& text, const std::string& file) {
    try {
        const auto json = Json::parse(text);
        BatchReport report{{json.at("shard"), json.at("shards")}, json.at("total"), json.at("seconds"), {}};
        for (const auto& result : json.at("recordings")) {
            const auto& failure = result.at("failure");
            report.results.push_back({result.at("file"), result.at("seconds"),
                                      failure.is_null() ? std::string() : failure.get<std::string>(),
                                      result.value("updated", false)});
        }
        return report;
    } catch (const Json::exception&) {
        throw std::runtime_error(file + " is not a report of replay --json");
    }
}

std::string batchJunit(const BatchReport& report) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuite name=\"deskwatch replay\" tests=\"" +
                       std::to_string(report.results.size()) + "\" failures=\"" + std::to_string(report.failed()) +
                       "\" time=\"" + decimal(report.seconds) + "\">\n";
    for (const auto& result : report.results) {
        text += "  <testcase name=\"" + xmlText(result.file) + "\" time=\"" + decimal(result.seconds) + "\"";
        text += result.failure.empty() ? "/>\n"
                                       : "><failure message=\"" + xmlText(failureLine(result)) + "\">" +
                                             xmlText(result.failure) + "</failure></testcase>\n";
    }
    return text + "</testsuite>\n";
}

BatchReport merged(const std::vector<BatchReport>& reports) {
    BatchReport all;
    std::set<int> shards;
    std::set<std::string> files;
    for (const auto& report : reports) {
        const auto& first = reports.front();
        if (report.shard.count != first.shard.count || report.total != first.total) {
            throw std::runtime_error("the reports are of different runs: they disagree about the number of shards or "
                                     "recordings");
        }
        if (!shards.insert(report.shard.index).second) {
            throw std::runtime_error("there are two reports of shard " + std::to_string(report.shard.index));
        }
        all.total = report.total;
        all.seconds = std::max(all.seconds, report.seconds);
        for (const auto& result : report.results) {
            if (!files.insert(result.file).second) {
                throw std::runtime_error(result.file + " was replayed by two shards; give all of them the same times");
            }
            all.results.push_back(result);
        }
    }
    for (int index = 1; !reports.empty() && index <= reports.front().shard.count; ++index) {
        if (shards.count(index) == 0) {
            throw std::runtime_error("the report of shard " + std::to_string(index) + "/" +
                                     std::to_string(reports.front().shard.count) + " is missing");
        }
    }
    if (all.results.size() != all.total) {
        throw std::runtime_error(std::to_string(all.total - all.results.size()) + " of " + std::to_string(all.total) +
                                 " recordings are in no report; give all shards the same files and times");
    }
    return all;
}

ReplayTimes timesOf(const BatchReport& report) {
    ReplayTimes times;
    for (const auto& result : report.results) {
        times[result.file] = result.seconds;
    }
    return times;
}

} // namespace deskwatch
