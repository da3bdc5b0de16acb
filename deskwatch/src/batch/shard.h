#ifndef DESKWATCH_SHARD_H
#define DESKWATCH_SHARD_H

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace deskwatch {

/// The part of the recordings that one of several machines plays: the `index`-th of `count`, from 1.
struct Shard {
    int index = 1;
    int count = 1;
};

/// How many seconds each recording took when it was last played, by its path.
using ReplayTimes = std::map<std::string, double>;

/// "2/8". Throws std::runtime_error when the text is not a shard.
Shard shardOf(const std::string& text);

/// The variables that say which task of many this is.
inline constexpr std::array<const char*, 3> taskVariables{"SLURM_ARRAY_TASK_ID", "JOB_COMPLETION_INDEX",
                                                          "CI_NODE_INDEX"};

/// The shard that the variables of an array task of Slurm, an indexed job of Kubernetes or a job of GitLab name; none
/// without such variables. `variable` yields the value of one, null when it is not set. Throws std::runtime_error with
/// the variable's name when they make no sense together.
std::optional<Shard> shardOfEnvironment(const std::function<const char*(const char* name)>& variable);

/// The files of a shard. Every shard divides alike, whatever the order of the files: the one that takes longest first,
/// each to the shard that has least to do. A file without a time counts as much as the others on average.
std::vector<std::string> shareOf(const Shard& shard, std::vector<std::string> files, const ReplayTimes& times);

/// Reads and writes the times, a JSON object. A missing file has none; a new one takes the place of the old in one
/// step. Throws std::runtime_error.
ReplayTimes readTimes(const std::string& file);
void writeTimes(const std::string& file, const ReplayTimes& times);

} // namespace deskwatch

#endif
