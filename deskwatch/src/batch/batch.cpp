#include "batch/batch.h"

#include <sys/prctl.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <memory>
#include <set>
#include <stdexcept>
#include <system_error>

#include "batch/shard.h"
#include "c_owners.h"
#include "device/device.h"
#include "device/end_request.h"
#include "device/plain_text.h"
#include "device/temporary_files.h"
#include "device/timer.h"

namespace deskwatch {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// A folder of temporary files that goes with this object.
class OwnFolder {
public:
    OwnFolder() : path_(makeTemporaryFolder()) {}
    ~OwnFolder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    OwnFolder(const OwnFolder&) = delete;
    OwnFolder& operator=(const OwnFolder&) = delete;

    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

/// Runs in the new process: it ends with this one, which cannot end it when it is killed.
void endWithParent(gpointer /*data*/) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
}

/// What a killed process could not clean up.
void removeLeftovers(const fs::path& folder) {
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(folder, ignored)) {
        while (Device(entry.path() / "watch").kill()) { // one may have started another meanwhile
        }
    }
    fs::remove_all(folder, ignored);
}

/// Without what every message of the program begins with.
std::string reasonIn(const std::string& errors) {
    const std::string begin = "deskwatch: replay: ";
    const auto text = startsWith(errors, begin) ? errors.substr(begin.size()) : errors;
    return text.substr(0, text.find_last_not_of('\n') + 1);
}

/// One recording and its process.
class Worker {
public:
    using Ended = std::function<void(Worker& worker, BatchResult result)>;

    Worker(std::string file, const BatchOptions& options, fs::path folder, Ended ended)
        : limit_(options.limit), folder_(std::move(folder)), ended_(std::move(ended)) {
        result_.file = std::move(file);
        fs::create_directory(folder_);
        std::vector<const char*> arguments;
        for (const auto& word : options.command) {
            arguments.push_back(word.c_str());
        }
        arguments.insert(arguments.end(), {"--", result_.file.c_str(), nullptr});
        const c::ObjectOwner<GSubprocessLauncher> launcher(g_subprocess_launcher_new(
            static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_PIPE | G_SUBPROCESS_FLAGS_STDERR_PIPE)));
        g_subprocess_launcher_setenv(launcher.get(), "TMPDIR", folder_.c_str(), TRUE);
        for (const auto* variable : taskVariables) { // what it replays is of this machine's part already
            g_subprocess_launcher_unsetenv(launcher.get(), variable);
        }
        g_subprocess_launcher_set_child_setup(launcher.get(), endWithParent, nullptr, nullptr);
        GError* error = nullptr;
        process_.reset(g_subprocess_launcher_spawnv(launcher.get(), arguments.data(), &error));
        if (process_ == nullptr) {
            throw std::runtime_error("cannot start " + options.command.front() + ": " + c::takeMessage(error));
        }
        g_subprocess_communicate_async(process_.get(), nullptr, nullptr, onOutput, this);
        timer_.start(limit_, [this] { endLate(); });
    }

    void end() { g_subprocess_send_signal(process_.get(), SIGTERM); }

