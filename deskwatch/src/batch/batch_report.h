#ifndef DESKWATCH_BATCH_REPORT_H
#define DESKWATCH_BATCH_REPORT_H

#include <string>
#include <vector>

#include "batch/shard.h"

namespace deskwatch {

/// What became of one recording.
struct BatchResult {
    std::string file;
    double seconds = 0;
    /// Why it failed, the first line for a reader who has many of them; empty when every effect was equal.
    std::string failure;
    /// Whether its file was rewritten.
    bool isUpdated = false;
};

/// What became of the recordings of a shard, or of all.
struct BatchReport {
    Shard shard;
    /// The number of recordings in all shards.
    std::size_t total = 0;
    double seconds = 0;
    std::vector<BatchResult> results;

    std::size_t failed() const;
};

/// The files that were rewritten, the slowest ten and the sum, for a reader.
std::string batchText(const BatchReport& report);

/// For programs; parseBatchJson reads it. Throws std::runtime_error with the file's name when the text is not a report.
std::string batchJson(const BatchReport& report);
BatchReport parseBatchJson(const std::string& text, const std::string& file);

/// The report in the form that build servers show.
std::string batchJunit(const BatchReport& report);

/// The failure of a recording on one line.
std::string failureLine(const BatchResult& result);

/// One report out of those of all shards. Throws std::runtime_error when a shard or a recording is missing or is there
/// twice.
BatchReport merged(const std::vector<BatchReport>& reports);

/// The times that the report tells.
ReplayTimes timesOf(const BatchReport& report);

} // namespace deskwatch

#endif
