#ifndef DESKWATCH_BATCH_H
#define DESKWATCH_BATCH_H

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "batch/batch_report.h"

namespace deskwatch {

/// How recordings are replayed side by side.
struct BatchOptions {
    /// The program that replays one recording, and its arguments before the file.
    std::vector<std::string> command;
    /// The most at one time.
    int jobs = 1;
    /// The most time for one.
    std::chrono::seconds limit{120};
};

/// The recordings that files and folders name, folders with all that is below them, each once and in order. Throws
/// std::runtime_error when one is missing.
std::vector<std::string> recordingsIn(const std::vector<std::string>& paths);

/// Replays each file in a process of its own, and tells of each result as it comes. A process that crashes, takes too
/// long or is killed fails its recording alone, and leaves neither a process nor a file. SIGINT, SIGTERM and SIGHUP end
/// all processes, and then this one. Throws std::runtime_error when no process can be started.
std::vector<BatchResult> replayAll(const std::vector<std::string>& files, const BatchOptions& options,
                                   const std::function<void(const BatchResult& result)>& tell);

} // namespace deskwatch

#endif