private:
    void endLate() {
        constexpr std::chrono::seconds timeToCleanUp{30};
        isLate_ ? g_subprocess_force_exit(process_.get()) : end();
        isLate_ = true;
        timer_.start(timeToCleanUp, [this] { endLate(); });
    }

    static void onOutput(GObject* /*process*/, GAsyncResult* outcome, gpointer self) {
        auto& worker = *static_cast<Worker*>(self);
        GBytes* output = nullptr;
        GBytes* errors = nullptr;
        g_subprocess_communicate_finish(worker.process_.get(), outcome, &output, &errors, nullptr);
        worker.result_.isUpdated = contains(c::takeText(output), ": updated\n");
        worker.result_.failure = c::takeText(errors);
        g_subprocess_wait_async(worker.process_.get(), nullptr, onEnd, self);
    }

    static void onEnd(GObject* /*process*/, GAsyncResult* outcome, gpointer self) {
        auto& worker = *static_cast<Worker*>(self);
        g_subprocess_wait_finish(worker.process_.get(), outcome, nullptr);
        worker.finish();
    }

    void finish() {
        const bool hasExited = g_subprocess_get_if_exited(process_.get()) != FALSE;
        const int status = hasExited ? g_subprocess_get_exit_status(process_.get()) : -1;
        const auto reason = reasonIn(result_.failure);
        result_.seconds = std::chrono::duration<double>(Clock::now() - start_).count();
        if (isLate_) {
            result_.failure = "took longer than " + std::to_string(limit_.count()) + " s";
        } else if (!hasExited) {
            result_.failure = "its process was ended by signal " +
                              std::to_string(g_subprocess_get_term_sig(process_.get())) + "\n" + reason;
        } else {
            result_.failure = status == 0       ? ""
                              : !reason.empty() ? reason
                                                : "its process failed with " + std::to_string(status);
        }
        removeLeftovers(folder_);
        ended_(*this, std::move(result_));
    }

    Clock::time_point start_ = Clock::now();
    std::chrono::seconds limit_;
    fs::path folder_;
    Ended ended_;
    BatchResult result_;
    c::ObjectOwner<GSubprocess> process_;
    Timer timer_;
    bool isLate_ = false;
};

/// Keeps as many workers going as there may be.
class Batch {
public:
    Batch(const std::vector<std::string>& files, const BatchOptions& options,
          std::function<void(const BatchResult& result)> tell)
        : files_(files), options_(options), tell_(std::move(tell)) {
        endRequest_.whenNoted([this] {
            for (const auto& worker : workers_) {
                worker->end();
            }
        });
    }

    std::vector<BatchResult> run() {
        {
            const OwnFolder folder;
            folder_ = folder.path();
            refill();
            while (!workers_.empty() || !ended_.empty()) {
                g_main_context_iteration(nullptr, TRUE);
                ended_.clear();
                refill();
            }
        }
        endRequest_.obey();
        return std::move(results_);
    }

private:
    void refill() {
        while (!endRequest_.isNoted() && next_ < files_.size() &&
               workers_.size() < static_cast<std::size_t>(options_.jobs)) {
            const auto& file = files_[next_++];
            workers_.push_back(std::make_unique<Worker>(
                file, options_, folder_ / std::to_string(next_),
                [this](Worker& worker, BatchResult result) { take(worker, std::move(result)); }));
        }
    }

    void take(Worker& worker, BatchResult result) {
        if (!endRequest_.isNoted()) {
            tell_(result);
            results_.push_back(std::move(result));
        }
        const auto place =
            std::find_if(workers_.begin(), workers_.end(), [&](const auto& entry) { return entry.get() == &worker; });
        ended_.push_back(std::move(*place)); // it calls this, so it goes later
        workers_.erase(place);
    }

    const std::vector<std::string>& files_;
    const BatchOptions& options_;
    std::function<void(const BatchResult& result)> tell_;
    EndRequest endRequest_;
    fs::path folder_;
    std::vector<std::unique_ptr<Worker>> workers_;
    std::vector<std::unique_ptr<Worker>> ended_;
    std::vector<BatchResult> results_;
    std::size_t next_ = 0;
};

} // namespace

std::vector<std::string> recordingsIn(const std::vector<std::string>& paths) {
    std::set<std::string> files;
    for (const auto& path : paths) {
        if (!fs::is_directory(path)) {
            if (!fs::exists(path)) {
                throw std::runtime_error(path + " does not exist");
            }
            files.insert(path);
            continue;
        }
        for (const auto& entry : fs::recursive_directory_iterator(path)) {
            if (entry.is_regular_file() && entry.path().extension() == ".jsonl") {
                files.insert(entry.path().string());
            }
        }
    }
    return {files.begin(), files.end()};
}

std::vector<BatchResult> replayAll(const std::vector<std::string>& files, const BatchOptions& options,
                                   const std::function<void(const BatchResult& result)>& tell) {
    return Batch(files, options, tell).run();
}

} // namespace deskwatch
