#include "replay/replay.h"

#include <unistd.h>

#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <thread>

#include "batch/batch.h"
#include "commands.h"
#include "device/temporary_device.h"
#include "text/input_file.h"
#include "text/output_file.h"
#include "text/value_text.h"

namespace deskwatch {
namespace {

struct ReplayOptions {
    std::vector<std::string> files;
    std::string service;
    bool isUpdated = false;
    int jobs = 0;
    std::string shard;
    int limit = 120;
    std::string junit;
    std::string times;
    bool isJson = false;
    bool isMerged = false;
};

std::filesystem::path thisProgram() {
    return std::filesystem::read_symlink("/proc/self/exe");
}

std::string serviceOf(const ReplayOptions& options) {
    return options.service.empty() ? thisProgram().parent_path() / "tesk-agent"
                                   : std::filesystem::absolute(options.service);
}

std::string equalText(std::size_t effects) {
    return effects == 0   ? "no effects to compare"
           : effects == 1 ? "the one effect is equal"
                          : "all " + std::to_string(effects) + " effects are equal";
}

void replayOne(const ReplayOptions& options) {
    const auto& file = options.files.front();
    const auto recording = readRecording(file);
    const TemporaryDevice device;
    const auto outcome =
        replay(*device, standardApplications(serviceOf(options), {thisProgram().string(), "companion"}), recording);
    if (!outcome.difference) {
        std::cout << equalText(outcome.equal) << "\n";
        return;
    }
    const auto where = inputName(file) + ":" + std::to_string(outcome.difference->line);
    const auto text = differenceText(recording, *outcome.difference);
    if (!options.isUpdated) {
        throw std::runtime_error(where + ": the service does not do what was recorded; " +
                                 std::to_string(outcome.equal) + (outcome.equal == 1 ? " effect is" : " effects are") +
                                 " equal\n" + text);
    }
    writeOutput(file, updatedRecording(recording, outcome.happened));
    std::cout << where << ": updated\n" << text << '\n';
}

/// A line on a terminal that tells how far it is; a failure is a line of its own anywhere.
class Progress {
public:
    explicit Progress(std::size_t count) : count_(count), isShown_(isatty(STDERR_FILENO) == 1) {}
    ~Progress() { clear(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void tell(const BatchResult& result) {
        clear();
        ++done_;
        if (!result.failure.empty()) {
            ++failed_;
            std::cerr << failureLine(result) << "\n";
        }
        if (isShown_) {
            std::cerr << done_ << " of " << count_ << ", " << failed_ << " failed" << std::flush;
        }
    }

private:
    void clear() const { std::cerr << (isShown_ ? "\r\x1b[K" : "") << std::flush; }

    std::size_t count_;
    bool isShown_;
    std::size_t done_ = 0;
    std::size_t failed_ = 0;
};

BatchReport replayShare(const ReplayOptions& options) {
    BatchOptions batch;
    batch.command = {thisProgram().string(), "replay", "--service", serviceOf(options)};
    if (options.isUpdated) {
        batch.command.emplace_back("--update");
    }
    batch.jobs = options.jobs > 0 ? options.jobs : static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
    batch.limit = std::chrono::seconds(options.limit);
    BatchReport report;
    report.shard = !options.shard.empty() ? shardOf(options.shard) : shardOfEnvironment(std::getenv).value_or(Shard{});
    const auto files = recordingsIn(options.files);
    report.total = files.size();
    if (files.empty()) {
        throw std::runtime_error(options.files.front() + " holds no recording (*.jsonl)");
    }
    const auto times = options.times.empty() ? ReplayTimes{} : readTimes(options.times);
    const auto share = shareOf(report.shard, files, times);
    const auto start = std::chrono::steady_clock::now();
    Progress progress(share.size());
    report.results = replayAll(share, batch, [&](const BatchResult& result) { progress.tell(result); });
    report.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return report;
}

BatchReport mergeReports(const std::vector<std::string>& files) {
    constexpr std::size_t mostBytes = 1'000'000'000;
    std::vector<BatchReport> reports;
    reports.reserve(files.size());
    for (const auto& file : files) {
        reports.push_back(parseBatchJson(readInput(file, mostBytes), inputName(file)));
    }
    auto all = merged(reports);
    for (const auto& result : all.results) {
        std::cerr << (result.failure.empty() ? "" : failureLine(result) + "\n");
    }
    return all;
}

/// Before a long run, not after it.
void requireFolderOf(const std::string& file) {
    const auto folder = std::filesystem::path(file).parent_path();
    if (!folder.empty() && !std::filesystem::is_directory(folder)) {
        throw std::runtime_error("cannot write " + file + ": " + folder.string() + " is not a folder");
    }
}

void replayMany(const ReplayOptions& options) {
    requireFolderOf(options.junit);
    requireFolderOf(options.times);
    const auto report = options.isMerged ? mergeReports(options.files) : replayShare(options);
    std::cout << (options.isJson ? batchJson(report)
                                 : batchText(report)); // not lost with a file that cannot be written
    if (!options.junit.empty()) {
        writeOutput(options.junit, batchJunit(report));
    }
    if (!options.times.empty() && report.shard.count == 1) {
        auto times = readTimes(options.times);
        for (const auto& [file, seconds] : timesOf(report)) {
            times[file] = seconds;
        }
        writeTimes(options.times, times);
    }
    if (report.failed() > 0) {
        throw std::runtime_error(std::to_string(report.failed()) + " of " +
                                 counted(report.results.size(), "recording") + " failed");
    }
}

/// Standard input is whole on every machine.
bool hasPart(const ReplayOptions& options) {
    return options.files.front() != standardInput && shardOfEnvironment(std::getenv).has_value();
}

/// A file alone is replayed in this process, unless something is asked for that only many have.
bool isOne(const CLI::App& command, const ReplayOptions& options) {
    const std::vector<std::string> ofMany{"--jobs", "--shard", "--limit", "--junit", "--times", "--json", "--merge"};
    return options.files.size() == 1 && !std::filesystem::is_directory(options.files.front()) && !hasPart(options) &&
           std::all_of(ofMany.begin(), ofMany.end(), [&](const auto& name) { return command.count(name) == 0; });
}

void addOptionsOfMany(CLI::App& command, ReplayOptions& options) {
    command.add_option("--jobs", options.jobs, "Recordings side by side (default: one for each processor)")
        ->check(checkPositive, "")
        ->type_name("N");
    command.add_option("--shard", options.shard, "Only the I-th of N parts, for several machines")
        ->check(acceptedBy(shardOf))
        ->type_name("I/N");
    command.add_option("--limit", options.limit, "The most time for one recording (default: 120)")
        ->check(checkPositive, "")
        ->type_name("SECONDS");
    command.add_option("--junit", options.junit, "Write the results as JUnit does")->type_name("FILE");
    command
        .add_option("--times", options.times,
                    "How long each recording took last, to divide by; a run of all writes it anew")
        ->type_name("FILE");
    command.add_flag("--json", options.isJson, "Print the results as one JSON object");
    command.add_flag("--merge", options.isMerged, "Replay nothing: the files are the --json results of all parts");
}

} // namespace

void addReplayCommand(CLI::App& program) {
    auto* command = program.add_subcommand("replay", "Replay recordings on fresh watches and compare every effect");
    auto options = std::make_shared<ReplayOptions>();
    command->add_option("FILE", options->files, "The recordings, or folders of them (*.jsonl); - for standard input")
        ->required();
    command->add_option("--service", options->service, "Program of the service (default: tesk-agent beside deskwatch)")
        ->type_name("PATH");
    command->add_flag("--update", options->isUpdated, "Rewrite the effects in the files as they are now");
    addOptionsOfMany(*command, *options);
    command->footer(
        "Exits with 1 and shows the first difference when an effect differs. The part of several machines comes from\n"
        "the variables of Slurm arrays, Kubernetes indexed jobs (set JOB_COMPLETIONS) and GitLab when there are any.\n"
        "Example:\n  deskwatch replay story.jsonl\n  deskwatch replay recordings --junit report.xml");
    command->callback([options, command] {
        const bool isFromInput = std::count(options->files.begin(), options->files.end(), standardInput) > 0;
        if (isFromInput && (options->isUpdated || !isOne(*command, *options))) {
            throw CLI::ValidationError("standard input is replayed alone, and cannot be updated");
        }
        isOne(*command, *options) ? replayOne(*options) : replayMany(*options);
    });
}

} // namespace deskwatch
