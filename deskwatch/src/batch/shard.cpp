#include "batch/shard.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <stdexcept>

#include "device/plain_text.h"
#include "text/input_file.h"
#include "text/output_file.h"

namespace deskwatch {
namespace {

using Variable = std::function<const char*(const char* name)>;

int numberIn(const Variable& variable, const char* name, std::optional<int> otherwise = std::nullopt) {
    const char* text = variable(name);
    const auto number = text != nullptr ? wholeNumber(text) : otherwise;
    if (!number) {
        throw std::runtime_error(std::string(name) + (text != nullptr ? " is not a number" : " is not set") +
                                 "; set it, or give the shard with --shard I/N");
    }
    return *number;
}

Shard checked(int index, int count, const std::string& source) {
    if (index < 1 || index > count) {
        throw std::runtime_error(source + " names shard " + std::to_string(index) + " of " + std::to_string(count) +
                                 "; a shard is a number from 1 to the number of shards");
    }
    return {index, count};
}

} // namespace

Shard shardOf(const std::string& text) {
    const auto slash = text.find('/');
    const auto index = wholeNumber(text.substr(0, slash));
    const auto count = slash != std::string::npos ? wholeNumber(text.substr(slash + 1)) : std::nullopt;
    if (!index || !count) {
        throw std::runtime_error(text + " is not a shard, such as 2/8, the second of eight");
    }
    return checked(*index, *count, text);
}

std::optional<Shard> shardOfEnvironment(const Variable& variable) {
    if (variable("SLURM_ARRAY_TASK_ID") != nullptr) {
        const int first = numberIn(variable, "SLURM_ARRAY_TASK_MIN", 0);
        const int step = std::max(numberIn(variable, "SLURM_ARRAY_TASK_STEP", 1), 1);
        const int index = (numberIn(variable, "SLURM_ARRAY_TASK_ID") - first) / step + 1;
        return checked(index, numberIn(variable, "SLURM_ARRAY_TASK_COUNT"), "SLURM_ARRAY_TASK_ID");
    }
    if (variable("JOB_COMPLETION_INDEX") != nullptr) {
        const int index = numberIn(variable, "JOB_COMPLETION_INDEX") + 1;
        return checked(index, numberIn(variable, "JOB_COMPLETIONS"), "JOB_COMPLETION_INDEX");
    }
    if (variable("CI_NODE_INDEX") != nullptr) {
        const int index = numberIn(variable, "CI_NODE_INDEX");
        return checked(index, numberIn(variable, "CI_NODE_TOTAL"), "CI_NODE_INDEX");
    }
    return std::nullopt;
}

std::vector<std::string> shareOf(const Shard& shard, std::vector<std::string> files, const ReplayTimes& times) {
    const double known = std::accumulate(times.begin(), times.end(), 0.0,
                                         [](double sum, const auto& entry) { return sum + entry.second; });
    const double usual = times.empty() ? 1.0 : known / static_cast<double>(times.size());
    const auto cost = [&](const std::string& file) {
        const auto time = times.find(file);
        return time != times.end() ? time->second : usual;
    };
    std::sort(files.begin(), files.end(), [&](const auto& one, const auto& other) {
        return cost(one) != cost(other) ? cost(one) > cost(other) : one < other;
    });
    std::vector<double> loads(static_cast<std::size_t>(shard.count));
    std::vector<std::string> share;
    for (auto& file : files) {
        const auto least = std::min_element(loads.begin(), loads.end());
        *least += cost(file);
        if (least - loads.begin() == shard.index - 1) {
            share.push_back(std::move(file));
        }
    }
    return share;
}

ReplayTimes readTimes(const std::string& file) {
    constexpr std::size_t mostBytes = 500'000'000;
    if (!std::filesystem::exists(file)) {
        return {};
    }
    try {
        return nlohmann::json::parse(readInput(file, mostBytes)).get<ReplayTimes>();
    } catch (const nlohmann::json::exception&) {
        throw std::runtime_error(file + " is not a JSON object with a number of seconds for each recording");
    }
}

void writeTimes(const std::string& file, const ReplayTimes& times) {
    writeOutput(file, nlohmann::json(times).dump(1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n");
}

} // namespace deskwatch
